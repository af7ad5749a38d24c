// Shows which parts of ZIRK are installed, which of them work here, and what they draw.

#include <zirk/vusyslog.h>

#include "commands.h"
#include "plugins.h"

namespace {

using namespace ZIRK::zirkinfo;

int RunCommand(const CommandLine& line) {
  if (line.command == "font") return ShowFonts(line);
  if (line.command == "card") return WriteCard(line);
  if (line.command == "compare") return CompareCards(line);
  if (line.command == "bench") return MeasureBackends(line);
  return ShowBackends(line);
}

int Run(int argc, char** argv) {
  CommandLine line;
  int status = kDone;
  if (!ParseCommandLine(argc, argv, line, status)) return status;
  ZIRK::LogLevel = line.isVerbose ? 6 : 0;
  ZIRK::LogInterval = 0;
  if (!line.plugin.empty()) line.pluginName = EnterPlugin(line.plugin);
  return RunCommand(line);
}

}  // namespace

int main(int argc, char** argv) {
  return ZIRK::support::RunTool("zirkinfo", argc, argv, Run);
}
