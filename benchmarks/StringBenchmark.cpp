#include "benchmarks/Support.h"
#include "benchmarks/TextSamples.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <unicode/ustring.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QString>
#endif

using namespace ZKFoundationExtensions;

namespace {

constexpr std::size_t mebi = std::size_t{1} << 20U;

// The text again and again, to at most `size` bytes of whole characters.
std::string repeatedTo(std::size_t size, const std::string& text) {
  std::string result;
  while (result.size() <= size) result += text;
  while ((static_cast<unsigned char>(result[size]) & 0xC0U) == 0x80U) --size;
  result.resize(size);
  return result;
}

struct NamedText {
  std::string name;
  std::string utf8;
};

const std::vector<NamedText>& texts() {
  static const std::vector<NamedText> all = [] {
    std::vector<NamedText> result;
    for (const auto& [name, text] : std::vector<NamedText>{
             {"ASCII", "The quick brown fox jumps over the lazy dog. "},
             {"Latin", "The café at the old corner is closed. "},
             {"Mixed",
              "The quick brown fox; zwölf Boxkämpfer jagen Víktor quer über den großen Sylter "
              "Deich; Съешь ещё этих мягких булок; いろはにほへと; "
              "🦊🐕 "},
             {"Cyrillic", "Съешь ещё этих мягких французских булок, да выпей чаю. "},
             {"CJK", "色は匂へど散りぬるを、我が世誰ぞ常ならん。"},
             {"Emoji", "🦊🐕 jumps 🙂🙃😀, so does 👩‍👧. "}}) {
      result.push_back({name, repeatedTo(mebi, text)});
      result.push_back({name + "_60", repeatedTo(60, text)});
    }
    return result;
  }();
  return all;
}

void addDecoding() {
  for (const NamedText& text : texts()) {
    const std::string& utf8 = text.utf8;
    const std::string row = "UTF8ToUTF16/" + text.name + '/';
    const auto units = NSUnitsFromUTF8(utf8);
    const std::u16string expected(units.view());
    const auto isRight = [=](const auto& result) {
      return std::u16string_view(result.data(), result.size()) == expected;
    };
    addRow(
        row + "ZK", [&] { return NSUnitsFromUTF8(utf8); }, isRight);
    const auto withICU = [&] {
      std::u16string result(utf8.size(), u'\0');
      std::int32_t length = 0;
      UErrorCode status = U_ZERO_ERROR;
      u_strFromUTF8WithSub(result.data(), static_cast<std::int32_t>(result.size()), &length,
                           utf8.data(), static_cast<std::int32_t>(utf8.size()), 0xFFFD, nullptr,
                           &status);
      result.resize(static_cast<std::size_t>(length));
      return result;
    };
    addRow(row + "ICU", withICU, isRight);
#ifdef ZK_HAS_QT
    const auto withQt = [&] { return QString::fromUtf8(utf8.data(), std::ssize(utf8)); };
    addRow(row + "Qt", withQt,
           [=](const QString& result) { return result == QString::fromStdU16String(expected); });
#endif
    // The bound: the result's bytes, written once.
    addRow(
        row + "memcpy", [expected] { return std::u16string(expected); },
        [](const auto&) { return true; });
  }
}

void addEncoding() {
  for (const NamedText& text : texts()) {
    const std::string& utf8 = text.utf8;
    const std::string row = "UTF16ToUTF8/" + text.name + '/';
    const auto isRight = [&](const auto& result) {
      return std::string_view(result.data(), static_cast<std::size_t>(std::ssize(result))) == utf8;
    };
    const auto string = NSMake<NSString>(utf8);
    addRow(
        row + "ZK", [=] { return string->utf8(); }, isRight);
    const auto withICU = [=] {
      const std::u16string_view units = string->view();
      std::string result(3 * units.size(), '\0');
      std::int32_t length = 0;
      UErrorCode status = U_ZERO_ERROR;
      u_strToUTF8WithSub(result.data(), static_cast<std::int32_t>(result.size()), &length,
                         units.data(), static_cast<std::int32_t>(units.size()), 0xFFFD, nullptr,
                         &status);
      result.resize(static_cast<std::size_t>(length));
      return result;
    };
    addRow(row + "ICU", withICU, isRight);
#ifdef ZK_HAS_QT
    const QString qtString = QString::fromUtf8(utf8.data(), std::ssize(utf8));
    addRow(
        row + "Qt", [=] { return qtString.toUtf8(); }, isRight);
#endif
    addRow(
        row + "memcpy", [&] { return std::string(utf8); }, isRight);
  }
}

void addHexadecimal() {
  const std::string text = "0x12abCDEF";
  const auto string = NSMake<NSString>(text);
  const auto isRight = [](std::uint64_t value) { return value == 0x12AB'CDEF; };
  addRow(
      "HexValue/10units/ZK", [=] { return hexValue(string); }, isRight);
  addRow(
      "MaxHexValue/10units/ZK", [=] { return maxHexValue(string); }, isRight);
  const auto fromChars = [=] {
    std::uint64_t value = 0;
    std::string_view digits = text;
    if (digits.starts_with("0x")) digits.remove_prefix(2);
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return value;
  };
  const auto withStrtoull = [=] { return std::strtoull(text.c_str(), nullptr, 16); };
#ifdef ZK_HAS_QT
  const QString qtString = QString::fromStdString(text);
  const auto withQt = [=] { return qtString.toUInt(nullptr, 16); };
#endif
  for (const std::string row : {"HexValue/10units/", "MaxHexValue/10units/"}) {
    addRow(row + "from_chars", fromChars, isRight);
    addRow(row + "strtoull", withStrtoull, isRight);
#ifdef ZK_HAS_QT
    addRow(row + "Qt", withQt, isRight);
#endif
  }
}

void addRemoving() {
  struct Case {
    const char* name;
    const char16_t* needle;
  };
  // In the text: one in 45 units, one in 3 or so, none though its letters are frequent.
  for (const auto& [name, needle] :
       {Case{"many", u"fox"}, Case{"dense", u"o"}, Case{"none", u"dot"}}) {
    const std::string row = std::string("RemoveString/") + name + "_1Mi/";
    const auto string = NSMake<NSString>(texts()[0].utf8);
    const auto wanted = NSMake<NSString>(needle);
    const std::u16string expected = removedByFinding(string->view(), needle);
    const auto isRight = [=](const auto& result) {
      return std::u16string_view(result.data(), result.size()) == expected;
    };
    addRow(
        row + "ZK", [=] { return stringByRemovingString(string, wanted); },
        [=](const auto& result) { return result == expected; });
    addRow(
        row + "u16string", [=] { return removedByFinding(string->view(), wanted->view()); },
        isRight);
#ifdef ZK_HAS_QT
    const QString qtString = QString::fromStdString(texts()[0].utf8);
    const QString qtNeedle = QString::fromUtf16(needle);
    const auto withQt = [=] {
      QString copy = qtString;
      copy.remove(qtNeedle);
      return copy;
    };
    addRow(row + "Qt", withQt,
           [=](const QString& result) { return result == QString::fromStdU16String(expected); });
#endif
  }
}

const bool registered = [] {
  addDecoding();
  addEncoding();
  addHexadecimal();
  addRemoving();
  return true;
}();

}  // namespace
