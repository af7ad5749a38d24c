// Records what a program draws, and replays it.

#include <zirk/vusyslog.h>

#include "commands.h"

namespace {

using namespace ZIRK::trace;

int RunCommand(const CommandLine& line) {
  if (line.command == "record") return RecordProgram(line);
  if (line.command == "dump") return DumpTrace(line);
  if (line.command == "info") return ShowTrace(line);
  if (line.measures) return MeasureReplay(line);
  if (line.command == "overdraw") return ShowOverdraw(line);
  if (line.command == "report") return WriteReport(line);
  if (line.command == "trim") return TrimTrace(line);
  return line.compares ? CompareBackends(line) : ReplayTrace(line);
}

int Run(int argc, char** argv) {
  CommandLine line;
  int status = kDone;
  if (!ParseCommandLine(argc, argv, line, status)) return status;
  ZIRK::LogLevel = line.isVerbose ? 6 : 0;
  ZIRK::LogInterval = 0;
  return RunCommand(line);
}

}  // namespace

int main(int argc, char** argv) {
  return ZIRK::support::RunTool("zirktrace", argc, argv, Run);
}
