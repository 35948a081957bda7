#include "benchmarks/Support.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <unicode/unum.h>
#include <uriparser/Uri.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_PLIST
#include <plist/plist.h>
#endif
#ifdef ZK_HAS_QT
#include <QLocale>
#include <QString>
#include <QUrl>
#endif

namespace {

constexpr std::size_t sizeCount = 16;

// From 1 bit to 2^60 bits; those between are not round, as sizes are not.
std::array<std::int64_t, sizeCount> sizes() {
  std::array<std::int64_t, sizeCount> result{};
  for (std::size_t k = 0; k < sizeCount; ++k) result[k] = std::int64_t{1} << (4 * k);
  for (std::size_t k = 1; k + 1 < sizeCount; ++k) result[k] += result[k] / 3 + 5;
  return result;
}

// Runs the work for each size; the answer is the total length of the texts.
template <class Work>
auto forEachSize(Work work) {
  return [=] {
    std::size_t length = 0;
    for (const std::int64_t bits : sizes()) length += work(bits);
    return length;
  };
}

struct Switches {
  const char* name;
  bool bytes;
  bool binary;
  bool iec;
};

constexpr std::array<Switches, 4> switches = {{{"Bytes1024", true, true, false},
                                               {"Bytes1024IEC", true, true, true},
                                               {"Bytes1000", true, false, false},
                                               {"Bits1000", false, false, false}}};

void addSizes() {
  const auto details = RowDetails{.calls = sizeCount};
  for (const auto& [name, bytes, binary, iec] : switches) {
    const std::string row = std::string("Size/") + name + '/';
    const auto formatter = NSMake<ZKUnitOfInformationFormatter>();
    formatter->numberFormatter()->setLocale(NSLocale::localeWithLocaleIdentifier(u"en_US"_ns));
    formatter->setDisplaysInTermsOfBytes(bytes);
    formatter->setUsesIECBinaryPrefixesForCalculation(binary);
    formatter->setUsesIECBinaryPrefixesForDisplay(iec);
    const auto isText = [](std::size_t total) {
      return total > sizeCount * 4 && total < sizeCount * 12;
    };
    addRow(row + "ZK", forEachSize([formatter](std::int64_t bits) {
             return formatter->stringFromNumberOfBits(NSMake<NSNumber>(bits))->length();
           }),
           isText, details);
    // The number alone, without a unit.
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* const number = unum_open(UNUM_DECIMAL, nullptr, 0, "en_US", nullptr, &status);
    unum_setAttribute(number, UNUM_MAX_FRACTION_DIGITS, 2);
    const double scale = bytes ? 0.125 : 1;
    const double step = binary ? 1024 : 1000;
    addRow(row + "ICU", forEachSize([=](std::int64_t bits) {
             double value = static_cast<double>(bits) * scale;
             while (value >= step) value /= step;
             std::array<char16_t, 64> text;
             UErrorCode error = U_ZERO_ERROR;
             const auto units =
                 unum_formatDouble(number, value, text.data(), text.size(), nullptr, &error);
             return static_cast<std::size_t>(units) + 3;
           }),
           isText, details);
#ifdef ZK_HAS_QT
    if (bytes) {
      const auto format = !binary ? QLocale::DataSizeSIFormat
                          : iec   ? QLocale::DataSizeIecFormat
                                  : QLocale::DataSizeTraditionalFormat;
      const QLocale locale(QLocale::English);
      addRow(
          row + "Qt", forEachSize([=](std::int64_t bits) {
            return static_cast<std::size_t>(locale.formattedDataSize(bits / 8, 2, format).size());
          }),
          isText, details);
    }
#endif
    // No locale, no separators, two digits always.
    addRow(row + "Std", forEachSize([=](std::int64_t bits) {
             static constexpr std::array<const char*, 7> units = {"B",  "KB", "MB", "GB",
                                                                  "TB", "PB", "EB"};
             double value = static_cast<double>(bits) * scale;
             std::size_t unit = 0;
             for (; value >= step; ++unit) value /= step;
             std::array<char, 64> text;
             const int count =
                 std::snprintf(text.data(), text.size(), "%.2f %s", value, units[unit]);
             return std::string(text.data(), static_cast<std::size_t>(count)).size();
           }),
           isText, details);
  }
}

// Reads the sizes that are written above; the answer is their sum in bytes.
void addSizeReading() {
  const auto details = RowDetails{.calls = sizeCount};
  const auto formatter = NSMake<ZKUnitOfInformationFormatter>();
  formatter->numberFormatter()->setLocale(NSLocale::localeWithLocaleIdentifier(u"en_US"_ns));
  std::vector<NSRef<NSString>> texts;
  std::vector<std::string> bytes;
  double sum = 0;
  for (const std::int64_t bits : sizes()) {
    texts.push_back(formatter->stringFromNumberOfBits(NSMake<NSNumber>(bits)));
    bytes.push_back(texts.back()->utf8());
    std::erase(bytes.back(), ',');
    sum += static_cast<double>(bits) / 8;
  }
  const auto isSum = [=](double read) { return std::abs(read - sum) < sum / 100; };
  addRow(
      "SizeReading/ZK",
      [=] {
        double total = 0;
        for (const auto& text : texts) {
          const auto bits = formatter->numberOfBitsFromString_stoppedAt(text, nullptr);
          total += bits->doubleValue() / 8;
        }
        return total;
      },
      isSum, details);
  // The factor of the unit, by its first letter.
  const auto factorOf = [](auto unit) {
    constexpr std::string_view prefixes = "bKMGTPE";
    return std::ldexp(1.0, 10 * static_cast<int>(prefixes.find(static_cast<char>(unit))));
  };
  UErrorCode status = U_ZERO_ERROR;
  UNumberFormat* const number = unum_open(UNUM_DECIMAL, nullptr, 0, "en_US", nullptr, &status);
  addRow(
      "SizeReading/ICU",
      [=] {
        double total = 0;
        for (const auto& text : texts) {
          std::int32_t at = 0;
          UErrorCode error = U_ZERO_ERROR;
          const auto view = text->view();
          const double value = unum_parseDouble(
              number, view.data(), static_cast<std::int32_t>(view.size()), &at, &error);
          total += value * factorOf(view[static_cast<std::size_t>(at) + 1]);
        }
        return total;
      },
      isSum, details);
  // No locale, no separators.
  addRow(
      "SizeReading/Std",
      [=] {
        double total = 0;
        for (const std::string& text : bytes) {
          double value = 0;
          const auto end = std::from_chars(text.data(), text.data() + text.size(), value).ptr;
          total += value * factorOf(end[1]);
        }
        return total;
      },
      isSum, details);
}

constexpr std::array<const char*, 8> addresses = {"www.example.org",
                                                  "example.org/a/page.html?query=1&more=2#top",
                                                  "https://user@example.org:8080/path/to/it",
                                                  "http://[::1]/index",
                                                  "ssh://git@example.org/repository.git",
                                                  "localhost",
                                                  "ftp://ftp.example.org/pub",
                                                  "mailto:someone@example.org"};

// Runs the work for each address; the answer is how many it takes.
template <class Text, class Work>
auto forEachAddress(std::vector<Text> texts, Work work) {
  return [=] {
    std::size_t taken = 0;
    for (const Text& text : texts) taken += std::size_t{work(text)};
    return taken;
  };
}

void addAddresses() {
  const auto details = RowDetails{.calls = addresses.size()};
  std::vector<NSRef<NSString>> texts;
  std::vector<std::string> bytes(addresses.begin(), addresses.end());
  texts.reserve(bytes.size());
  for (const std::string& address : bytes) texts.push_back(NSMake<NSString>(address));
  const auto formatter = NSMake<ZKURLFormatter>();
  addRow(
      "Address/Typed/ZK",
      forEachAddress(texts,
                     [formatter](const NSRef<NSString>& text) {
                       NSRef<NSObject> object;
                       return formatter->getObjectValue_forString_errorDescription(object, text,
                                                                                   nullptr);
                     }),
      [](std::size_t taken) { return taken == 5; }, details);
  // The syntax alone.
  addRow(
      "Address/Typed/uriparser",
      forEachAddress(bytes,
                     [](const std::string& text) {
                       UriUriA uri;
                       const char* error = nullptr;
                       if (uriParseSingleUriA(&uri, text.c_str(), &error) != URI_SUCCESS)
                         return false;
                       uriFreeUriMembersA(&uri);
                       return true;
                     }),
      [](std::size_t taken) { return taken == addresses.size(); }, details);
#ifdef ZK_HAS_QT
  std::vector<QString> strings;
  strings.reserve(addresses.size());
  for (const char* const address : addresses) strings.push_back(QString::fromLatin1(address));
  addRow(
      "Address/Typed/Qt",
      forEachAddress(strings,
                     [](const QString& text) { return QUrl::fromUserInput(text).isValid(); }),
      [](std::size_t taken) { return taken == addresses.size(); }, details);
#endif
}

// Writes and reads the object.
void addArchive(const std::string& subject, const NSRef<NSObject>& object) {
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(object);
  const NSClass kind = object->objectClass();
  addRow(
      subject + "/Write/ZK", [=] { return NSKeyedArchiver::archivedDataWithRootObject(object); },
      [=](const NSRef<NSData>& written) { return written->isEqualToData(data); });
  addRow(
      subject + "/Read/ZK", [=] { return NSKeyedUnarchiver::unarchiveObjectWithData(data); },
      [=](const NSRef<NSObject>& read) { return read->isMemberOfClass(kind); });
#ifdef ZK_HAS_PLIST
  // The bytes alone, from and to a tree of values.
  const auto size = static_cast<std::uint32_t>(data->length());
  plist_t tree = nullptr;
  plist_from_bin(data->view().data(), size, &tree);
  addRow(
      subject + "/Write/libplist",
      [=] {
        char* bytes = nullptr;
        std::uint32_t length = 0;
        plist_to_bin(tree, &bytes, &length);
        plist_to_bin_free(bytes);
        return length;
      },
      [](std::uint32_t length) { return length != 0; });
  addRow(
      subject + "/Read/libplist",
      [=] {
        plist_t node = nullptr;
        plist_from_bin(data->view().data(), size, &node);
        plist_free(node);
        return node;
      },
      [](plist_t node) { return node != nullptr; });
#endif
}

void addArchives() {
  addArchive("Archive", NSMake<ZKUnitOfInformationFormatter>());
  const auto texts = NSMake<NSMutableArray>();
  const auto arrays = NSMake<NSMutableArray>();
  for (int k = 0; k < 100'000; ++k) texts->addObject(NSMake<NSString>(std::to_string(k)));
  for (int k = 0; k < 20'000; ++k) arrays->addObject(NSMake<NSArray>({texts->objectAtIndex(0)}));
  addArchive("ArchiveOf100000Texts", texts);
  addArchive("ArchiveOf20000Arrays", arrays);
}

void addLookUp() {
  const auto bundle = NSBundle::mainBundle();
  const auto key = u"Unit of Information Format String"_ns;
  const auto value = u"%@ %@"_ns;
  const auto table = u"ZKUnitOfInformationFormatter"_ns;
  addRow(
      "LocalizedText/Untranslated/ZK",
      [=] { return bundle->localizedStringForKey_value_table(key, value, table); },
      [=](const NSRef<NSString>& text) { return text == value; });
  using Table = std::unordered_map<std::u16string_view, std::u16string>;
  const auto tables = std::make_shared<std::unordered_map<std::u16string_view, Table>>();
  (*tables)[table->view()];
  addRow(
      "LocalizedText/Untranslated/Std",
      [=] {
        const auto& entries = tables->find(table->view())->second;
        const auto found = entries.find(key->view());
        return std::u16string(found == entries.end() ? value->view() : found->second);
      },
      [=](const std::u16string& text) { return text == value->view(); });
}

void addNumbers() {
  struct Style {
    const char* name;
    NSUInteger type;
    const char16_t* expected;
  };
  for (const Style& style :
       {Style{"decimal", 0, u"1888"}, {"letters", 1, u"BTP"}, {"roman", 3, u"MDCCCDXXXVIII"}}) {
    addRow(
        std::string("NumberToText/") + style.name + "/ZK",
        [type = style.type] { return ZKBinToStr(1888, type); },
        [=](const auto& result) { return result == style.expected; });
  }
#ifdef ZK_HAS_QT
  addRow(
      "NumberToText/decimal/Qt", [] { return QString::number(1888); },
      [](const QString& result) { return result == QStringLiteral("1888"); });
#endif
  const auto byLoop = [] {
    std::u16string text;
    std::uint64_t number = 1888;
    benchmark::DoNotOptimize(number);
    for (std::uint64_t value = number; value != 0; value = (value - 1) / 26) {
      text.insert(text.begin(), static_cast<char16_t>(u'A' + (value - 1) % 26));
    }
    return text;
  };
  addRow("NumberToText/letters/loop", byLoop, [](const auto& result) { return result == u"BTP"; });
  const auto romanByLoop = [] {
    constexpr std::array<std::pair<int, const char16_t*>, 13> signs = {{{1000, u"M"},
                                                                        {900, u"CM"},
                                                                        {500, u"D"},
                                                                        {400, u"CD"},
                                                                        {100, u"C"},
                                                                        {90, u"XC"},
                                                                        {50, u"D"},
                                                                        {40, u"XD"},
                                                                        {10, u"X"},
                                                                        {9, u"IX"},
                                                                        {5, u"V"},
                                                                        {4, u"IV"},
                                                                        {1, u"I"}}};
    int rest = 1888;
    benchmark::DoNotOptimize(rest);
    std::u16string text;
    for (const auto& [value, sign] : signs) {
      for (; rest >= value; rest -= value) text += sign;
    }
    return text;
  };
  addRow("NumberToText/roman/loop", romanByLoop,
         [](const auto& result) { return result == u"MDCCCDXXXVIII"; });
}

const bool isRegistered = [] {
  addSizes();
  addSizeReading();
  addAddresses();
  addArchives();
  addLookUp();
  addNumbers();
  return true;
}();

}  // namespace
