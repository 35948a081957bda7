#include "benchmarks/Support.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <unicode/uldnames.h>
#include <unicode/uloc.h>

#include <ZKFoundation/ZKFoundation.h>

#ifdef ZK_HAS_QT
#include <QLocale>
#include <QString>
#endif

using namespace ZKFoundationExtensions;

namespace {

constexpr std::size_t localeCount = 100;

// Spread over all that ICU knows.
std::vector<std::string> localeIdentifiers() {
  std::vector<std::string> result;
  result.reserve(localeCount);
  const auto known = static_cast<std::size_t>(uloc_countAvailable());
  for (std::size_t k = 0; k < localeCount; ++k) {
    result.emplace_back(uloc_getAvailable(static_cast<std::int32_t>(k * known / localeCount)));
  }
  return result;
}

std::vector<NSRef<NSString>> stringsOf(const std::vector<std::string>& texts) {
  std::vector<NSRef<NSString>> result;
  result.reserve(texts.size());
  for (const std::string& text : texts) result.push_back(NSMake<NSString>(text));
  return result;
}

// Runs the work for each of the inputs; the answer is the sum of what it gives.
template <class Input, class Work>
auto sumOver(std::vector<Input> inputs, Work work) {
  return [=] {
    std::size_t sum = 0;
    for (const Input& input : inputs) sum += static_cast<std::size_t>(work(input));
    return sum;
  };
}

void addQuotationMarks() {
  const auto details = RowDetails{.calls = localeCount};
  // Four marks each, none of which is below the quotation mark of typewriters.
  const auto areMarks = [](std::size_t sum) { return sum >= localeCount * 4 * u'"'; };
  addRow("Quotation/100Locales/ZK",
         sumOver(stringsOf(localeIdentifiers()),
                 [](const NSRef<NSString>& identifier) {
                   return openingDoubleQuotationForLocaleIdentifier(identifier) +
                          closingDoubleQuotationForLocaleIdentifier(identifier) +
                          openingSingleQuotationForLocaleIdentifier(identifier) +
                          closingSingleQuotationForLocaleIdentifier(identifier);
                 }),
         areMarks, details);
  // Four look-ups, in a table that has all of them.
  std::unordered_map<std::u16string, std::u16string> table;
  std::vector<std::u16string> keys;
  for (const auto& identifier : stringsOf(localeIdentifiers())) {
    keys.emplace_back(identifier->view());
    table[keys.back()] = {openingDoubleQuotationForLocaleIdentifier(identifier),
                          closingDoubleQuotationForLocaleIdentifier(identifier),
                          openingSingleQuotationForLocaleIdentifier(identifier),
                          closingSingleQuotationForLocaleIdentifier(identifier)};
  }
  addRow("Quotation/100Locales/unordered_map",
         sumOver(keys,
                 [=](const std::u16string& key) {
                   std::size_t sum = 0;
                   for (std::size_t column = 0; column < 4; ++column)
                     sum += table.find(key)->second[column];
                   return sum;
                 }),
         areMarks, details);
#ifdef ZK_HAS_QT
  std::vector<QString> names;
  std::vector<QLocale> locales;
  for (const std::string& identifier : localeIdentifiers()) {
    names.push_back(QString::fromStdString(identifier));
    locales.emplace_back(names.back());
  }
  const auto marksOf = [](const QLocale& locale) {
    const QString text(u'x');
    const QString outer = locale.quoteString(text);
    const QString inner = locale.quoteString(text, QLocale::AlternateQuotation);
    return outer.front().unicode() + outer.back().unicode() + inner.front().unicode() +
           inner.back().unicode();
  };
  addRow("Quotation/100Locales/Qt",
         sumOver(names, [=](const QString& name) { return marksOf(QLocale(name)); }), areMarks,
         details);
  // With locales that are there already.
  addRow("Quotation/100Locales/QtKept", sumOver(locales, marksOf), areMarks, details);
#endif
}

void addDisplayNames() {
  const auto details = RowDetails{.calls = localeCount};
  const auto areNames = [](std::size_t length) {
    return length > localeCount * 3 && length < localeCount * 60;
  };
  const auto user = NSLocale::localeWithLocaleIdentifier(u"en_US"_ns);
  addRow("DisplayName/100Locales/ZK",
         sumOver(stringsOf(localeIdentifiers()),
                 [=](const NSRef<NSString>& identifier) {
                   return user->displayNameForKey_value(NSLocaleIdentifier(), identifier)->length();
                 }),
         areNames, details);
  UErrorCode status = U_ZERO_ERROR;
  const std::shared_ptr<ULocaleDisplayNames> names(uldn_open("en_US", ULDN_STANDARD_NAMES, &status),
                                                   uldn_close);
  addRow("DisplayName/100Locales/ICU",
         sumOver(localeIdentifiers(),
                 [=](const std::string& identifier) {
                   std::array<char16_t, 128> units;
                   UErrorCode error = U_ZERO_ERROR;
                   const auto length = uldn_localeDisplayName(names.get(), identifier.c_str(),
                                                              units.data(), units.size(), &error);
                   return std::u16string(units.data(), static_cast<std::size_t>(length)).size();
                 }),
         areNames, details);
}

// "Untitled", and with the numbers 1 to `count` - 1 in a scattered order.
std::vector<std::u16string> takenNames(std::size_t count) {
  std::vector<std::u16string> names = {u"Untitled"};
  for (std::size_t k = 1; k < count; ++k) {
    const std::string digits = std::to_string(k * 7919 % count);
    if (digits != "0") names.emplace_back(u"Untitled").append(digits.begin(), digits.end());
  }
  return names;
}

// One pass that notes which numbers are taken.
std::u16string uniqueByHand(const std::u16string& name, const std::vector<std::u16string>& taken) {
  std::vector<bool> numbers(taken.size() + 2);
  bool isTaken = false;
  for (const std::u16string& other : taken) {
    if (!other.starts_with(name)) continue;
    if (other.size() == name.size()) {
      isTaken = true;
      continue;
    }
    std::size_t number = 0;
    bool isNumber = other[name.size()] != u'0';
    for (std::size_t k = name.size(); k < other.size() && isNumber; ++k) {
      isNumber = other[k] >= u'0' && other[k] <= u'9' && number < numbers.size();
      number = number * 10 + (other[k] - u'0');
    }
    if (isNumber && number < numbers.size()) numbers[number] = true;
  }
  if (!isTaken) return name;
  std::size_t number = 1;
  while (numbers[number]) ++number;
  const std::string digits = std::to_string(number);
  return std::u16string(name).append(digits.begin(), digits.end());
}

void addUniqueStrings(const std::string& size, std::size_t count) {
  const std::string row = "UniqueName/" + size + "Strings/";
  const auto names = takenNames(count);
  const auto array = NSMake<NSMutableArray>();
  for (const std::u16string& name : names) array->addObject(NSMake<NSString>(name));
  const std::string digits = std::to_string(count);
  const auto expected = std::u16string(u"Untitled").append(digits.begin(), digits.end());
  const auto name = u"Untitled"_ns;
  addRow(
      row + "ZK", [=] { return uniqueStringWithString_forStringArray(name, array); },
      [=](const NSRef<NSString>& result) { return result == expected; });
  addRow(
      row + "Std", [=] { return uniqueByHand(u"Untitled", names); },
      [=](const std::u16string& result) { return result == expected; });
}

void addUniqueURLs() {
  constexpr std::size_t count = 10'000;
  const auto urls = NSMake<NSMutableArray>();
  std::vector<std::filesystem::path> paths;
  paths.reserve(count);
  for (const std::u16string& name : takenNames(count)) {
    paths.emplace_back("/no/such folder/" + NSMake<NSString>(name)->utf8() + ".txt");
    urls->addObject(NSURL::fileURLWithPath_isDirectory(paths.back(), false));
  }
  const auto url = NSURL::fileURLWithPath_isDirectory(paths.front(), false);
  const std::string expected = "/no/such folder/Untitled10000.txt";
  addRow(
      "UniqueName/10kURLs/ZK", [=] { return uniqueURLWithURL_forURLArray(url, urls); },
      [=](const NSRef<NSURL>& result) { return result->fileSystemPath() == expected; });
  // Of paths, which need no decoding.
  addRow(
      "UniqueName/10kURLs/Std",
      [=] {
        std::vector<std::u16string> stems;
        stems.reserve(paths.size());
        for (const std::filesystem::path& path : paths) {
          stems.push_back((path.parent_path() / path.stem()).u16string());
        }
        const std::filesystem::path& wanted = paths.front();
        const std::filesystem::path stem =
            uniqueByHand((wanted.parent_path() / wanted.stem()).u16string(), stems);
        return stem.native() + wanted.extension().native();
      },
      [=](const std::string& result) { return result == expected; });
}

const bool isRegistered = [] {
  addQuotationMarks();
  addDisplayNames();
  addUniqueStrings("1k", 1'000);
  addUniqueStrings("100k", 100'000);
  addUniqueURLs();
  return true;
}();

}  // namespace
