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

  std::string output;   ///< Empty for a name made from the program's.
  std::string backend;  ///< Empty for the backend of the recording.
  std::string pngFolder;
  uint64_t firstFrame = 1, lastFrame = UINT64_MAX;
  uint32_t surface = 0;  ///< 0 for the surface that the frame shows.
  int loops = 1;
  int worst = 2;
  bool compares = false;
  bool measures = false;
  bool isJson = false;
  bool isVerbose = false;
};

/// Reads the arguments. Returns false if the program is to end with `status`: the help, the version
/// or an error has then been printed.
bool ParseCommandLine(int argc, char** argv, CommandLine& line, int& status);

}  // namespace ZIRK::trace
