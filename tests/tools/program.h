#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/offscreen.h"

namespace ZIRK::helpers {

struct Result {
  int status;          ///< -1 where a signal ended it.
  std::string output;  ///< Both streams.
};

/// A folder for the files of tests with this name.
inline std::string FolderOf(const std::string& tests) {
  const std::string folder = testing::TempDir() + tests;
  std::filesystem::create_directories(folder);
  return folder;
}

/// Runs a command of the shell in a folder, without any display.
inline Result Run(const std::string& folder, const std::string& command) {
  support::UseOffscreenOpenGl();
  setenv("ZIRK_FB_DEVICE", "/nonexistent", 1);
  FILE* const pipe = popen(("cd " + folder + " && (" + command + ") 2>&1").c_str(), "r");
  Result result{-1, ""};
  char part[4096];
  for (size_t n; pipe && (n = fread(part, 1, sizeof part, pipe)) > 0;)
    result.output.append(part, n);
  const int status = pipe ? pclose(pipe) : -1;
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}

/// What a tool is asked, and how it answers.
struct Case {
  const char* arguments;
  int status;
  const char* pattern;  ///< Somewhere in the output.
  const char* prefix = "";
};

inline void ExpectAnswer(const Case& asked, const Result& result) {
  EXPECT_EQ(result.status, asked.status) << asked.arguments << '\n' << result.output;
  EXPECT_THAT(result.output, testing::ContainsRegex(asked.pattern)) << asked.arguments;
}

}  // namespace ZIRK::helpers
