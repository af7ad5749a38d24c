#include <zirk/impl/log.h>
#include <zirk/utf8.h>

namespace ZIRK {

unsigned int GetUtf8Char(const char* s, int* length) {
  *length = 0;
  if (!s) return 0;
  const auto* const bytes = reinterpret_cast<const unsigned char*>(s);
  const unsigned int first = bytes[0];
  int n = 0;
  unsigned int value = 0;
  if (first < 0x80) {
    n = 1;
    value = first;
  } else if ((first & 0xE0) == 0xC0) {
    n = 2;
    value = first & 0x1F;
  } else if ((first & 0xF0) == 0xE0) {
    n = 3;
    value = first & 0x0F;
  } else if ((first & 0xF8) == 0xF0) {
    n = 4;
    value = first & 0x07;
  } else {
    ZIRK_LOG_INFO("invalid header byte: 0x%x", first);
    return 0;
  }
  for (int i = 1; i < n; ++i) {
    if ((bytes[i] & 0xC0) == 0x80) {
      value = value * 64 + (bytes[i] & 0x3F);
      continue;
    }
    ZIRK_LOG_INFO("invalid successor byte: 0x%x", bytes[i]);
    // Neither this loop nor a caller that skips the sequence reads beyond the string's end.
    if (bytes[i] == 0) n = i;
  }
  *length = n;
  return value;
}

}  // namespace ZIRK
