#pragma once

#include "commandline.h"

namespace ZIRK::trace {

/// Each function runs one command and returns the program's exit status.
int RecordProgram(const CommandLine& line);
int ReplayTrace(const CommandLine& line);
int MeasureReplay(const CommandLine& line);
int CompareBackends(const CommandLine& line);
int DumpTrace(const CommandLine& line);
int ShowTrace(const CommandLine& line);
int ShowOverdraw(const CommandLine& line);
int WriteReport(const CommandLine& line);
int TrimTrace(const CommandLine& line);

}  // namespace ZIRK::trace
