#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ZIRK::kit {

/// What FindLineBreaks() has after the last byte of a character where a line may be broken.
constexpr char kMayBreak = 1;

/// For each byte of a text whether a line may be broken after it. The text is UTF-8 but for bytes
/// that are kNoCharacter, which count to the character before. Throws std::bad_alloc.
std::vector<char> FindLineBreaks(const std::string& text);

/// Bytes of what ends a line at `at`; 0 if nothing does.
size_t LineEndLength(const std::string& text, size_t at);

}  // namespace ZIRK::kit
