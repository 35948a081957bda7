#include "Foundation/NSKeyedUnarchiver.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <typeinfo>
#include <unordered_map>
#include <utility>

#include <Foundation/Archives/ArchivedClasses.h>
#include <Foundation/Archives/PropertyListReader.h>
#include <Foundation/NSDictionary.h>
#include <Foundation/NSError.h>
#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSNumber.h>
#include <Foundation/NSString.h>
#include <Foundation/Objects/HashMemo.h>

namespace {

using Index = NSPropertyListReader::Index;
using Kind = NSPropertyListKind;
using Value = NSPropertyListObject;

[[noreturn]] void raiseBroken(const std::string& reason) {
  NSException::raise(NSInvalidUnarchiveOperationException, reason);
}

[[noreturn]] void raiseNoArchive() {
  NSException::raise(NSInvalidArgumentException,
                     "the data is no keyed archive (in 'initForReadingWithData:')");
}

// Where an archive says of itself what it is.
constexpr std::int64_t version = 100000;
// Copies of texts may add up to this many times the archive, and in any case to some that are not
// worth a thought. The archiver shares no text that could need more.
constexpr std::size_t copiesPerByte = 32;
constexpr std::size_t copiesAlways = std::size_t{1} << 20U;
// So may long texts that are hashed, besides those of the archive, which are hashed once.
constexpr std::size_t hashedPerByte = 256;
constexpr std::size_t hashedAlways = std::size_t{1} << 26U;

NSPropertyListReader opened(const NSData& data) {
  auto list = NSPropertyListReader::open(data.bytes());
  if (!list) raiseNoArchive();
  return *list;
}

}  // namespace

struct NSKeyedUnarchiver::Archive {
  explicit Archive(const NSRef<NSData>& archived)
      : data(archived), list(opened(*data)), hashes(hashedAlways + hashedPerByte * list.size()) {
    const auto top = list.find(list.top(), u"$top");
    const auto objects = list.find(list.top(), u"$objects");
    const auto archiver = list.find(list.top(), u"$archiver");
    const auto number = list.find(list.top(), u"$version");
    if (!top || !list.object(*top).is(Kind::dictionary) || !objects ||
        !list.object(*objects).is(Kind::array) || !archiver ||
        !list.object(*archiver).isText(u"NSKeyedArchiver") || !number ||
        list.object(*number).integer() != version) {
      raiseNoArchive();
    }
    frame.keys = NSPropertyListKeys(list, *top);
    table = list.object(*objects);
    slots.resize(list.count());
  }

  // The value under the key of the object at hand.
  std::optional<Index> value(const NSRef<NSString>& key, const char* operation) {
    if (!key) NSRaiseNilArgument("key", operation);
    const std::u16string_view text = key->view();
    return frame.keys.find(text.starts_with(u'$') ? u'$' + std::u16string(text) : text);
  }
  [[noreturn]] static void raiseWrongKind(const NSRef<NSString>& key, const char* kind) {
    raiseBroken("value for key '" + key->utf8() + "' is not " + kind);
  }

  NSRef<NSObject> object(Index reference, const NSRef<NSString>& key, NSKeyedUnarchiver& coder) {
    const Value value = list.object(reference);
    // Some classes write text and data in their place.
    if (value.isText() || value.is(Kind::data)) return plain(reference, value);
    const auto number = referenced(value);
    if (!number) raiseWrongKind(key, "an object");
    if (*number == 0) return nullptr;
    if (*number >= list.references(table)) {
      raiseBroken("value for key '" + key->utf8() + "' refers to an object that is not there");
    }
    const Index index = list.reference(table, *number);
    const Value found = list.object(index);
    if (!found.is(Kind::dictionary)) return plain(index, found);
    Slot& slot = slots[index];
    if (slot.state == State::isBeingRead) {
      raiseBroken("the object for key '" + key->utf8() + "' contains itself");
    }
    if (slot.state == State::unread) readRecord(index, slot, coder);
    frame.tallest = std::max(frame.tallest, unsigned{slot.height});
    // An object that has been read before may itself be the top of a tall graph.
    if (depth + slot.height > NSMostNestedObjects) raiseTooDeep();
    return slot.object;
  }

  void noteCopy(std::size_t size) {
    copied += size;
    if (copied > copiesAlways + copiesPerByte * list.size()) {
      raiseBroken("texts are repeated too often");
    }
  }

  struct Readers {
    std::mutex mutex;
    std::unordered_map<std::u16string, Reader> byName;
  };
  static Readers& readers() {
    static NSNeverDestroyed<Readers> instance;
    return *instance;
  }

  const NSRef<NSData> data;
  const NSPropertyListReader list;

