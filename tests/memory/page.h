#pragma once

#include <fstream>
#include <string>

/// The most memory that this process had at a time, in KiB; 0 where the kernel does not tell.
inline long PeakResidentKiB() {
  std::ifstream status("/proc/self/status");
  for (std::string word; status >> word;) {
    if (word != "VmHWM:") continue;
    long kibibytes = 0;
    status >> kibibytes;
    return kibibytes;
  }
  return 0;
}

/// What is set on the page: all printable characters of ASCII, in 24 lines.
constexpr int kPageLines = 24;
constexpr int kPageTextSize = 18;
inline std::string PageLine(int line) {
  std::string text;
  for (int i = 0; i < 70; ++i) text += static_cast<char>(' ' + (i + 17 * line) % 95);
  return text;
}
