#include "Foundation/NSKeyedUnarchiver.h"

#include "Foundation/NSArchivedClasses.h"
#include "Foundation/NSException.h"
#include "Foundation/NSNeverDestroyed.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSPropertyListCheck.h"
#include "Foundation/NSPropertyListNode.h"
#include "Foundation/NSString.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace {

constexpr unsigned deepest = 500;

[[noreturn]] void raiseBroken(const std::string& reason) {
  NSException::raise(NSInvalidUnarchiveOperationException, reason);
}

[[noreturn]] void raiseNoArchive() {
  NSException::raise(NSInvalidArgumentException,
                     "the data is no keyed archive (in 'initForReadingWithData:')");
}

template <class Reader>
struct Readers {
  std::mutex mutex;
  std::unordered_map<std::u16string, Reader> byName;
};

template <class Reader>
Readers<Reader>& readers() {
  static NSNeverDestroyed<Readers<Reader>> instance;
  return *instance;
}

std::string_view textOf(plist_t node) {
  std::uint64_t length = 0;
  const char* const text = plist_get_string_ptr(node, &length);
  return text == nullptr ? std::string_view() : std::string_view(text, length);
}

// Gives null for a node that is no dictionary, as a look-up of libplist's does.
plist_t item(plist_t dictionary, const char* key) { return plist_dict_get_item(dictionary, key); }

bool is(plist_t node, plist_type type) {
  return node != nullptr && plist_get_node_type(node) == type;
}

std::uint64_t integerOf(plist_t node) {
  std::uint64_t value = 0;
  plist_get_uint_val(node, &value);
  return value;
}

// The number of the object that a reference means; nothing for what is no reference.
std::optional<std::uint64_t> referenced(plist_t node) {
  if (is(node, PLIST_UID)) {
    std::uint64_t index = 0;
    plist_get_uid_val(node, &index);
    return index;
  }
  plist_t const number = item(node, "CF$UID");
  if (is(number, PLIST_UINT) && plist_dict_get_size(node) == 1) return integerOf(number);
  return std::nullopt;
}

std::vector<plist_t> itemsOf(plist_t array) {
  std::vector<plist_t> items;
  items.reserve(plist_array_get_size(array));
  plist_array_iter walk = nullptr;
  plist_array_new_iter(array, &walk);
  const std::unique_ptr<void, decltype(&std::free)> owner(walk, &std::free);
  for (plist_t each = nullptr; plist_array_next_item(array, walk, &each), each != nullptr;) {
    items.push_back(each);
  }
  return items;
}

NSPropertyListNode parse(const NSRef<NSData>& data) {
  if (!data) NSRaiseNilArgument("data", "initForReadingWithData:");
  const std::string_view bytes = data->view();
  plist_t node = nullptr;
  if (bytes.size() <= std::numeric_limits<std::uint32_t>::max() &&
      NSIsFlatBinaryPropertyList(data->bytes())) {
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
  }
  return NSPropertyListNode(node);
}

}  // namespace

struct NSKeyedUnarchiver::Archive {
  explicit Archive(const NSRef<NSData>& data) : root(parse(data)) {
    current = item(root.get(), "$top");
    plist_t const table = item(root.get(), "$objects");
    if (!is(current, PLIST_DICT) || !is(table, PLIST_ARRAY) ||
        !is(item(root.get(), "$archiver"), PLIST_STRING) ||
        textOf(item(root.get(), "$archiver")) != "NSKeyedArchiver" ||
        !is(item(root.get(), "$version"), PLIST_UINT) ||
        integerOf(item(root.get(), "$version")) != 100000) {
      raiseNoArchive();
    }
    nodes = itemsOf(table);
    objects.resize(nodes.size());
    states.resize(nodes.size(), State::unread);
    heights.resize(nodes.size(), 0);
  }

