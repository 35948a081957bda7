#include "Foundation/NSKeyedArchiver.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include <Foundation/Archives/ArchivedClasses.h>
#include <Foundation/Archives/PropertyListWriter.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/detail/HashIndex.h>

namespace {

using Reference = NSPropertyListWriter::Reference;

// Reading copies the text of a mutable string. Longer ones are not shared, so that what one archive
// makes a reader copy stays within a small multiple of its bytes.
constexpr std::size_t longestSharedText = 64;

[[noreturn]] void raiseCannotArchive(const std::string& what) {
  NSException::raise(NSInvalidArchiveOperationException, what + " cannot be archived");
}

struct ClassNames {
  std::mutex mutex;
  std::unordered_map<NSClass, NSRef<NSString>> byClass;
};

ClassNames& classNames() {
  static NSNeverDestroyed<ClassNames> names;
  return *names;
}

NSRef<NSString> nameOf(NSClass aClass) {
  auto& [mutex, byClass] = classNames();
  const std::lock_guard lock(mutex);
  const auto found = byClass.find(aClass);
  return found == byClass.end() ? aClass.name() : found->second;
}

const NSArchivedClass* platformClass(const NSObject& object) {
  const auto classes = NSArchivedClasses();
  const auto found = std::ranges::find_if(
      classes, [&](const NSArchivedClass& each) { return object.isKindOfClass(each.itself); });
  return found == classes.end() ? nullptr : &*found;
}

}  // namespace

struct NSKeyedArchiver::Archive {
  NSPropertyListWriter list;
  Reference root = list.dictionary();
  Reference table = list.array(16);
  // The dictionary that values are entered into: that of the object at hand.
  Reference current = list.dictionary();

  Archive() {
    add(root, u"$version", list.integer(100000));
    add(root, u"$archiver", list.text(u"NSKeyedArchiver"));
    add(root, u"$top", current);
    add(root, u"$objects", table);
    append(list.text(u"$null"));
  }

  // Enters what `write` gives under the key, into the record that is at hand before and afterwards.
  template <class Write>
  Reference enter(const NSRef<NSString>& key, const char* operation, Write write) {
    if (!key) NSRaiseNilArgument("key", operation);
    const std::u16string_view text = key->view();
    const Reference name = list.text(text.starts_with(u'$') ? u'$' + std::u16string(text) : text);
    const Reference value = write();
    if (!list.add(current, name, value)) {
      raiseCannotArchive("a second value for the key '" + key->utf8() + "' of an object");
    }
    return value;
  }

  Reference referenceTo(const NSRef<NSObject>& object, NSKeyedArchiver& coder) {
    return list.uid(object ? numberOf(object, coder) : 0);
  }

 private:
  void add(Reference dictionary, std::u16string_view key, Reference value) {
    (void)list.add(dictionary, list.text(key), value);
  }

  // Puts it into the table of objects.
  std::uint32_t append(Reference reference) {
    const auto number = static_cast<std::uint32_t>(heights.size());
    list.append(table, reference);
    heights.push_back(0);
    return number;
  }

  // Keeps the object, so that no other one gets its address.
  void remember(const NSRef<NSObject>& object, std::uint32_t number) {
    index.insert(objects.size(), std::hash<const void*>{}(object.get()));
    objects.push_back(object);
    numbers.push_back(number);
  }

  // Equal values have one number, as they are read as one object.
  std::uint32_t numberOfValue(Reference value) {
    if (value >= numbersOfValues.size()) numbersOfValues.resize(std::size_t{value} + 1);
    std::uint32_t& number = numbersOfValues[value];
    if (number == 0) number = append(value);
    return number;
  }

  std::size_t numberOf(const NSRef<NSObject>& object, NSKeyedArchiver& coder) {
    const std::size_t known =
        index.find(std::hash<const void*>{}(object.get()),
                   [&](std::size_t at) { return objects[at].get() == object.get(); });
    if (known != NSHashIndex::notFound) {
      const std::uint32_t number = numbers[known];
      noteHeight(heights[number], *object);
      return number;
    }
    // Most objects are of these, which need no search through their bases.
    const NSObject& itself = *object;
    const std::type_info& kind = typeid(itself);
    const bool isPlain =
        kind == typeid(NSString) || kind == typeid(NSNumber) || kind == typeid(NSData);
    const auto* const coding = isPlain ? nullptr : object.cast<NSCoding>();
    // Whatever a class of the program derives from, it writes itself.
    const auto plain = coding == nullptr ? plainValue(object) : std::nullopt;
    if (plain) {
      const std::uint32_t number = numberOfValue(*plain);
      remember(object, number);
      return number;
    }
    // What the object does while it is encoded may change the caller's own reference.
    const NSRef<NSObject> kept = object;
    const Reference record = list.dictionary();
    const std::uint32_t number = append(record);
    remember(kept, number);
    heights[number] = isBeingWritten;
    const unsigned outer = std::exchange(tallest, 0);
    encodeRecord(kept, coding, record, coder);
    heights[number] = static_cast<std::uint16_t>(tallest + 1);
    tallest = outer;
    noteHeight(heights[number], *kept);
    return number;
  }

  // Refuses what could not be read: reading makes an object when all that is in it is there.
  void noteHeight(std::uint16_t height, const NSObject& object) {
    if (height == isBeingWritten) {
      raiseCannotArchive("an object of class " + object.objectClass().name()->utf8() +
                         " that contains itself");
    }
    tallest = std::max(tallest, unsigned{height});
    if (depth + height > NSMostNestedObjects) raiseTooDeep();
  }
  [[noreturn]] static void raiseTooDeep() {
    raiseCannotArchive("a graph of more than " + std::to_string(NSMostNestedObjects) +
                       " objects in each other");
  }

