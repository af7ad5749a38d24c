#pragma once

#include <zirk/export.h>

namespace ZIRK {

/// Decodes the UTF-8 sequence at `s` and stores in `*length` how many bytes it takes.
///
/// Returns the code point. For null, and for a byte that cannot begin a sequence, the result is 0
/// with a length of 0; the caller continues with the next byte. A byte that does not continue the
/// sequence is left out of the value, but counts for the length, so a broken sequence may take the
/// next character with it. Both kinds of byte are logged at level info. If the string ends within a
/// sequence, the length ends at the terminating zero. Overlong forms, surrogates and values above
/// 0x10FFFF are accepted. Any thread may call.
ZIRK_API unsigned int GetUtf8Char(const char* s, int* length);

}  // namespace ZIRK