  // The value under the key of the object at hand, null when there is none.
  plist_t value(const NSRef<NSString>& key, const char* operation) const {
    if (!key) NSRaiseNilArgument("key", operation);
    if (key->view().find(u'\0') != std::u16string_view::npos) return nullptr;
    std::string text = key->utf8();
    if (text.starts_with('$')) text.insert(0, 1, '$');
    return item(current, text.c_str());
  }
  plist_t valueOfType(const NSRef<NSString>& key, plist_type type, const char* kind,
                      const char* operation) const {
    plist_t const node = value(key, operation);
    if (node != nullptr && !is(node, type)) raiseWrongKind(key, kind);
    return node;
  }
  [[noreturn]] static void raiseWrongKind(const NSRef<NSString>& key, const char* kind) {
    raiseBroken("value for key '" + key->utf8() + "' is not " + kind);
  }

  NSRef<NSObject> object(plist_t reference, const NSRef<NSString>& key, NSKeyedUnarchiver& coder) {
    // Some classes write text and data in their place.
    if (is(reference, PLIST_STRING) || is(reference, PLIST_DATA)) return read(reference, coder);
    const auto index = referenced(reference);
    if (!index) raiseWrongKind(key, "an object");
    if (*index == 0) return nullptr;
    if (*index >= nodes.size()) {
      raiseBroken("value for key '" + key->utf8() + "' refers to an object that is not there");
    }
    if (states[*index] == State::isBeingRead) {
      raiseBroken("the object for key '" + key->utf8() + "' contains itself");
    }
    if (states[*index] == State::unread) {
      const BeingRead reading(*this, *index);
      objects[*index] = read(nodes[*index], coder);
    }
    tallest = std::max(tallest, heights[*index]);
    // An object that has been read before may itself be the top of a tall graph.
    if (depth + heights[*index] > deepest) raiseTooDeep();
    return objects[*index];
  }

  NSPropertyListNode root;
  plist_t current = nullptr;

 private:
  enum class State : std::uint8_t { unread, isBeingRead, isRead };

  // Both also when reading raises: the reader may catch that and go on.
  class BeingRead {
   public:
    BeingRead(Archive& archive, std::uint64_t index)
        : _archive(archive), _index(index), _outerTallest(std::exchange(archive.tallest, 0)) {
      _archive.states[_index] = State::isBeingRead;
    }
    BeingRead(const BeingRead&) = delete;
    ~BeingRead() {
      const bool hasRaised = std::uncaught_exceptions() > _exceptions;
      _archive.states[_index] = hasRaised ? State::unread : State::isRead;
      _archive.heights[_index] = _archive.tallest;
      _archive.tallest = _outerTallest;
    }

   private:
    Archive& _archive;
    std::uint64_t _index;
    unsigned _outerTallest;
    int _exceptions = std::uncaught_exceptions();
  };
  class Entering {
   public:
    Entering(Archive& archive, plist_t record)
        : _archive(archive), _outer(std::exchange(archive.current, record)) {
      ++archive.depth;
    }
    Entering(const Entering&) = delete;
    ~Entering() {
      _archive.current = _outer;
      --_archive.depth;
    }

   private:
    Archive& _archive;
    plist_t _outer;
  };

