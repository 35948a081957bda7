#pragma once

#include <optional>
#include <string>
#include <string_view>

class NSCharacterSet;

/// Gives the bytes that the text stands for; nothing when a percent sequence is broken.
[[nodiscard]] std::optional<std::string> NSPercentDecoded(std::string_view text);
/// Writes bytes that are not ASCII members of the set as percent sequences.
[[nodiscard]] std::string NSPercentEncoded(std::string_view bytes, const NSCharacterSet& allowed);
