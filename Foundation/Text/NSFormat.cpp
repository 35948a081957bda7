#include "Foundation/NSFormat.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdio>
#include <optional>
#include <string>

#include <Foundation/NSNumber.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUnicode.h>

namespace {

// What widths and precisions are cut to, so that a slip in a translation does not fill the memory.
constexpr std::size_t widest = 1000;

// A conversion: "%2$-8.3lf" has the position 2, flag "-", width 8, precision 3 and letter "f".
struct Conversion {
  std::size_t position = 0;  // 0 where none is given.
  std::string flags;
  std::size_t width = 0;
  std::optional<std::size_t> precision;
  char letter = '@';
};

bool isOneOf(char letter, std::string_view letters) {
  return letters.find(letter) != std::string_view::npos;
}

// Reads conversions from after the "%"; what is none is left as it is.
class Reader {
 public:
  explicit Reader(std::u16string_view text) : _text(text) {}

  std::optional<Conversion> read() {
    Conversion conversion;
    const std::u16string_view start = _text;
    if (const auto number = digits(); number != 0 && takeOneOf("$") != 0) {
      conversion.position = number;
    } else {
      _text = start;
    }
    while (const char flag = takeOneOf("-0+ #'")) {
      // Groups of digits are the number formatter's business.
      if (flag != '\'' && !isOneOf(flag, conversion.flags)) conversion.flags += flag;
    }
    conversion.width = std::min(digits(), widest);
    if (takeOneOf(".") != 0) conversion.precision = std::min(digits(), widest);
    while (takeOneOf("hlqztjL") != 0) {
    }
    conversion.letter = takeOneOf("@diuoxXcCsfFeEgGaAp%");
    return conversion.letter != 0 ? std::optional(conversion) : std::nullopt;
  }

  [[nodiscard]] std::u16string_view rest() const { return _text; }

 private:
  // Gives 0 where none of them comes next.
  char takeOneOf(std::string_view letters) {
    if (_text.empty() || _text[0] >= 0x80) return 0;
    const char letter = static_cast<char>(_text[0]);
    if (!isOneOf(letter, letters)) return 0;
    _text.remove_prefix(1);
    return letter;
  }
  std::size_t digits() {
    std::size_t value = 0;
    while (!_text.empty() && _text[0] >= u'0' && _text[0] <= u'9') {
      value = std::min<std::size_t>(value * 10 + (_text[0] - u'0'), 1'000'000);
      _text.remove_prefix(1);
    }
    return value;
  }

  std::u16string_view _text;
};

void appendPadded(const Conversion& conversion, std::u16string_view body, NSUnitBuffer& text) {
  const std::size_t missing = conversion.width - std::min(conversion.width, body.size());
  const bool isLeft = isOneOf('-', conversion.flags);
  const auto pad = [&] { std::fill_n(text.extend(missing), missing, u' '); };
  if (!isLeft) pad();
  text.append(body);
  if (isLeft) pad();
}

// What "%@" and "%s" write. The precision of another conversion was not meant for text.
void appendText(const Conversion& conversion, std::u16string_view body, NSUnitBuffer& text) {
  if (conversion.precision && (conversion.letter == '@' || conversion.letter == 's')) {
    const std::size_t most = *conversion.precision;
    body = body.substr(0, NSSplitsPair(body, most) ? most - 1 : most);
  }
  appendPadded(conversion, body, text);
}

// What printf writes in the "C" locale, whatever the process's is.
template <class Number>
void appendPrinted(const Conversion& conversion, const std::string& letters, Number number,
                   NSUnitBuffer& text) {
  const std::string format = '%' + conversion.flags + "*.*" + letters;
  // The longest is DBL_MAX with all its 309 digits, a point and the precision.
  std::array<char, widest + 400> room;
  const int width = static_cast<int>(conversion.width);
  const int precision = conversion.precision ? static_cast<int>(*conversion.precision) : -1;
  static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
  const locale_t former = uselocale(cLocale);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
  const int length =
      std::snprintf(room.data(), room.size(), format.c_str(), width, precision, number);
#pragma GCC diagnostic pop
  uselocale(former);
  const auto count = static_cast<std::size_t>(length);
  std::copy_n(room.data(), count, text.extend(count));
}

// Whether a conversion writes such integers.
bool fitsInteger(char letter, const NSFormatArgument::Integer& integer) {
  constexpr std::uint64_t lastCharacter = 0x10FFFF;
  return isOneOf(letter, "cC") ? integer.bits <= lastCharacter : isOneOf(letter, "diuoxXp");
}

void appendInteger(Conversion conversion, const NSFormatArgument::Integer& integer,
                   NSUnitBuffer& text) {
  const char letter = conversion.letter;
  if (letter == 'c' || letter == 'C') {
    std::array<char16_t, 2> room;
    NSUnitBuffer units(room);
    NSAppendCharacter(static_cast<char32_t>(integer.bits), units);
    return appendPadded(conversion, units.view(), text);
  }
  const bool isDecimal = letter == 'd' || letter == 'i';
  if (isDecimal && (integer.isSigned || integer.value >= 0)) {
    return appendPrinted(conversion, "jd", std::intmax_t{integer.value}, text);
  }
  if (letter == 'p' && integer.bits == 0) return appendPadded(conversion, u"0x0", text);
  if (letter == 'p') conversion.flags += '#';
  const char printed = isDecimal ? 'u' : letter == 'p' ? 'x' : letter;
  appendPrinted(conversion, {'j', printed}, std::uintmax_t{integer.bits}, text);
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
    if (fitsInteger(letter, *integer)) return appendInteger(conversion, *integer, text);
    const auto digits =
        integer->isSigned ? std::to_string(integer->value) : std::to_string(integer->bits);
    appendText(conversion, NSUnitsFromUTF8(digits).view(), text);
  } else if (const auto* const number = std::get_if<double>(&argument.value())) {
    if (isOneOf(letter, "fFeEgGaA")) return appendPrinted(conversion, {letter}, *number, text);
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
      append(Conversion());
      format.remove_prefix(2);
      continue;
    }
    Reader reader(format.substr(1));
    const auto conversion = reader.read();
    if (!conversion || conversion->letter == '%') {
      text.append(u"%");
    } else {
      append(*conversion);
    }
    format = conversion ? reader.rest() : format.substr(1);
  }
}