  NSRef<NSObject> read(plist_t node, NSKeyedUnarchiver& coder) {
    switch (plist_get_node_type(node)) {
      case PLIST_STRING:
        return NSMake<NSString>(textOf(node));
      case PLIST_UINT:
        return NSMake<NSNumber>(static_cast<NSInteger>(integerOf(node)));
      case PLIST_DICT:
        return readRecord(node, coder);
      case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return NSMake<NSNumber>(value != 0);
      }
      case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return NSMake<NSNumber>(value);
      }
      case PLIST_DATA: {
        std::uint64_t length = 0;
        const char* const bytes = plist_get_data_ptr(node, &length);
        return NSMake<NSData>(std::string_view(bytes, length));
      }
      default:
        raiseBroken("an object of the archive is of no kind that objects have");
    }
  }

  NSRef<NSObject> readRecord(plist_t record, NSKeyedUnarchiver& coder) {
    const std::u16string& name = className(record);
    if (depth == deepest) raiseTooDeep();
    const Entering entering(*this, record);
    auto object = make(name, coder);
    ++tallest;
    return object;
  }

  // Kept, as a look-up of libplist's goes through all keys of the class's record.
  const std::u16string& className(plist_t record) {
    const auto index = referenced(item(record, "$class"));
    if (!index || *index >= nodes.size()) raiseBroken("an object has no class");
    if (const auto known = classNames.find(*index); known != classNames.end()) return known->second;
    plist_t const name = item(nodes[*index], "$classname");
    if (!is(name, PLIST_STRING)) raiseBroken("a class has no name");
    const NSUnitBuffer units = NSUnitsFromUTF8(textOf(name));
    return classNames.emplace(*index, units.view()).first->second;
  }

  [[noreturn]] static void raiseTooDeep() {
    raiseBroken("more than " + std::to_string(deepest) + " objects are in each other");
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
    auto& [mutex, byName] = readers<Reader>();
    const std::lock_guard lock(mutex);
    const auto found = byName.find(std::u16string(name));
    return found == byName.end() ? nullptr : found->second;
  }

  std::vector<plist_t> nodes;
  std::vector<NSRef<NSObject>> objects;
  std::vector<State> states;
  // How many objects are in each other below and with each one; and the most of those that the
  // object at hand has asked for.
  std::vector<unsigned> heights;
  unsigned tallest = 0;
  std::unordered_map<std::uint64_t, std::u16string> classNames;
  unsigned depth = 0;
};

void NSKeyedUnarchiver::setReader(const NSRef<NSString>& name, Reader reader) {
  if (!name) NSRaiseNilArgument("name", "setClass:forClassName:");
  auto& [mutex, byName] = readers<Reader>();
  const std::lock_guard lock(mutex);
  byName[std::u16string(name->view())] = reader;
}

NSRef<NSObject> NSKeyedUnarchiver::unarchiveObjectWithData(const NSRef<NSData>& data) {
  return NSMake<NSKeyedUnarchiver>(data)->decodeObjectForKey(u"root"_ns);
}

NSKeyedUnarchiver::NSKeyedUnarchiver(const NSRef<NSData>& data)
    : _archive(std::make_unique<Archive>(data)) {}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

bool NSKeyedUnarchiver::containsValueForKey(const NSRef<NSString>& key) const {
  return _archive->value(key, "containsValueForKey:") != nullptr;
}

bool NSKeyedUnarchiver::decodeBoolForKey(const NSRef<NSString>& key) {
  std::uint8_t value = 0;
  plist_get_bool_val(_archive->valueOfType(key, PLIST_BOOLEAN, "a boolean", "decodeBoolForKey:"),
                     &value);
  return value != 0;
}

NSInteger NSKeyedUnarchiver::decodeIntegerForKey(const NSRef<NSString>& key) {
  return static_cast<NSInteger>(
      integerOf(_archive->valueOfType(key, PLIST_UINT, "an integer", "decodeIntegerForKey:")));
}

double NSKeyedUnarchiver::decodeDoubleForKey(const NSRef<NSString>& key) {
  plist_t const node = _archive->value(key, "decodeDoubleForKey:");
  if (is(node, PLIST_UINT)) return static_cast<double>(static_cast<NSInteger>(integerOf(node)));
  double value = 0;
  plist_get_real_val(_archive->valueOfType(key, PLIST_REAL, "a number", "decodeDoubleForKey:"),
                     &value);
  return value;
}

NSRef<NSObject> NSKeyedUnarchiver::decodeObjectForKey(const NSRef<NSString>& key) {
  plist_t const node = _archive->value(key, "decodeObjectForKey:");
  return node == nullptr ? nullptr : _archive->object(node, key, *this);
}

std::vector<NSRef<NSObject>> NSKeyedUnarchiver::decodeObjectsForKey(const NSRef<NSString>& key) {
  std::vector<NSRef<NSObject>> objects;
  plist_t const list =
      _archive->valueOfType(key, PLIST_ARRAY, "a list of objects", "decodeObjectsForKey:");
  if (list == nullptr) return objects;
  const auto references = itemsOf(list);
  objects.reserve(references.size());
  for (plist_t const reference : references) {
    objects.push_back(_archive->object(reference, key, *this));
  }
  return objects;
}
