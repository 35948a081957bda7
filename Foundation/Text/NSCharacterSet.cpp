#include "Foundation/NSCharacterSet.h"

#include <algorithm>
#include <utility>

#include <unicode/uchar.h>

#include <Foundation/NSException.h>
#include <Foundation/NSNeverDestroyed.h>
#include <Foundation/NSString.h>

namespace {

constexpr char32_t planeSize = 0x10000;
constexpr NSUInteger characterCount = 0x110000;

using Plane = std::array<std::uint64_t, 1024>;
constinit const Plane emptyPlane{};

// Collects members and gives them as planes, without a plane where there are none.
class PlaneBuilder {
 public:
  void insert(char32_t character) {
    auto& plane = _planes[character / planeSize];
    if (plane == nullptr) plane = std::make_shared<Plane>();
    const char32_t unit = character % planeSize;
    (*plane)[unit / 64] |= std::uint64_t{1} << (unit % 64);
  }

  template <class Planes>
  Planes take() {
    Planes result;
    std::ranges::move(_planes, result.begin());
    return result;
  }

 private:
  std::array<std::shared_ptr<Plane>, 17> _planes;
};

const Plane& planeOrEmpty(const std::shared_ptr<const Plane>& plane) {
  return plane == nullptr ? emptyPlane : *plane;
}

constexpr auto unite = [](std::uint64_t a, std::uint64_t b) { return a | b; };
constexpr auto intersect = [](std::uint64_t a, std::uint64_t b) { return a & b; };
constexpr auto subtract = [](std::uint64_t a, std::uint64_t b) { return a & ~b; };
constexpr auto complement = [](std::uint64_t a, std::uint64_t /*b*/) { return ~a; };

}  // namespace

template <class Operation>
NSCharacterSet::Planes NSCharacterSet::combine(const Planes& a, const Planes& b,
                                               Operation operation) {
  Planes result;
  for (std::size_t k = 0; k < result.size(); ++k) {
    auto plane = std::make_shared<Plane>();
    std::ranges::transform(planeOrEmpty(a[k]), planeOrEmpty(b[k]), plane->begin(), operation);
    if (*plane != emptyPlane) result[k] = std::move(plane);
  }
  return result;
}

NSCharacterSet::Planes NSCharacterSet::planesOfRange(NSRange characters, const char* operation) {
  NSCheckRange(operation, characters, characterCount);
  PlaneBuilder builder;
  for (NSUInteger k = characters.location; k < NSMaxRange(characters); ++k) {
    builder.insert(static_cast<char32_t>(k));
  }
  return builder.take<Planes>();
}

NSCharacterSet::Planes NSCharacterSet::planesOfString(const NSRef<NSString>& string) {
  PlaneBuilder builder;
  std::u16string_view text = NSViewOf(string);
  while (!text.empty()) builder.insert(NSTakeCharacter(text));
  return builder.take<Planes>();
}

NSCharacterSet::Planes NSCharacterSet::planesOfCategories(std::uint32_t mask) {
  struct Context {
    std::uint32_t mask;
    PlaneBuilder builder;
  } context{mask, {}};
  const auto visit = [](const void* data, UChar32 start, UChar32 limit, UCharCategory category) {
    auto& [wanted, builder] = *static_cast<Context*>(const_cast<void*>(data));
    if ((wanted & U_MASK(category)) != 0) {
      for (UChar32 k = start; k < limit; ++k) builder.insert(static_cast<char32_t>(k));
    }
    return static_cast<UBool>(true);
  };
  u_enumCharTypes(visit, &context);
  return context.builder.take<Planes>();
}

NSCharacterSet::NSCharacterSet() noexcept : _basicPlane(emptyPlane.data()) {}

NSCharacterSet::NSCharacterSet(Planes planes) noexcept : NSCharacterSet() {
  setPlanes(std::move(planes));
}

NSCharacterSet::NSCharacterSet(NSRange characters)
    : NSCharacterSet(planesOfRange(characters, "characterSetWithRange:")) {}

NSCharacterSet::NSCharacterSet(const NSRef<NSString>& string)
    : NSCharacterSet(planesOfString(string)) {}

NSRef<NSCharacterSet> NSCharacterSet::make(Planes planes) {
  auto set = NSMake<NSCharacterSet>();
  set->setPlanes(std::move(planes));
  return set;
}

void NSCharacterSet::setPlanes(Planes planes) noexcept {
  _planes = std::move(planes);
  _basicPlane = planeOrEmpty(_planes[0]).data();
  _asciiRows = {};
  for (char16_t unit = 0; unit < 0x80; ++unit) {
    if (characterIsMember(unit))
      _asciiRows[unit % 16] |= static_cast<std::uint8_t>(1U << (unit / 16));
  }
}

NSRef<NSCharacterSet> NSCharacterSet::characterSetWithRange(NSRange characters) {
  return NSMake<NSCharacterSet>(characters);
}

