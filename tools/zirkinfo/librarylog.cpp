#include "librarylog.h"

#include <sys/mman.h>
#include <unistd.h>
#include <zirk/vusyslog.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace ZIRK::zirkinfo {

namespace {

constexpr int kInfo = 6, kDebug = 7;

}  // namespace

LibraryLog::LibraryLog()
    : level_(LogLevel),
      file_(memfd_create("zirkinfo", MFD_CLOEXEC)),
      standardError_(dup(STDERR_FILENO)) {
  std::fflush(stderr);
  if (file_ >= 0) dup2(file_, STDERR_FILENO);
  LogLevel = kDebug;
}

LibraryLog::~LibraryLog() {
  LogLevel = level_;
  std::fflush(stderr);
  const std::string text = Text();
  if (standardError_ >= 0) dup2(standardError_, STDERR_FILENO);
  if (level_ >= kInfo) std::fwrite(text.data(), 1, text.size(), stderr);
  close(standardError_);
  close(file_);
}

std::string LibraryLog::Text() const {
  std::string text;
  char part[4096];
  for (ssize_t n; (n = pread(file_, part, sizeof part, static_cast<off_t>(text.size()))) > 0;)
    text.append(part, static_cast<size_t>(n));
  return text;
}

std::vector<std::string> LibraryLog::Messages(const std::string& levelName) const {
  const std::string end = "." + levelName + ">: ";
  std::vector<std::string> found;
  std::istringstream text(Text());
  for (std::string line; std::getline(text, line);) {
    const size_t tag = line.find(">: ");
    if (tag == std::string::npos || line[0] != '<') continue;
    const size_t begin = tag + 3;
    if (begin < end.size() || line.compare(begin - end.size(), end.size(), end) != 0) continue;
    const std::string message = line.substr(begin);
    if (std::find(found.begin(), found.end(), message) == found.end()) found.push_back(message);
  }
  return found;
}

std::vector<std::string> LibraryLog::Messages(const std::string& levelName,
                                              const std::string& beginning) const {
  std::vector<std::string> rests;
  for (const std::string& message : Messages(levelName))
    if (message.rfind(beginning, 0) == 0) rests.push_back(message.substr(beginning.size()));
  return rests;
}

std::string LibraryLog::LastInfo(const std::string& beginning) const {
  const std::vector<std::string> rests = Messages("info", beginning);
  return rests.empty() ? "" : rests.back();
}

void PrintLines(const char* key, const std::vector<std::string>& messages) {
  for (const std::string& message : messages) std::printf("%s: %s\n", key, message.c_str());
}

}  // namespace ZIRK::zirkinfo
