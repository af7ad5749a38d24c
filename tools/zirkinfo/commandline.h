#pragma once

#include <string>
#include <vector>

#include "support/tool.h"

namespace ZIRK::zirkinfo {

using support::kDiffers, support::kDone, support::kFailed, support::kWrongUsage;

struct CommandLine {
  std::string command = "backends";
  std::vector<std::string> operands;

  std::string backend;   ///< Empty for the default one.
  std::string fontFile;  ///< Empty for one of the machine.
  std::string output;
  std::string plugin;      ///< A third party's file; empty for none.
  std::string pluginName;  ///< Of the backend in it, once it is entered.
  int size = 16;
  int hold = 0;
  double worst = 255, mean = 255;
  double seconds = 1;
  bool isJson = false;
  bool listsCharacters = false;
  bool isOnScreen = false;
  bool hasText = true;
  bool isVerbose = false;
};

/// Reads the arguments. False if that is all that is to be done: `status` is then the program's,
/// and help, the version or what is wrong has been printed.
bool ParseCommandLine(int argc, char** argv, CommandLine& line, int& status);

bool IsPngFile(const std::string& name);

}  // namespace ZIRK::zirkinfo