 private:
  enum class State : std::uint8_t { unread, isBeingRead, isRead };
  struct Slot {
    NSRef<NSObject> object;
    // How many objects are in each other below and with it.
    std::uint16_t height = 0;
    State state = State::unread;
  };

  // The object at hand.
  struct Frame {
    NSPropertyListKeys keys;
    unsigned tallest = 0;  // The greatest height of the objects that it has asked for.
  };

  // The number of the object that a reference means; nothing for what is no reference.
  std::optional<std::uint64_t> referenced(const Value& value) const {
    if (!value.is(Kind::dictionary)) return value.uid();
    if (list.references(value) != 2) return std::nullopt;
    if (!list.object(list.reference(value, 0)).isText(u"CF$UID")) return std::nullopt;
    const auto number = list.object(list.reference(value, 1)).integer();
    return number ? std::optional(static_cast<std::uint64_t>(*number)) : std::nullopt;
  }

  // Made once, so that what is shared in the archive is shared in memory.
  NSRef<NSObject> plain(Index index, const Value& value) {
    auto& object = slots[index].object;
    if (object) return object;
    object = madeOf(value);
    if (value.bytes.size() >= NSHashMemo::shortest / sizeof(char16_t)) hashes.add(*object);
    return object;
  }

  static NSRef<NSObject> madeOf(const Value& value) {
    if (value.isText()) return value.text();
    if (value.is(Kind::data)) return NSMake<NSData>(value.bytes);
    if (const auto integer = value.integer()) return NSMake<NSNumber>(NSInteger{*integer});
    if (const auto large = value.largeInteger()) return NSMake<NSNumber>(NSUInteger{*large});
    if (const auto real = value.real()) return NSMake<NSNumber>(*real);
    if (const auto boolean = value.boolean()) return NSMake<NSNumber>(*boolean);
    raiseBroken("an object of the archive is of no kind that objects have");
  }

  void readRecord(Index record, Slot& slot, NSKeyedUnarchiver& coder) {
    // Ends also when a class raises: who asked for the object may catch that and go on.
    struct Reading {
      ~Reading() {
        if (slot.state == State::isBeingRead) slot.state = State::unread;
        archive.frame = std::move(outer);
        --archive.depth;
      }
      Archive& archive;
      Slot& slot;
      Frame outer;
    };
    slot.state = State::isBeingRead;
    ++depth;
    const Reading reading{*this, slot, std::exchange(frame, {NSPropertyListKeys(list, record)})};
    const NSHashMemo::Use use(hashes);
    const std::u16string& name = className(record);
    if (depth > NSMostNestedObjects) raiseTooDeep();
    slot.object = make(name, coder);
    rememberLongText(slot.object.get());
    slot.height = static_cast<std::uint16_t>(frame.tallest + 1);
    slot.state = State::isRead;
  }

  // Its hash, which all members of a set that have the text ask for.
  void rememberLongText(const NSObject* object) {
    if (object == nullptr || typeid(*object) != typeid(NSMutableString)) return;
    const std::size_t units = static_cast<const NSMutableString*>(object)->length();
    if (units * sizeof(char16_t) >= NSHashMemo::shortest) hashes.addChangeable(*object);
  }

  const std::u16string& className(Index record) {
    const auto reference = list.find(record, u"$class");
    const auto number = reference ? referenced(list.object(*reference)) : std::nullopt;
    if (!number || *number >= list.references(table)) raiseBroken("an object has no class");
    const auto known = classNames.find(*number);
    if (known != classNames.end()) return known->second;
    const auto name = list.find(list.reference(table, *number), u"$classname");
    if (!name || !list.object(*name).isText()) raiseBroken("a class has no name");
    const auto text = list.object(*name).text();
    return classNames.emplace(*number, text->view()).first->second;
  }

  [[noreturn]] static void raiseTooDeep() {
    raiseBroken("more than " + std::to_string(NSMostNestedObjects) + " objects are in each other");
  }

  static NSRef<NSObject> make(std::u16string_view name, NSKeyedUnarchiver& coder) {
    if (const Reader reader = registered(name)) return reader(share(&coder));
    const auto classes = NSArchivedClasses();
    const auto known = std::ranges::find_if(
        classes, [&](const NSArchivedClass& each) { return each.name == name; });
    if (known == classes.end()) {
      raiseBroken("the class " + NSUTF8FromUnits(name) + " is not registered");
    }
    return known->decode(coder);
  }

  static Reader registered(std::u16string_view name) {
    auto& [mutex, byName] = readers();
    const std::lock_guard lock(mutex);
    const auto found = byName.find(std::u16string(name));
    return found == byName.end() ? nullptr : found->second;
  }

