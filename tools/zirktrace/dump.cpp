#include "commands.h"
#include "openedtrace.h"
#include "printer.h"

namespace ZIRK::trace {

int DumpTrace(const CommandLine& line) {
  OpenedTrace trace(line.operands[0]);
  for (Record record; trace.Next(record) && record.frame <= line.lastFrame;)
    if (record.frame >= line.firstFrame) std::puts(ToLine(record).c_str());
  return trace.Report() ? kDone : kFailed;
}

}  // namespace ZIRK::trace
