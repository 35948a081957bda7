#include "examples/workbench/Document.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <iterator>
#include <string>

using namespace ZKFoundationExtensions;

namespace {

struct Markers {
  const char* before;
  const char* after;
};

// How titles are set off in the texts and sources that people write.
constexpr std::array<Markers, 6> headingMarkers{{
    {"# ", " #"},
    {"## ", " ##"},
    {"/// ", ""},
    {"// ", ""},
    {"<!-- ", " -->"},
    {"<title>", "</title>"},
}};

bool isHexadecimalDigit(char16_t unit) {
  return unit < 0x80 && std::isxdigit(static_cast<unsigned char>(unit)) != 0;
}

}  // namespace

NSRef<Document> Document::read(const std::filesystem::path& file) {
  std::ifstream input(file, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(input)), {});
  if (!input || bytes.find('\0') != std::string::npos) return nullptr;
  return NSMake<Document>(NSMake<NSString>(bytes));
}

Document::Document(NSRef<NSString> text) : _text(std::move(text)), _identifier(UUIDString()) {}

NSRef<NSString> Document::title() const {
  const auto lines = _text->componentsSeparatedByString("\n"_ns);
  for (const auto& line : *lines) {
    const auto text = line.as<NSString>();
    for (const auto& [before, after] : headingMarkers) {
      const auto title = stringByRemovingPrefix(text, NSMake<NSString>(before));
      if (title != text) return stringByRemovingSuffix(title, NSMake<NSString>(after));
    }
  }
  return u""_ns;
}

std::vector<NSRef<NSString>> Document::hexadecimalWords() const {
  const std::u16string_view text = _text->view();
  std::vector<NSRef<NSString>> words;
  for (auto at = text.find(u"0x"); at != std::u16string_view::npos; at = text.find(u"0x", at + 2)) {
    std::size_t end = at + 2;
    while (end < text.size() && isHexadecimalDigit(text[end])) ++end;
    const auto word = NSMake<NSString>(text.substr(at, end - at));
    if (word->length() > 2 && !std::ranges::count_if(words, [&](const auto& other) {
          return other->isEqualToString(word);
        })) {
      words.push_back(word);
    }
  }
  return words;
}

const NSPropertyTable& Document::propertyTable() const {
  static const NSPropertyTable table(
      {{u"title", &Document::title}, {u"identifier", &Document::_identifier}},
      NSObject::propertyTable());
  return table;
}
