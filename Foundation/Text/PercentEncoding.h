#pragma once

#include <optional>
#include <string>
#include <string_view>

class NSCharacterSet;

/// The bytes that percent sequences and plain characters stand for; nothing when a sequence is
/// broken.
std::optional<std::string> NSPercentDecoded(std::string_view text);
/// Bytes that are not ASCII members of the set as percent sequences.
std::string NSPercentEncoded(std::string_view bytes, const NSCharacterSet& allowed);