  Value table{};            // The references to the objects, by their numbers.
  std::vector<Slot> slots;  // By the index in the list.
  std::unordered_map<std::uint64_t, std::u16string> classNames;
  Frame frame;
  unsigned depth = 0;
  std::size_t copied = 0;
  NSHashMemo hashes;
};

void NSKeyedUnarchiver::setReader(const NSRef<NSString>& name, Reader reader) {
  if (!name) NSRaiseNilArgument("name", "setClass:forClassName:");
  auto& [mutex, byName] = Archive::readers();
  const std::lock_guard lock(mutex);
  byName[std::u16string(name->view())] = reader;
}

NSRef<NSObject> NSKeyedUnarchiver::unarchiveObjectWithData(const NSRef<NSData>& data) {
  return NSMake<NSKeyedUnarchiver>(data)->decodeObjectForKey(u"root"_ns);
}

NSRef<NSObject> NSKeyedUnarchiver::unarchivedObjectOfClass_fromData_error(NSClass aClass,
                                                                          const NSRef<NSData>& data,
                                                                          NSRef<NSError>* error) {
  if (!data) NSRaiseNilArgument("data", "unarchivedObjectOfClass:fromData:error:");
  const auto failed = [&](NSInteger code, const NSRef<NSString>& reason) {
    if (error != nullptr) {
      *error = NSError::errorWithDomain_code_description(NSCocoaErrorDomain(), code, reason);
    }
    return nullptr;
  };
  try {
    auto object = unarchiveObjectWithData(data);
    if (!object) return failed(NSCoderValueNotFoundError, u"the archive has no object"_ns);
    if (!object->isKindOfClass(aClass)) raiseWrongClass(*object, aClass, u"root"_ns);
    return object;
  } catch (const NSException& exception) {
    return failed(NSCoderReadCorruptError, exception.reason());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& exception) {
    return failed(NSCoderReadCorruptError, NSMake<NSString>(exception.what()));
  }
}

NSKeyedUnarchiver::NSKeyedUnarchiver(const NSRef<NSData>& data) {
  if (!data) NSRaiseNilArgument("data", "initForReadingWithData:");
  _archive = std::make_unique<Archive>(data);
}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

bool NSKeyedUnarchiver::containsValueForKey(const NSRef<NSString>& key) const {
  return _archive->value(key, "containsValueForKey:").has_value();
}

bool NSKeyedUnarchiver::decodeBoolForKey(const NSRef<NSString>& key) {
  const auto index = _archive->value(key, "decodeBoolForKey:");
  if (!index) return false;
  const auto value = _archive->list.object(*index).boolean();
  if (!value) Archive::raiseWrongKind(key, "a boolean");
  return *value;
}

NSInteger NSKeyedUnarchiver::decodeIntegerForKey(const NSRef<NSString>& key) {
  const auto index = _archive->value(key, "decodeIntegerForKey:");
  if (!index) return 0;
  const auto value = _archive->list.object(*index).integer();
  if (!value) Archive::raiseWrongKind(key, "an integer");
  return *value;
}

double NSKeyedUnarchiver::decodeDoubleForKey(const NSRef<NSString>& key) {
  const auto index = _archive->value(key, "decodeDoubleForKey:");
  if (!index) return 0;
  const Value value = _archive->list.object(*index);
  if (const auto real = value.real()) return *real;
  if (const auto integer = value.integer()) return static_cast<double>(*integer);
  if (const auto large = value.largeInteger()) return static_cast<double>(*large);
  Archive::raiseWrongKind(key, "a number");
}

NSRef<NSObject> NSKeyedUnarchiver::decodeObjectForKey(const NSRef<NSString>& key) {
  const auto index = _archive->value(key, "decodeObjectForKey:");
  return index ? _archive->object(*index, key, *this) : nullptr;
}

NSRef<NSString> NSKeyedUnarchiver::decodeTextForKey(const NSRef<NSString>& key) {
  auto text = decodeObjectOfClass<NSString>(key);
  if (text) _archive->noteCopy(text->length() * sizeof(char16_t));
  return text;
}

std::vector<NSRef<NSObject>> NSKeyedUnarchiver::decodeObjectsForKey(const NSRef<NSString>& key) {
  std::vector<NSRef<NSObject>> objects;
  const auto index = _archive->value(key, "decodeObjectsForKey:");
  if (!index) return objects;
  const auto& list = _archive->list;
  const Value array = list.object(*index);
  if (!array.is(Kind::array)) Archive::raiseWrongKind(key, "a list of objects");
  objects.reserve(list.references(array));
  for (std::size_t k = 0; k < list.references(array); ++k) {
    objects.push_back(_archive->object(list.reference(array, k), key, *this));
  }
  return objects;
}
