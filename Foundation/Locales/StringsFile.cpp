#include "Foundation/Locales/StringsFile.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <optional>

#include <Foundation/NSLog.h>
#include <Foundation/NSString.h>
#include <Foundation/NSStringEncoding.h>

namespace {

constexpr std::size_t npos = std::u16string_view::npos;

bool isBlank(char16_t unit) {
  return std::u16string_view(u" \t\n\v\f\r\u0085\u00A0\u2028\u2029\uFEFF").find(unit) != npos;
}

bool isWordUnit(char16_t unit) {
  return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
         (unit >= u'0' && unit <= u'9') || std::u16string_view(u"_-.:/$").find(unit) != npos;
}

std::optional<unsigned> digitValue(char16_t unit, unsigned base) {
  const unsigned value = unit >= u'0' && unit <= u'9'   ? unit - u'0'
                         : unit >= u'a' && unit <= u'f' ? unit - u'a' + 10U
                         : unit >= u'A' && unit <= u'F' ? unit - u'A' + 10U
                                                        : base;
  return value < base ? std::optional(value) : std::nullopt;
}

class TableReader {
 public:
  explicit TableReader(std::u16string_view text) : _text(text) {}

  NSStringsFile read() {
    while (skipBlanks() && _at < _text.size()) {
      const std::size_t start = _at;
      if (!readEntry()) passOver(start);
    }
    return {_entries, _fault};
  }

 private:
  // Gives false, with the fault noted, for what is no entry.
  bool readEntry() {
    NSUnitBuffer key;
    if (!readText(key) || !skipBlanks()) return false;
    NSUnitBuffer value;
    const bool hasValue = take(u'=');
    if (hasValue && !(skipBlanks() && readText(value) && skipBlanks())) return false;
    if (!take(u';')) return fail("\";\" expected");
    _entries->setObject_forKey(NSMake<NSString>(hasValue ? value.view() : key.view()),
                               NSMake<NSString>(key.view()));
    return true;
  }

  bool readText(NSUnitBuffer& text) {
    if (_at < _text.size() && (_text[_at] == u'"' || _text[_at] == u'\'')) {
      return readQuoted(_text[_at], text);
    }
    const std::size_t start = _at;
    while (_at < _text.size() && isWordUnit(_text[_at])) ++_at;
    text.append(_text.substr(start, _at - start));
    return _at != start || fail("text expected");
  }

  bool readQuoted(char16_t mark, NSUnitBuffer& text) {
    const std::array<char16_t, 2> stops = {mark, u'\\'};
    const std::size_t start = _at++;
    while (true) {
      const std::size_t stop = _text.find_first_of({stops.data(), stops.size()}, _at);
      if (stop == npos || stop + 1 == _text.size()) {
        if (stop != npos && _text[stop] == mark) return close(stop, text);
        _at = start;
        return fail("the text has no end");
      }
      if (_text[stop] == mark) return close(stop, text);
      text.append(_text.substr(_at, stop - _at));
      _at = stop + 1;
      readEscape(text);
    }
  }

  bool close(std::size_t end, NSUnitBuffer& text) {
    text.append(_text.substr(_at, end - _at));
    _at = end + 1;
    return true;
  }

  // After the "\"; there is something.
  void readEscape(NSUnitBuffer& text) {
    constexpr std::u16string_view letters = u"abfnrtv";
    constexpr std::u16string_view controls = u"\a\b\f\n\r\t\v";
    const char16_t letter = _text[_at];
    if (letter == u'u' || letter == u'U') {
      ++_at;
      *text.extend(1) = number(16, 4);
    } else if (digitValue(letter, 8)) {
      *text.extend(1) = number(8, 3);
    } else {
      const std::size_t control = letters.find(letter);
      *text.extend(1) = control == npos ? letter : controls[control];
      ++_at;
    }
  }

  char16_t number(unsigned base, int mostDigits) {
    unsigned value = 0;
    for (int k = 0; k < mostDigits && _at < _text.size(); ++k, ++_at) {
      const auto digit = digitValue(_text[_at], base);
      if (!digit) break;
      value = value * base + *digit;
    }
    return static_cast<char16_t>(value);
  }

  // Blanks and comments; false for a comment without an end, which takes the rest of the text.
  bool skipBlanks() {
    while (_at < _text.size()) {
      const std::u16string_view rest = _text.substr(_at);
      if (isBlank(rest[0])) {
        ++_at;
      } else if (rest.starts_with(u"//")) {
        _at = endOfLine(_at);
      } else if (rest.starts_with(u"/*")) {
        const std::size_t end = _text.find(u"*/", _at + 2);
        if (end == npos) {
          fail("the comment has no end");
          _isLost = true;
          return false;
        }
        _at = end + 2;
      } else {
        return true;
      }
    }
    return true;
  }

  bool take(char16_t unit) {
    if (_at == _text.size() || _text[_at] != unit) return false;
    ++_at;
    return true;
  }

  [[nodiscard]] std::size_t endOfLine(std::size_t from) const {
    return std::min(_text.find_first_of(u"\n\r\u2028\u2029", from), _text.size());
  }

  void passOver(std::size_t start) {
    _at = _isLost ? _text.size() : endOfLine(std::max(start, _at));
  }

  bool fail(const char* reason) {
    if (_fault.empty()) {
      const auto line = 1 + std::ranges::count(_text.substr(0, _at), u'\n');
      _fault = "line " + std::to_string(line) + ": " + reason;
    }
    return false;
  }

  std::u16string_view _text;
  std::size_t _at = 0;
  bool _isLost = false;
  NSRef<NSMutableDictionary> _entries = NSMake<NSMutableDictionary>();
  std::string _fault;
};

std::uint8_t byteAt(std::string_view bytes, std::size_t index) {
  return index < bytes.size() ? static_cast<std::uint8_t>(bytes[index]) : 0xFF;
}

NSStringEncoding encodingOf(std::string_view bytes) {
  const NSStringEncoding marked = NSDetectEncoding(bytes);
  if (marked != NSUTF8StringEncoding) return marked;
  // Tables begin with ASCII, whose other half is zero.
  if (byteAt(bytes, 0) == 0) return NSUTF16BigEndianStringEncoding;
  return byteAt(bytes, 1) == 0 ? NSUTF16LittleEndianStringEncoding : NSUTF8StringEncoding;
}

}  // namespace

void NSLogStringsFault(const std::string& fault) {
  if (fault.empty()) return;
  NSLog(NSMake<NSString>("Localized strings cannot all be read: " + fault));
}

NSRef<NSDictionary> NSString::propertyListFromStringsFileFormat() const {
  const NSStringsFile table = NSReadStringsTable(view());
  NSLogStringsFault(table.fault);
  return table.entries->copy();
}

NSStringsFile NSReadStringsTable(std::u16string_view text) { return TableReader(text).read(); }

NSStringsFile NSReadStringsFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::string bytes(std::istreambuf_iterator<char>(stream), {});
  const NSStringEncoding encoding = encodingOf(bytes);
  NSUnitBuffer units;
  const std::size_t fault = NSAppendDecoded(bytes, encoding, units);
  NSStringsFile table = NSReadStringsTable(units.view());
  if (table.fault.empty() && fault != bytes.size()) {
    table.fault =
        "not " + std::string(NSNameOfEncoding(encoding)) + " at byte " + std::to_string(fault);
  }
  return table;
}
