#include "ZKFoundation/Classes/ZKTextFinder/ZKTextFinder.h"

#include <array>
#include <span>
#include <utility>

#include <Foundation/NSException.h>
#include <ZKFoundation/Classes/ZKTextFinder/TextReplacement.h>
#include <ZKFoundation/Classes/ZKTextFinder/TextSearch.h>

namespace {

NSRef<NSError> errorOf(const ZKTextFinderFailure& failure) {
  return NSError::errorWithDomain_code_description(ZKTextFinderErrorDomain(), failure.code,
                                                   NSMake<NSString>(failure.reason));
}

// Gives what the operation gives; when it fails nothing, with the error in a given place, else nil.
template <class F>
auto reportFailure(NSRef<NSError>* error, const F& operation) -> decltype(operation()) {
  if (error != nullptr) *error = nullptr;
  try {
    return operation();
  } catch (const ZKTextFinderFailure& failure) {
    if (error != nullptr) *error = errorOf(failure);
    return {};
  }
}

}  // namespace

const NSRef<NSString>& ZKTextFinderErrorDomain() {
  return NSConstantString<u"ZKTextFinderErrorDomain">();
}

ZKTextFinder::ZKTextFinder(const NSRef<NSString>& needle, NSOptions<NSStringCompareOptions> options,
                           ZKWordCompareOption wordCompareOption)
    : _options(options), _condition(wordCompareOption) {
  setNeedle(needle);
}

ZKTextFinder::~ZKTextFinder() = default;

void ZKTextFinder::setNeedle(const NSRef<NSString>& needle) {
  _needle = needle ? needle->copy() : u""_ns;
  _pattern = nullptr;
  _written.range = NSNotFoundRange;
}

void ZKTextFinder::setOptions(NSOptions<NSStringCompareOptions> options) {
  _options = options;
  _pattern = nullptr;
}

// Compiles the needle at first, if it is a pattern.
NSRegularExpression* ZKTextFinder::pattern() const {
  if ((_options & ZKRegularExpressionSearch) == 0 || _needle->length() == 0) return nullptr;
  if (!_pattern) {
    const bool ignoresCase = (_options & NSCaseInsensitiveSearch) != 0;
    _pattern = std::make_unique<NSRegularExpression>(_needle->view(), ignoresCase);
  }
  if (!_pattern->fault().empty()) {
    throw ZKTextFinderFailure{ZKTextFinderInvalidNeedle, _pattern->fault()};
  }
  return _pattern.get();
}

// Performs an operation with a search of the text; gives nothing for an empty needle.
template <class F>
auto ZKTextFinder::search(const NSRef<NSString>& string, NSRef<NSError>* error,
                          const F& operation) const {
  using Result = std::invoke_result_t<const F&, ZKTextSearch&>;
  return reportFailure(error, [&]() -> Result {
    if (_needle->length() == 0) return {};
    const ZKTextSearch::Subject subject{_needle, pattern(), _timeLimit, _options, _condition};
    ZKTextSearch search(subject, string);
    return operation(search);
  });
}

NSRef<NSError> ZKTextFinder::needleError() const {
  NSRef<NSError> error;
  (void)reportFailure(&error, [this] { return pattern(); });
  return error;
}

std::optional<ZKTextMatch> ZKTextFinder::nextMatchInString_selectedRange(
    const NSRef<NSString>& string, NSRange selectedRange, NSRef<NSError>* error) const {
  const char* const operation = "nextMatchInString:selectedRange:";
  NSCheckArgument(operation, "string", string);
  NSCheckRange(operation, selectedRange, string->length());
  return search(string, error, [&](ZKTextSearch& search) -> std::optional<ZKTextMatch> {
    const NSRange match = search.next(selectedRange, _wraps);
    if (match == NSNotFoundRange) return std::nullopt;
    return ZKTextMatch{match, search.wordsOf(match)};
  });
}

std::vector<NSRange> ZKTextFinder::matchesInString(const NSRef<NSString>& string,
                                                   NSRef<NSError>* error) const {
  NSCheckArgument("matchesInString:", "string", string);
  return search(string, error, [&](ZKTextSearch& search) {
    std::vector<NSRange> matches;
    search.forEach([&](NSRange match) { matches.push_back(match); });
    return matches;
  });
}

bool ZKTextFinder::replaceNextInString_withString_selectedRange(
    const NSRef<NSMutableString>& string, const NSRef<NSString>& replacement,
    NSRange* selectedRange, NSRef<NSError>* error) const {
  const char* const operation = "replaceNextInString:withString:selectedRange:";
  NSCheckArgument(operation, "string", string);
  if (selectedRange == nullptr) NSRaiseNilArgument("selectedRange", operation);
  NSCheckRange(operation, *selectedRange, string->length());
  return search(string, error, [&](ZKTextSearch& search) {
    const ZKTextReplacement substitute(NSViewOf(replacement), pattern());
    NSRange match = *selectedRange;
    const bool isWritten = match == _written.range &&
                           search.text().substr(match.location, match.length) == _written.text;
    if (isWritten || !search.isMatch(match)) {
      match = search.next(match, _wraps, isWritten && _written.isOfEmptyMatch);
      // Again, as the pattern's latest match may be another.
      if (match == NSNotFoundRange || !search.isMatch(match)) return false;
    }
    NSUnitBuffer text;
    substitute.appendTo(text, string->view());
    string->units().replace(match.location, match.length, text.view());
    *selectedRange = {match.location, text.size()};
    _written = {*selectedRange, NSMake<NSString>(text.view()), match.length == 0};
    return true;
  });
}

NSUInteger ZKTextFinder::replaceAllInString_withString_selectedRange(
    const NSRef<NSMutableString>& string, const NSRef<NSString>& replacement,
    NSRange* selectedRange, NSRef<NSError>* error) const {
  const char* const operation = "replaceAllInString:withString:selectedRange:";
  NSCheckArgument(operation, "string", string);
  if (selectedRange != nullptr) NSCheckRange(operation, *selectedRange, string->length());
  return search(string, error, [&](ZKTextSearch& search) {
    const ZKTextReplacement substitute(NSViewOf(replacement), pattern());
    const std::u16string_view text = string->view();
    ZKCarriedSelection selection(selectedRange != nullptr ? *selectedRange : NSRange{});
    // A line is put together beside the string.
    std::array<char16_t, 512> room;
    NSUnitBuffer result{std::span(room)};
    NSUInteger kept = 0;
    NSUInteger count = 0;
    // By reference: a copy of what was just stored would wait for the store, at each match.
    search.forEach([&](const NSRange& match) {
      result.append(text.substr(kept, match.location - kept));
      const NSUInteger start = result.size();
      substitute.appendTo(result, text);
      selection.moveOver(match, {start, result.size() - start});
      kept = NSMaxRange(match);
      ++count;
    });
    if (count == 0) return count;
    result.append(text.substr(kept));
    string->units() = std::move(result);
    if (selectedRange != nullptr) *selectedRange = selection.range();
    return count;
  });
}
