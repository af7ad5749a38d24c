#pragma once

#include "commandline.h"

namespace ZIRK::zirkinfo {

/// Each carries out one command and returns the program's status.
int ShowBackends(const CommandLine& line);
int ShowFonts(const CommandLine& line);
int WriteCard(const CommandLine& line);
int CompareCards(const CommandLine& line);
int MeasureBackends(const CommandLine& line);

}  // namespace ZIRK::zirkinfo