NSRef<NSCharacterSet> NSCharacterSet::characterSetWithCharactersInString(
    const NSRef<NSString>& string) {
  return NSMake<NSCharacterSet>(string);
}

const NSRef<NSCharacterSet>& NSCharacterSet::whitespaceCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      make(combine(planesOfCategories(U_GC_ZS_MASK), planesOfString(u"\t"_ns), unite)));
  return *set;
}

const NSRef<NSCharacterSet>& NSCharacterSet::whitespaceAndNewlineCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(make(
      combine(planesOfCategories(U_GC_Z_MASK), planesOfString(u"\t\n\v\f\r\u0085"_ns), unite)));
  return *set;
}

const NSRef<NSCharacterSet>& NSCharacterSet::controlCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      make(planesOfCategories(U_GC_CC_MASK | U_GC_CF_MASK)));
  return *set;
}

const NSRef<NSCharacterSet>& NSCharacterSet::alphanumericCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      make(planesOfCategories(U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)));
  return *set;
}

const NSRef<NSCharacterSet>& NSCharacterSet::decimalDigitCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(make(planesOfCategories(U_GC_ND_MASK)));
  return *set;
}

const NSRef<NSCharacterSet>& NSCharacterSet::URLPathAllowedCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      make(planesOfString(u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
                          u"-._~!$&'()*+,=:@/"_ns)));
  return *set;
}

const NSRef<NSCharacterSet>& NSCharacterSet::URLQueryAllowedCharacterSet() {
  static const NSNeverDestroyed<NSRef<NSCharacterSet>> set(
      make(combine((*URLPathAllowedCharacterSet())._planes, planesOfString(u";?"_ns), unite)));
  return *set;
}

bool NSCharacterSet::longCharacterIsMember(char32_t character) const noexcept {
  if (character >= characterCount) return false;
  const char32_t unit = character % planeSize;
  return ((planeOrEmpty(_planes[character / planeSize])[unit / 64] >> (unit % 64)) & 1U) != 0;
}

NSRef<NSCharacterSet> NSCharacterSet::invertedSet() const {
  return make(combine(_planes, {}, complement));
}

bool NSCharacterSet::isEqual(const NSRef<NSObject>& other) const {
  if (other.get() == this) return true;
  const auto* const set = dynamic_cast<const NSCharacterSet*>(other.get());
  const auto samePlane = [](const auto& a, const auto& b) {
    return a == b || planeOrEmpty(a) == planeOrEmpty(b);
  };
  return set != nullptr && std::ranges::equal(_planes, set->_planes, samePlane);
}

NSUInteger NSCharacterSet::hash() const {
  NSUInteger result = 0;
  for (const std::uint64_t word : planeOrEmpty(_planes[0])) result = result * 31 + word;
  return result;
}

NSRef<NSCharacterSet> NSCharacterSet::copy() const {
  return copyWithZone(nullptr).as<NSCharacterSet>();
}

NSRef<NSObject> NSCharacterSet::copyWithZone(NSZone* /*zone*/) const { return self(); }

NSRef<NSMutableCharacterSet> NSCharacterSet::mutableCopy() const {
  return mutableCopyWithZone(nullptr).as<NSMutableCharacterSet>();
}

NSRef<NSObject> NSCharacterSet::mutableCopyWithZone(NSZone* /*zone*/) const {
  return NSMake<NSMutableCharacterSet>(share(this));
}

NSMutableCharacterSet::NSMutableCharacterSet(const NSRef<NSCharacterSet>& other) {
  formUnionWithCharacterSet(other);
}

void NSMutableCharacterSet::addCharactersInRange(NSRange characters) {
  setPlanes(combine(planesOf(*this), planesOfRange(characters, "addCharactersInRange:"), unite));
}

void NSMutableCharacterSet::removeCharactersInRange(NSRange characters) {
  setPlanes(
      combine(planesOf(*this), planesOfRange(characters, "removeCharactersInRange:"), subtract));
}

void NSMutableCharacterSet::addCharactersInString(const NSRef<NSString>& string) {
  setPlanes(combine(planesOf(*this), planesOfString(string), unite));
}

void NSMutableCharacterSet::removeCharactersInString(const NSRef<NSString>& string) {
  setPlanes(combine(planesOf(*this), planesOfString(string), subtract));
}

void NSMutableCharacterSet::formUnionWithCharacterSet(const NSRef<NSCharacterSet>& other) {
  if (!other) return;
  setPlanes(combine(planesOf(*this), planesOf(*other), unite));
}

void NSMutableCharacterSet::formIntersectionWithCharacterSet(const NSRef<NSCharacterSet>& other) {
  setPlanes(other ? combine(planesOf(*this), planesOf(*other), intersect) : Planes());
}

void NSMutableCharacterSet::invert() { setPlanes(combine(planesOf(*this), {}, complement)); }

NSRef<NSObject> NSMutableCharacterSet::copyWithZone(NSZone* /*zone*/) const {
  return make(planesOf(*this));
}
