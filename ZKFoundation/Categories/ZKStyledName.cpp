#include "ZKFoundation/Categories/ZKStyledName.h"

#include <algorithm>
#include <array>
#include <optional>

#include <Foundation/NSStringComparison.h>
#include <Foundation/Text/NormalForm.h>

namespace {

constexpr auto npos = std::u16string_view::npos;

// What stands around the number, by `ZKNamingStyle`.
struct Marks {
  std::u16string_view opening;
  std::u16string_view closing;
};
constexpr std::array<Marks, 3> marksByStyle = {{{u" ", u""}, {u" (", u")"}, {u"", u""}}};

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool isLetter(char16_t unit) { return (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z'; }

// A name's own number, and the longest that may follow it, all of which fit 64 bits.
constexpr std::size_t mostDigits = 18;
constexpr std::size_t mostDigitsOfSuccessors = mostDigits + 1;

// The value of a text of digits that are not too many.
std::optional<std::uint64_t> numberIn(std::u16string_view digits, std::size_t most) {
  if (digits.empty() || digits.size() > most) return std::nullopt;
  std::uint64_t number = 0;
  for (const char16_t unit : digits) {
    if (!isDigit(unit)) return std::nullopt;
    number = number * 10 + (static_cast<std::uint64_t>(unit) - u'0');
  }
  return number;
}

// Where the last extension begins, with its "."; `npos` without one.
std::size_t startOfExtension(std::u16string_view name) {
  const std::size_t dot = name.rfind(u'.');
  if (dot == npos || dot == 0) return npos;
  const std::u16string_view extension = name.substr(dot + 1);
  const bool hasBlank = extension.find(u' ') != npos;
  return hasBlank || std::ranges::all_of(extension, isDigit) ? npos : dot;
}

// The extensions of programs that compress one file of any kind.
constexpr std::array<std::u16string_view, 9> compressors = {
    u".gz", u".bz2", u".xz", u".zst", u".lz", u".lz4", u".lzma", u".br", u".Z"};

// Where the extensions begin; the length of a name without any.
std::size_t startOfExtensions(std::u16string_view name) {
  const std::size_t last = startOfExtension(name);
  if (last == npos) return name.size();
  if (std::ranges::find(compressors, name.substr(last)) == compressors.end()) return last;
  constexpr std::size_t longest = 5;  // A longer one is more likely a part of the name.
  const std::size_t inner = startOfExtension(name.substr(0, last));
  const bool isExtension =
      inner != npos && last - inner - 1 <= longest && isLetter(name[inner + 1]);
  return isExtension ? inner : last;
}

}  // namespace

ZKStyledName::Parts ZKStyledName::partsOf(std::u16string_view name,
                                          const ZKNamingOptions& options) {
  const std::size_t stemEnd = options.isFileName ? startOfExtensions(name) : name.size();
  const auto& [opening, closing] =
      marksByStyle[options.style < marksByStyle.size() ? options.style : ZKNamingSpaced];
  const std::u16string_view stem = name.substr(0, stemEnd);
  const auto after = std::u16string(closing).append(name.substr(stemEnd));
  if (stem.ends_with(closing)) {
    const std::size_t digitsEnd = stem.size() - closing.size();
    std::size_t start = digitsEnd;
    while (start > 0 && isDigit(stem[start - 1])) --start;
    const std::u16string_view before = stem.substr(0, start);
    const std::u16string_view digits = stem.substr(start, digitsEnd - start);
    const auto number = numberIn(digits, mostDigits);
    const bool isInStyle =
        before.ends_with(opening) && (opening.empty() || before.size() > opening.size());
    if (number && isInStyle) {
      return {std::u16string(before), after, *number, digits[0] == u'0' ? digits.size() : 0};
    }
  }
  return {std::u16string(stem).append(opening), after};
}

// The text itself, or what equal texts have in common.
std::u16string ZKStyledName::form(std::u16string_view text) const {
  return _ignoresCase ? NSNormalForm(text, NSCaseInsensitiveSearch) : std::u16string(text);
}

ZKStyledName::ZKStyledName(std::u16string_view name, const ZKNamingOptions& options,
                           std::size_t count)
    : _name(name),
      _ignoresCase(options.ignoresCase),
      _parts(partsOf(name, options)),
      _nameForm(form(name)),
      _before(form(_parts.before)),
      _after(form(_parts.after)),
      _numbers(_parts.number + 1, count) {}

void ZKStyledName::take(std::u16string_view name) {
  const std::u16string own = _ignoresCase ? form(name) : std::u16string();
  std::u16string_view text = _ignoresCase ? std::u16string_view(own) : name;
  _isTaken = _isTaken || text == _nameForm;
  if (text.size() < _before.size() + _after.size()) return;
  if (!text.starts_with(_before) || !text.ends_with(_after)) return;
  text = text.substr(_before.size(), text.size() - _before.size() - _after.size());
  const auto number = numberIn(text, mostDigitsOfSuccessors);
  // Only what would be written so is in the way.
  const bool isWritten =
      text.size() == _parts.width || (text.size() > _parts.width && text[0] != u'0');
  if (number && isWritten) _numbers.take(*number);
}

std::u16string ZKStyledName::freeName() const {
  if (!_isTaken) return std::u16string(_name);
  const std::string digits = std::to_string(_numbers.smallest());
  std::u16string result = _parts.before;
  if (digits.size() < _parts.width) result.append(_parts.width - digits.size(), u'0');
  return result.append(digits.begin(), digits.end()).append(_parts.after);
}
