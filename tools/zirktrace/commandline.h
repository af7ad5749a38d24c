#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/tool.h"

namespace ZIRK::trace {

using support::kDiffers, support::kDone, support::kFailed, support::kWrongUsage;

struct CommandLine {
  std::string command;
  std::vector<std::string> operands;

  std::string output;   ///< Empty for one named after the program.
  std::string backend;  ///< Empty for the one of the recording.
  std::string pngFolder;
  uint64_t firstFrame = 1, lastFrame = UINT64_MAX;
  uint32_t surface = 0;  ///< 0 for the one that the frame shows.
  int loops = 1;
  int worst = 2;
  bool compares = false;
  bool measures = false;
  bool isJson = false;
  bool isVerbose = false;
};

/// Reads the arguments. False if that is all that is to be done: `status` is then the program's,
/// and help, the version or what is wrong has been printed.
bool ParseCommandLine(int argc, char** argv, CommandLine& line, int& status);

}  // namespace ZIRK::trace