  // Values that stand in the table of objects without a record.
  std::optional<Reference> plainValue(const NSRef<NSObject>& object) {
    if (const auto* const string = object.cast<NSString>()) {
      if (object.cast<NSMutableString>() != nullptr) return std::nullopt;
      return list.text(string->view());
    }
    if (const auto* const number = object.cast<NSNumber>()) {
      if (number->isFloatingPoint()) return list.real(number->doubleValue());
      if (number->isBoolean()) return list.boolean(number->boolValue());
      const NSInteger value = number->integerValue();
      const bool isLarge = value < 0 && number->doubleValue() > 0;
      return isLarge ? list.largeInteger(number->unsignedIntegerValue()) : list.integer(value);
    }
    const auto* const data = object.cast<NSData>();
    return data != nullptr ? std::optional(list.data(data->bytes())) : std::nullopt;
  }

  void encodeRecord(const NSRef<NSObject>& object, const NSCoding* coding, Reference record,
                    NSKeyedArchiver& coder) {
    if (++depth > NSMostNestedObjects) raiseTooDeep();
    const Reference outer = std::exchange(current, record);
    NSClass itself = object->objectClass();
    if (coding != nullptr) {
      coding->encodeWithCoder(share(&coder));
    } else if (const NSArchivedClass* const known = platformClass(*object)) {
      known->encode(*object, coder);
      itself = known->itself;
    } else {
      raiseCannotArchive("an object of class " + itself.name()->utf8());
    }
    add(record, u"$class", list.uid(numberOfClass(itself)));
    current = outer;
    --depth;
  }

  std::size_t numberOfClass(NSClass itself) {
    const auto known = classes.find(itself);
    if (known != classes.end()) return known->second;
    const Reference names = list.array(4);
    const Reference record = list.dictionary();
    add(record, u"$classes", names);
    add(record, u"$classname", list.text(nameOf(itself)->view()));
    for (std::optional<NSClass> each = itself; each; each = each->superclass()) {
      list.append(names, list.text(nameOf(*each)->view()));
    }
    return classes.emplace(itself, append(record)).first->second;
  }

  // The objects that have been asked for, by their addresses, and their numbers.
  std::vector<NSRef<NSObject>> objects;
  std::vector<std::uint32_t> numbers;
  NSHashIndex index;
  // By their references; 0 for those that are no objects yet, as no value is nil.
  std::vector<std::uint32_t> numbersOfValues;
  // How many records are in each other below and with each object, by the numbers.
  static constexpr std::uint16_t isBeingWritten = UINT16_MAX;
  std::vector<std::uint16_t> heights;
  unsigned tallest = 0;  // The greatest height of the objects in the one at hand.
  unsigned depth = 0;
  std::unordered_map<NSClass, std::uint32_t> classes;
};

NSRef<NSData> NSKeyedArchiver::archivedDataWithRootObject(const NSRef<NSObject>& root) {
  const auto archiver = NSMake<NSKeyedArchiver>();
  archiver->encodeObject_forKey(root, u"root"_ns);
  return archiver->encodedData();
}

void NSKeyedArchiver::setClassName_forClass(const NSRef<NSString>& codedName, NSClass aClass) {
  const auto name = codedName ? codedName->copy() : nullptr;
  auto& [mutex, byClass] = classNames();
  const std::lock_guard lock(mutex);
  if (name) {
    byClass[aClass] = name;
  } else {
    byClass.erase(aClass);
  }
}

NSKeyedArchiver::NSKeyedArchiver() : _archive(std::make_unique<Archive>()) {}
NSKeyedArchiver::~NSKeyedArchiver() = default;

void NSKeyedArchiver::encodeBool_forKey(bool value, const NSRef<NSString>& key) {
  _archive->enter(key, "encodeBool:forKey:", [&] { return _archive->list.boolean(value); });
}

void NSKeyedArchiver::encodeInteger_forKey(NSInteger value, const NSRef<NSString>& key) {
  _archive->enter(key, "encodeInteger:forKey:", [&] { return _archive->list.integer(value); });
}

void NSKeyedArchiver::encodeDouble_forKey(double value, const NSRef<NSString>& key) {
  _archive->enter(key, "encodeDouble:forKey:", [&] { return _archive->list.real(value); });
}

void NSKeyedArchiver::encodeObject_forKey(const NSRef<NSObject>& object,
                                          const NSRef<NSString>& key) {
  _archive->enter(key,
                  "encodeObject:forKey:", [&] { return _archive->referenceTo(object, *this); });
}

void NSKeyedArchiver::encodeText_forKey(const NSString& text, const NSRef<NSString>& key) {
  const bool isShared = text.length() <= longestSharedText;
  _archive->enter(key,
                  "encodeText:forKey:", [&] { return _archive->list.text(text.view(), isShared); });
}

std::uint32_t NSKeyedArchiver::beginList(const NSRef<NSString>& key) {
  return _archive->enter(key, "encodeObjects:forKey:", [&] { return _archive->list.array(0); });
}

void NSKeyedArchiver::appendToList(std::uint32_t list, const NSRef<NSObject>& object) {
  const Reference reference = _archive->referenceTo(object, *this);
  _archive->list.append(list, reference);
}

NSRef<NSData> NSKeyedArchiver::encodedData() const {
  return NSMake<NSData>(_archive->list.bytes(_archive->root));
}
