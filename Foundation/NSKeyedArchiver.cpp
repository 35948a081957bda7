#include "Foundation/NSKeyedArchiver.h"

#include "Foundation/NSArchivedClasses.h"
#include "Foundation/NSException.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSPropertyListNode.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr unsigned deepest = 500;

[[noreturn]] void raiseCannotArchive(const std::string& what) {
  NSException::raise(NSInvalidArchiveOperationException, what + " cannot be archived");
}

// libplist takes texts that end with a zero, and only well-formed ones come back as they were.
std::string archivedText(const NSString& text) {
  std::u16string_view rest = text.view();
  while (!rest.empty()) {
    const char32_t character = NSTakeCharacter(rest);
    if (character == 0) raiseCannotArchive("text with U+0000");
    if (NSIsHighSurrogate(character) || NSIsLowSurrogate(character)) {
      raiseCannotArchive("text with half of a surrogate pair");
    }
  }
  return text.utf8();
}

std::string archivedKey(const NSRef<NSString>& key, const char* operation) {
  if (!key) NSRaiseNilArgument("key", operation);
  std::string text = archivedText(*key);
  if (text.starts_with('$')) text.insert(0, 1, '$');
  return text;
}

plist_t checked(plist_t node) {
  if (node == nullptr) throw std::bad_alloc();
  return node;
}

// What stands in the table of objects without a record; null for all other objects.
plist_t plainNode(const NSRef<NSObject>& object) {
  if (const auto* const number = object.cast<NSNumber>()) {
    if (number->isFloatingPoint()) return checked(plist_new_real(number->doubleValue()));
    if (number->isBoolean()) return checked(plist_new_bool(number->boolValue() ? 1 : 0));
    // libplist writes integers as signed ones.
    if (number->compare(NSMake<NSNumber>(NSIntegerMax)) == NSOrderedDescending) {
      raiseCannotArchive("the number " + number->stringValue()->utf8());
    }
    return checked(plist_new_uint(static_cast<std::uint64_t>(number->integerValue())));
  }
  if (const auto* const data = object.cast<NSData>()) {
    return checked(plist_new_data(data->view().data(), data->length()));
  }
  const auto* const string = object.cast<NSString>();
  if (string == nullptr || object.cast<NSMutableString>() != nullptr) return nullptr;
  return checked(plist_new_string(archivedText(*string).c_str()));
}

const NSArchivedClass* platformClass(const NSObject& object) {
  const auto classes = NSArchivedClasses();
  const auto found = std::ranges::find_if(
      classes, [&](const NSArchivedClass& each) { return object.isKindOfClass(each.itself); });
  return found == classes.end() ? nullptr : &*found;
}

}  // namespace

struct NSKeyedArchiver::Archive {
  NSPropertyListNode root{checked(plist_new_dict())};
  plist_t objects = checked(plist_new_array());
  // The dictionary that values are entered into: that of the object at hand.
  plist_t current = checked(plist_new_dict());
  std::uint64_t count = 0;
  unsigned depth = 0;
  std::unordered_map<NSRef<NSObject>, std::uint64_t> references;
  std::unordered_map<NSClass, std::uint64_t> classes;

  Archive() {
    plist_dict_set_item(root.get(), "$version", checked(plist_new_uint(100000)));
    plist_dict_set_item(root.get(), "$archiver", checked(plist_new_string("NSKeyedArchiver")));
    plist_dict_set_item(root.get(), "$top", current);
    plist_dict_set_item(root.get(), "$objects", objects);
    append(checked(plist_new_string("$null")));
  }

  std::uint64_t append(plist_t node) {
    plist_array_append_item(objects, node);
    return count++;
  }

  plist_t referenceTo(const NSRef<NSObject>& object, NSKeyedArchiver& coder) {
    return checked(plist_new_uid(object ? indexOf(object, coder) : 0));
  }

 private:
  std::uint64_t indexOf(const NSRef<NSObject>& object, NSKeyedArchiver& coder) {
    const auto known = references.find(object);
    if (known != references.end()) return known->second;
    plist_t const plain = plainNode(object);
    plist_t const node = plain != nullptr ? plain : checked(plist_new_dict());
    const std::uint64_t index = append(node);
    references.emplace(object, index);
    if (plain == nullptr) encodeRecord(object, node, coder);
    return index;
  }

