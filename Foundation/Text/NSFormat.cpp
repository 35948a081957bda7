#include "Foundation/NSFormat.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

#include <Foundation/NSNumber.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUnicode.h>

namespace {

// What widths and precisions are cut to, so that a slip in a translation does not fill the memory.
constexpr std::size_t widest = 1000;

// A conversion: "%2$-8.3lf" with the position 2, the flag "-", the width 8, the precision 3 and the
// letter "f".
struct Conversion {
  std::size_t position = 0;  // 0 where none is given.
  std::size_t width = 0;
  std::optional<std::size_t> precision;
  char letter = 0;
  bool isLeft = false;
  bool hasZeros = false;
  bool hasPlus = false;
  bool hasBlank = false;
  bool hasPrefix = false;
};

// Reads conversions from behind the "%"; what is none is left as it is.
class Reader {
 public:
  explicit Reader(std::u16string_view text) : _text(text) {}

  std::optional<Conversion> read() {
    Conversion conversion;
    const std::u16string_view start = _text;
    if (const auto number = digits(); number != 0 && take(u'$')) {
      conversion.position = number;
    } else {
      _text = start;
    }
    while (takeFlag(conversion)) {
    }
    conversion.width = std::min(digits(), widest);
    if (take(u'.')) conversion.precision = std::min(digits(), widest);
    while (!_text.empty() && std::u16string_view(u"hlqztjL").find(_text[0]) != npos) {
      _text.remove_prefix(1);
    }
    if (_text.empty() || std::u16string_view(u"@diuoxXcCsfFeEgGaAp%").find(_text[0]) == npos) {
      return std::nullopt;
    }
    conversion.letter = static_cast<char>(_text[0]);
    _text.remove_prefix(1);
    return conversion;
  }

  std::u16string_view rest() const { return _text; }

 private:
  static constexpr std::size_t npos = std::u16string_view::npos;

  bool take(char16_t unit) {
    if (!_text.starts_with(unit)) return false;
    _text.remove_prefix(1);
    return true;
  }
  std::size_t digits() {
    std::size_t value = 0;
    while (!_text.empty() && _text[0] >= u'0' && _text[0] <= u'9') {
      value = std::min<std::size_t>(value * 10 + (_text[0] - u'0'), 1'000'000);
      _text.remove_prefix(1);
    }
    return value;
  }
  bool takeFlag(Conversion& conversion) {
    if (take(u'-')) return conversion.isLeft = true;
    if (take(u'0')) return conversion.hasZeros = true;
    if (take(u'+')) return conversion.hasPlus = true;
    if (take(u' ')) return conversion.hasBlank = true;
    if (take(u'#')) return conversion.hasPrefix = true;
    return take(u'\'');  // Groups of digits are the number formatter's business.
  }

  std::u16string_view _text;
};

void appendPadded(const Conversion& conversion, std::u16string_view body, NSUnitBuffer& text) {
  if (body.size() >= conversion.width) return text.append(body);
  const std::size_t missing = conversion.width - body.size();
  const auto pad = [&] { std::fill_n(text.extend(missing), missing, u' '); };
  if (!conversion.isLeft) pad();
  text.append(body);
  if (conversion.isLeft) pad();
}

void appendUTF8(const Conversion& conversion, std::string_view utf8, NSUnitBuffer& text) {
  appendPadded(conversion, NSUnitsFromUTF8(utf8).view(), text);
}

// What "%@" and "%s" write. The precision of another conversion was not meant for text.
void appendText(const Conversion& conversion, std::u16string_view body, NSUnitBuffer& text) {
  if (conversion.precision && (conversion.letter == '@' || conversion.letter == 's')) {
    const std::size_t most = *conversion.precision;
    body = body.substr(0, NSSplitsPair(body, most) ? most - 1 : most);
  }
  appendPadded(conversion, body, text);
}

// Sign or "0x", zeros, and digits; zeros fill the width only where nothing else does.
void appendNumber(const Conversion& conversion, std::string_view sign, std::string digits,
                  std::size_t leastDigits, bool mayHaveZeros, NSUnitBuffer& text) {
  if (mayHaveZeros && conversion.hasZeros && !conversion.isLeft) {
    leastDigits = std::max(leastDigits, conversion.width - std::min(conversion.width, sign.size()));
  }
  if (digits.size() < leastDigits) digits.insert(0, leastDigits - digits.size(), '0');
  digits.insert(0, sign);
  appendUTF8(conversion, digits, text);
}

std::string_view signOf(const Conversion& conversion, bool isNegative) {
  if (isNegative) return "-";
  return conversion.hasPlus ? "+" : conversion.hasBlank ? " " : "";
}

void toUpper(std::string& text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::toupper(c); });
}

void appendCharacter(const Conversion& conversion, std::uint64_t value, NSUnitBuffer& text) {
  const auto unit = static_cast<char16_t>(value);
  appendPadded(conversion, {&unit, 1}, text);
}

