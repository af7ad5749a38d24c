// Records what a program draws, and draws it again.

#include <zirk/vusyslog.h>

#include <cstdio>
#include <exception>

#include "commands.h"

namespace {

using namespace ZIRK::trace;

int RunCommand(const CommandLine& line) {
  if (line.command == "record") return RecordProgram(line);
  if (line.command == "dump") return DumpTrace(line);
  if (line.command == "info") return ShowTrace(line);
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
  int status = kFailed;
  try {
    status = Run(argc, argv);
  } catch (const std::exception& problem) {
    std::fprintf(stderr, "zirktrace: %s\n", problem.what());
  }
  if (std::fflush(stdout) == 0) return status;
  std::perror("zirktrace: standard output");
  return kFailed;
}
