#pragma once

#include <string>

#include "tracefile.h"

namespace ZIRK::trace {

/// The operation with its fields.
std::string ToText(const Record& record);

/// A record as a line without its end: number, frame, thread, milliseconds since the beginning, and
/// the operation with its fields.
std::string ToLine(const Record& record);

}  // namespace ZIRK::trace
