#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ZIRK::kit {

/// Stands for a byte that is no part of a character: it is none in any place.
constexpr char kNoCharacter = '\xFF';

/// Bytes of the sequence that a byte begins; 0 for one that begins none.
inline size_t SequenceLength(char byte) {
  const auto first = static_cast<unsigned char>(byte);
  if (first < 0x80) return 1;
  if (first < 0xC0 || first >= 0xF8) return 0;
  return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

/// The same at `at`, or what the end of the text leaves of it.
inline size_t CharLength(std::string_view text, size_t at) {
  return std::min(SequenceLength(text[at]), text.size() - at);
}

/// Where the next character begins, or what is none.
inline size_t NextChar(std::string_view text, size_t at) {
  return at + std::max<size_t>(CharLength(text, at), 1);
}

inline bool ContinuesChar(char byte) {
  return (byte & 0xC0) == 0x80;
}

}  // namespace ZIRK::kit
