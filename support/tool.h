#pragma once

#include <getopt.h>

#include <cstdio>
#include <functional>
#include <vector>

namespace ZIRK::support {

/// The exit status of a command-line tool.
enum ExitStatus {
  kDone = 0,
  kFailed = 1,      ///< A request could not be carried out.
  kWrongUsage = 2,  ///< The command line is wrong.
  kDiffers = 3,     ///< Pictures differ by more than is allowed.
};

/// The name and version of a tool, the text of --help, and its options. The list of options
/// includes "help" and "version" and ends with an empty one.
struct Tool {
  const char* name;
  const char* version;
  const char* help;
  const option* options;

  /// Prints what is wrong with the command line, and returns kWrongUsage.
  template <typename... Values>
  int Wrong(const char* format, Values... values) const {
    std::fprintf(stderr, "%s: ", name);
    std::fprintf(stderr, format, values...);
    std::fprintf(stderr, "; see %s --help\n", name);
    return kWrongUsage;
  }

  /// The long name of an option; empty if there is none.
  const char* NameOf(int code) const;

  /// Reads the options up to the operands at `optind`, and adds their codes to `used`. `letters`
  /// are the short options. `take` returns false for an invalid argument. Returns false if the tool
  /// ends with `status`, after printing help, the version or an error.
  bool ReadOptions(int argc, char** argv, const char* letters,
                   const std::function<bool(int code, const char* argument)>& take,
                   std::vector<int>& used, int& status) const;
};

/// Runs a tool and returns its status. If it throws, or if its output cannot be written, prints an
/// error and returns kFailed.
int RunTool(const char* name, int argc, char** argv, int (*run)(int argc, char** argv));

}  // namespace ZIRK::support
