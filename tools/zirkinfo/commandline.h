#pragma once

#include <string>
#include <vector>

#include "support/tool.h"

namespace ZIRK::zirkinfo {

using support::kDiffers, support::kDone, support::kFailed, support::kWrongUsage;

struct CommandLine {
  std::string command = "backends";
  std::vector<std::string> operands;

  std::string backend;   ///< Empty for the default backend.
  std::string fontFile;  ///< Empty for an installed font.
  std::string output;
  std::string plugin;      ///< File of a third-party plug-in; empty for none.
  std::string pluginName;  ///< Name of its backend, once it is registered.
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

/// Reads the arguments. Returns false if the program ends with `status`, after printing help, the
/// version or an error.
bool ParseCommandLine(int argc, char** argv, CommandLine& line, int& status);

bool IsPngFile(const std::string& name);

}  // namespace ZIRK::zirkinfo
