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

NSRef<NSArray> linesOf(const NSRef<NSString>& text) {
  return text->componentsSeparatedByString("\n"_ns);
}

NSRef<NSString> titleOf(const NSRef<NSString>& text) {
  for (const auto& line : linesOf(text)) {
    const auto heading = line.as<NSString>();
    for (const auto& [before, after] : headingMarkers) {
      const auto title = stringByRemovingPrefix(heading, NSMake<NSString>(before));
      if (title != heading) return stringByRemovingSuffix(title, NSMake<NSString>(after));
    }
  }
  return u""_ns;
}

}  // namespace

NSRef<Document> Document::read(const std::filesystem::path& file, NSRef<NSString> name) {
  std::ifstream input(file, std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(input)), {});
  if (!input || bytes.find('\0') != std::string::npos) return nullptr;
  return NSMake<Document>(std::move(name), NSMake<NSString>(bytes), bytes.size());
}

Document::Document(NSRef<NSString> name, NSRef<NSString> text, std::size_t byteCount)
    : _name(std::move(name)),
      _text(std::move(text)),
      _byteCount(byteCount),
      _identifier(UUIDString()),
      _title(titleOf(_text)) {}

NSComparisonResult Document::compareTitle(const Document& other) const {
  return _title->caseInsensitiveCompare(other._title);
}

NSRef<NSIndexSet> Document::linesWith(const NSRef<NSString>& term) const {
  auto numbers = NSMake<NSMutableIndexSet>();
  linesOf(_text)->enumerateObjectsUsingBlock([&](const NSRef<NSObject>& line, NSUInteger index,
                                                 bool&) {
    const NSRange found = line.as<NSString>()->rangeOfString_options(term, NSCaseInsensitiveSearch);
    if (found.length != 0) numbers->addIndex(index + 1);
  });
  return numbers;
}

NSRef<NSObject> Document::copyWithZone_refTable_copySpec_subCopySpec(
    NSZone* /*zone*/, const NSRef<NSMapTable>& refTable, ZKCopySpec /*copySpec*/,
    ZKCopySpec /*subCopySpec*/) const {
  auto copy = NSMake<Document>(_name, _text, _byteCount);
  refTable->setObject_forKey(copy, self());
  return copy;
}

void Document::offerTo(ZKObjectVisitor& visitor, bool& stop) {
  if (stop || !visitor.shouldVisitObject(self())) return;
  visitor.visitObject_stop(self(), stop);
  if (!stop && visitor.shouldVisitObject(_text)) visitor.visitObject_stop(_text, stop);
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