void appendInteger(const Conversion& conversion, const NSFormatArgument::Integer& integer,
                   NSUnitBuffer& text) {
  const char letter = conversion.letter;
  if (letter == 'c' || letter == 'C') return appendCharacter(conversion, integer.bits, text);
  const bool isNegative = (letter == 'd' || letter == 'i') && integer.isSigned && integer.value < 0;
  const std::uint64_t magnitude =
      isNegative ? 0 - static_cast<std::uint64_t>(integer.value) : integer.bits;
  const bool isHexadecimal = letter == 'x' || letter == 'X' || letter == 'p';
  const int base = isHexadecimal ? 16 : letter == 'o' ? 8 : 10;
  std::array<char, 24> room;  // 22 octal digits at most.
  const char* const end =
      std::to_chars(room.data(), room.data() + room.size(), magnitude, base).ptr;
  std::string digits(std::as_const(room).data(), end);
  // Zero has no digits when none are asked for, and no prefix.
  if (magnitude == 0 && conversion.precision == 0) digits.clear();
  if (letter == 'o' && conversion.hasPrefix && !digits.starts_with('0')) digits.insert(0, 1, '0');
  std::string_view sign = letter == 'd' || letter == 'i' ? signOf(conversion, isNegative) : "";
  if (isHexadecimal && (letter == 'p' || (conversion.hasPrefix && magnitude != 0))) {
    sign = letter == 'X' ? "0X" : "0x";
  }
  if (letter == 'X') toUpper(digits);
  appendNumber(conversion, sign, std::move(digits), conversion.precision.value_or(0),
               !conversion.precision, text);
}

void appendFloating(const Conversion& conversion, double value, NSUnitBuffer& text) {
  const char letter =
      static_cast<char>(std::tolower(static_cast<unsigned char>(conversion.letter)));
  const bool isNegative = std::signbit(value);
  const double magnitude = std::abs(value);
  // The longest is DBL_MAX with all its 309 digits, a point and the precision.
  std::array<char, widest + 400> room;
  char* const start = room.data();
  char* const limit = start + room.size();
  const int precision = static_cast<int>(conversion.precision.value_or(6));
  const auto format = letter == 'e'   ? std::chars_format::scientific
                      : letter == 'g' ? std::chars_format::general
                      : letter == 'a' ? std::chars_format::hex
                                      : std::chars_format::fixed;
  const bool isShortest = letter == 'a' && !conversion.precision;
  const char* const end = isShortest
                              ? std::to_chars(start, limit, magnitude, format).ptr
                              : std::to_chars(start, limit, magnitude, format, precision).ptr;
  std::string digits(std::as_const(room).data(), end);
  std::string sign(signOf(conversion, isNegative));
  if (letter == 'a' && std::isfinite(value)) sign += "0x";
  if (std::isupper(static_cast<unsigned char>(conversion.letter)) != 0) {
    toUpper(digits);
    toUpper(sign);
  }
  appendNumber(conversion, sign, std::move(digits), 0, std::isfinite(value), text);
}

bool isOneOf(char letter, std::string_view letters) {
  return letters.find(letter) != std::string_view::npos;
}

void appendArgument(const Conversion& conversion, const NSFormatArgument& argument,
                    NSUnitBuffer& text) {
  const char letter = conversion.letter;
  if (const auto* const object = std::get_if<const NSObject*>(&argument.value())) {
    if (letter == 'p') {
      const auto address = reinterpret_cast<std::uintptr_t>(*object);
      return appendInteger(conversion, {0, address, false}, text);
    }
    const auto description = *object != nullptr ? (*object)->description() : u"(null)"_ns;
    appendText(conversion, NSViewOf(description), text);
  } else if (const auto* const integer =
                 std::get_if<NSFormatArgument::Integer>(&argument.value())) {
    if (isOneOf(letter, "diuoxXcCp")) return appendInteger(conversion, *integer, text);
    const auto digits =
        integer->isSigned ? std::to_string(integer->value) : std::to_string(integer->bits);
    appendText(conversion, NSUnitsFromUTF8(digits).view(), text);
  } else if (const auto* const number = std::get_if<double>(&argument.value())) {
    if (isOneOf(letter, "fFeEgGaA")) return appendFloating(conversion, *number, text);
    appendText(conversion, NSMake<NSNumber>(*number)->stringValue()->view(), text);
  } else if (const auto* const units = std::get_if<std::u16string_view>(&argument.value())) {
    appendText(conversion, *units, text);
  } else {
    const auto utf8 = std::get<std::string_view>(argument.value());
    appendText(conversion, NSUnitsFromUTF8(utf8).view(), text);
  }
}

}  // namespace

void NSAppendFormat(std::u16string_view format, std::span<const NSFormatArgument> arguments,
                    NSUnitBuffer& text) {
  static const NSFormatArgument missing(nullptr);
  static const Conversion plain = [] {
    Conversion conversion;
    conversion.letter = '@';
    return conversion;
  }();
  std::size_t next = 0;
  const auto append = [&](const Conversion& conversion) {
    const std::size_t index = conversion.position != 0 ? conversion.position - 1 : next++;
    appendArgument(conversion, index < arguments.size() ? arguments[index] : missing, text);
  };
  while (true) {
    const std::size_t percent = std::min(format.find(u'%'), format.size());
    text.append(format.substr(0, percent));
    format.remove_prefix(percent);
    if (format.empty()) return;
    if (format.substr(1).starts_with(u'@')) {
      append(plain);
      format.remove_prefix(2);
      continue;
    }
    Reader reader(format.substr(1));
    const auto conversion = reader.read();
    if (!conversion) {
      text.append(format.substr(0, 1));
      format.remove_prefix(1);
      continue;
    }
    format = reader.rest();
    if (conversion->letter == '%') {
      text.append(u"%");
      continue;
    }
    append(*conversion);
  }
}
