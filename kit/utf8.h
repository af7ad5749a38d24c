#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ZIRK::kit {

/// Replaces a byte that is not part of a character. It never occurs in UTF-8.
constexpr char kNoCharacter = '\xFF';

/// The length in bytes of the sequence that begins with `byte`; 0 if no sequence begins with it.
inline size_t SequenceLength(char byte) {
  const auto first = static_cast<unsigned char>(byte);
  if (first < 0x80) return 1;
  if (first < 0xC0 || first >= 0xF8) return 0;
  return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

/// The same for the byte at `at`, cut to the end of the text.
inline size_t CharLength(std::string_view text, size_t at) {
  return std::min(SequenceLength(text[at]), text.size() - at);
}

/// The offset of the next character, or of the next byte that is not one.
inline size_t NextChar(std::string_view text, size_t at) {
  return at + std::max<size_t>(CharLength(text, at), 1);
}

inline bool ContinuesChar(char byte) {
  return (byte & 0xC0) == 0x80;
}

}  // namespace ZIRK::kit