  void encodeRecord(const NSRef<NSObject>& object, plist_t record, NSKeyedArchiver& coder) {
    if (++depth > deepest) raiseCannotArchive("a graph of more than 500 objects in each other");
    plist_t const outer = std::exchange(current, record);
    NSClass itself = object->objectClass();
    if (const auto* const coding = object.cast<NSCoding>()) {
      coding->encodeWithCoder(share(&coder));
    } else if (const NSArchivedClass* const known = platformClass(*object)) {
      known->encode(*object, coder);
      itself = known->itself;
    } else {
      raiseCannotArchive("an object of class " + itself.name()->utf8());
    }
    plist_dict_set_item(record, "$class", checked(plist_new_uid(indexOfClass(itself))));
    current = outer;
    --depth;
  }

  std::uint64_t indexOfClass(NSClass itself) {
    const auto known = classes.find(itself);
    if (known != classes.end()) return known->second;
    plist_t const names = checked(plist_new_array());
    plist_t const record = checked(plist_new_dict());
    plist_dict_set_item(record, "$classes", names);
    const std::string name = itself.name()->utf8();
    plist_dict_set_item(record, "$classname", checked(plist_new_string(name.c_str())));
    for (std::optional<NSClass> each = itself; each; each = each->superclass()) {
      plist_array_append_item(names, checked(plist_new_string(each->name()->utf8().c_str())));
    }
    return classes.emplace(itself, append(record)).first->second;
  }
};

NSRef<NSData> NSKeyedArchiver::archivedDataWithRootObject(const NSRef<NSObject>& root) {
  const auto archiver = NSMake<NSKeyedArchiver>();
  archiver->encodeObject_forKey(root, u"root"_ns);
  return archiver->encodedData();
}

NSKeyedArchiver::NSKeyedArchiver() : _archive(std::make_unique<Archive>()) {}
NSKeyedArchiver::~NSKeyedArchiver() = default;

void NSKeyedArchiver::encodeBool_forKey(bool value, const NSRef<NSString>& key) {
  const std::string text = archivedKey(key, "encodeBool:forKey:");
  plist_dict_set_item(_archive->current, text.c_str(), checked(plist_new_bool(value ? 1 : 0)));
}

void NSKeyedArchiver::encodeInteger_forKey(NSInteger value, const NSRef<NSString>& key) {
  const std::string text = archivedKey(key, "encodeInteger:forKey:");
  plist_dict_set_item(_archive->current, text.c_str(),
                      checked(plist_new_uint(static_cast<std::uint64_t>(value))));
}

void NSKeyedArchiver::encodeDouble_forKey(double value, const NSRef<NSString>& key) {
  const std::string text = archivedKey(key, "encodeDouble:forKey:");
  plist_dict_set_item(_archive->current, text.c_str(), checked(plist_new_real(value)));
}

void NSKeyedArchiver::encodeObject_forKey(const NSRef<NSObject>& object,
                                          const NSRef<NSString>& key) {
  const std::string text = archivedKey(key, "encodeObject:forKey:");
  plist_t const reference = _archive->referenceTo(object, *this);
  plist_dict_set_item(_archive->current, text.c_str(), reference);
}

void NSKeyedArchiver::encodeText_forKey(const NSString& text, const NSRef<NSString>& key) {
  const std::string name = archivedKey(key, "encodeText:forKey:");
  plist_dict_set_item(_archive->current, name.c_str(),
                      checked(plist_new_string(archivedText(text).c_str())));
}

void NSKeyedArchiver::encodeObjects_forKey(std::span<const NSRef<NSObject>> objects,
                                           const NSRef<NSString>& key) {
  const std::string text = archivedKey(key, "encodeObjects:forKey:");
  NSPropertyListNode list(checked(plist_new_array()));
  for (const auto& object : objects) {
    plist_array_append_item(list.get(), _archive->referenceTo(object, *this));
  }
  plist_dict_set_item(_archive->current, text.c_str(), list.release());
}

NSRef<NSData> NSKeyedArchiver::encodedData() const {
  char* bytes = nullptr;
  std::uint32_t length = 0;
  plist_to_bin(_archive->root.get(), &bytes, &length);
  if (bytes == nullptr) throw std::bad_alloc();
  const std::unique_ptr<char, decltype(&plist_to_bin_free)> owner(bytes, &plist_to_bin_free);
  return NSMake<NSData>(std::string_view(bytes, length));
}
