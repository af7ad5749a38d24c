#pragma once

#include <zirk/export.h>

namespace ZIRK {

/// Decodes the UTF-8 sequence at `s` and stores in `*length` how many bytes it takes.
///
/// For null and for a byte that begins no sequence the result is 0 with a length of 0; the caller
/// goes on with the next byte. A byte that does not continue the sequence is left out of the value
/// but counts for the length. Both are logged at level info. A sequence that the string's end cuts
/// off is as long as what is left of it, so that the next byte is the terminating zero. Overlong
/// forms, surrogates and values above 0x10FFFF are accepted. May be called from any thread.
ZIRK_API unsigned int GetUtf8Char(const char* s, int* length);

}  // namespace ZIRK
