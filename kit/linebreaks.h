#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace ZIRK::kit {

/// The result of FindLineBreaks() for the last byte of a character after which a line may break.
constexpr char kMayBreak = 1;

/// Tells for each byte of a text whether a line may break after it. The text is UTF-8; bytes equal
/// to kNoCharacter belong to the character before them. Throws std::bad_alloc.
std::vector<char> FindLineBreaks(const std::string& text);

/// The length in bytes of the line end at `at`; 0 if there is none.
size_t LineEndLength(const std::string& text, size_t at);

}  // namespace ZIRK::kit
