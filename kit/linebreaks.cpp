#include "linebreaks.h"

#include <zirk/utf8.h>

#include <string_view>

#include "utf8.h"

extern "C" {
#include <linebreak.h>
#include <linebreakdef.h>
}

namespace ZIRK::kit {

namespace {

static_assert(kMayBreak == LINEBREAK_ALLOWBREAK);

constexpr utf32_t kCombiningMark = 0x0300, kReplacement = 0xFFFD;

bool IsLatinLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// Reads the next character for libunibreak. It returns a sequence of Latin letters as a single
/// one, which saves time: no line breaks between them.
utf32_t ReadChar(const void* text, size_t size, size_t* at) {
  const std::string_view all(static_cast<const char*>(text), size);
  if (*at >= size) return EOS;
  if (IsLatinLetter(all[*at])) {
    while (*at < size && IsLatinLetter(all[*at])) ++*at;
    return 'a';
  }
  const size_t start = *at;
  *at = NextChar(all, start);
  if (all[start] == kNoCharacter) return kCombiningMark;
  int length = 0;
  const utf32_t code = GetUtf8Char(all.data() + start, &length);
  return code == EOS ? kReplacement : code;
}

}  // namespace

std::vector<char> FindLineBreaks(const std::string& text) {
  static const bool isReady = (init_linebreak(), true);
  static_cast<void>(isReady);
  std::vector<char> breaks(text.size());
  if (!text.empty()) set_linebreaks(text.data(), text.size(), nullptr, breaks.data(), ReadChar);
  return breaks;
}

size_t LineEndLength(const std::string& text, size_t at) {
  const auto is = [&](std::string_view end) { return text.compare(at, end.size(), end) == 0; };
  const auto first = static_cast<unsigned char>(text[at]);
  if (first == '\r') return is("\r\n") ? 2 : 1;
  if (first >= '\n' && first <= '\f') return 1;
  if (first == 0xC2) return is("\u0085") ? 2 : 0;
  if (first == 0xE2) return is("\u2028") || is("\u2029") ? 3 : 0;
  return 0;
}

}  // namespace ZIRK::kit
