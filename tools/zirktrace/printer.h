#pragma once

#include <string>

#include "tracefile.h"

namespace ZIRK::trace {

/// Returns the operation and its fields as text.
std::string ToText(const Record& record);

/// Returns a record as a line without a line break: number, frame, thread, milliseconds since the
/// beginning, and the operation with its fields.
std::string ToLine(const Record& record);

}  // namespace ZIRK::trace
