#pragma once

#include "commandline.h"

namespace ZIRK::trace {

/// Each carries out one command and gives the program's status.
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
