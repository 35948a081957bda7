#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include <Foundation/NSError.h>
#include <Foundation/NSURL.h>

// How operations on files fail. Within, a failure is thrown: what the system refuses as
// `std::filesystem::filesystem_error`, all else as `NSFileRefusal`. `NSReportFailure` makes an
// `NSError` of either, where the caller asked for one.

/// What was to be done with a file. The codes of errors depend on it.
enum class NSFileUse { reading, writing };

/// A failure without an `errno`. The path may be nil.
struct NSFileRefusal {
  NSCocoaErrorCode code;
  NSRef<NSString> path;
  std::string reason;
};

/// Gives the path that a file URL names, or that a text is. Throws for what names no file.
[[nodiscard]] std::filesystem::path NSPathOfFile(const NSRef<NSURL>& url, NSFileUse use);
[[nodiscard]] std::filesystem::path NSPathOfFile(const NSRef<NSString>& text, NSFileUse use);

/// Makes errors of `NSCocoaErrorDomain`, with the path and, from the system, the `errno`.
[[nodiscard]] NSRef<NSError> NSErrorOf(const NSFileRefusal& refusal);
[[nodiscard]] NSRef<NSError> NSErrorOf(const std::filesystem::filesystem_error& failure,
                                       NSFileUse use);

/// Gives what the operation gives. When it fails, nil or false, with the error in a given place.
/// The use may change meanwhile.
template <class F>
auto NSReportFailure(NSRef<NSError>* place, const NSFileUse& use, F operation)
    -> decltype(operation()) {
  NSRef<NSError> error;
  try {
    return operation();
  } catch (const NSFileRefusal& refusal) {
    error = NSErrorOf(refusal);
  } catch (const std::filesystem::filesystem_error& failure) {
    error = NSErrorOf(failure, use);
  }
  if (place != nullptr) *place = std::move(error);
  return {};
}
