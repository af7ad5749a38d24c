#pragma once

#include <getopt.h>

#include <cstdio>
#include <functional>
#include <vector>

namespace ZIRK::support {

/// What a command-line tool ends with.
enum ExitStatus {
  kDone = 0,
  kFailed = 1,      ///< Something asked for could not be done.
  kWrongUsage = 2,  ///< The command line is wrong.
  kDiffers = 3,     ///< Pictures differ by more than is allowed.
};

/// A tool's name and version, the text of --help, and its options, which end with an empty one.
/// Among them are "help" and "version".
struct Tool {
  const char* name;
  const char* version;
  const char* help;
  const option* options;

  /// Prints what is wrong with the command line, and returns the status for that.
  template <typename... Values>
  int Wrong(const char* format, Values... values) const {
    std::fprintf(stderr, "%s: ", name);
    std::fprintf(stderr, format, values...);
    std::fprintf(stderr, "; see %s --help\n", name);
    return kWrongUsage;
  }

  /// The long name of an option; empty for none.
  const char* NameOf(int code) const;

  /// Reads the options, of which `letters` are the short ones, up to the operands at `optind`, and
  /// adds their codes to `used`. `take` returns false for an argument that is not valid. False if
  /// the tool ends with `status`: help, the version or what is wrong has been printed.
  bool ReadOptions(int argc, char** argv, const char* letters,
                   const std::function<bool(int code, const char* argument)>& take,
                   std::vector<int>& used, int& status) const;
};

/// Runs a tool. Returns its status: kFailed, after a line on standard error, if it throws or its
/// output cannot be written.
int RunTool(const char* name, int argc, char** argv, int (*run)(int argc, char** argv));

}  // namespace ZIRK::support
