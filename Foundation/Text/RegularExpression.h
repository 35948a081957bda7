#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

#include <Foundation/NSExport.h>
#include <Foundation/NSRange.h>

struct URegularExpression;

/// A compiled pattern in ICU's syntax, and the text that it is searched for in. "^" and "$" stand
/// at every line. Half of a surrogate pair is a fault of a pattern, and no match begins between the
/// halves of one. What stands outside of a range is seen by assertions, but is no part of a match.
class NS_EXPORT NSRegularExpression {
 public:
  using Time = std::chrono::steady_clock::time_point;

  NSRegularExpression(std::u16string_view pattern, bool ignoresCase);
  NSRegularExpression(const NSRegularExpression&) = delete;
  ~NSRegularExpression();

  /// Tells people what is wrong with the pattern; empty when nothing is.
  [[nodiscard]] const std::string& fault() const noexcept { return _fault; }
  [[nodiscard]] int groupCount() const noexcept;
  /// Gives the number of the group with that name.
  [[nodiscard]] std::optional<int> groupWithName(std::u16string_view name) const;

  /// Takes a text of less than 2^31 units, which must outlive what is asked about it.
  void setText(std::u16string_view text);
  /// Finds the first match in the range, which may be empty, or gives `NSNotFoundRange`. Gives none
  /// when the search has taken until that time, or more memory than a pattern may take.
  [[nodiscard]] std::optional<NSRange> find(NSRange range, Time limit);
  /// Gives the range of a group of the match; 0 is all of it. A group without a part is not found.
  [[nodiscard]] NSRange group(int number) const;

 private:
  URegularExpression* _expression = nullptr;
  std::string _fault;
  std::u16string_view _text;
  Time _limit;
};
