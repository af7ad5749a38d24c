#pragma once

#include <string>
#include <vector>

namespace ZIRK::zirkinfo {

/// Collects the library's log, down to level debug, while it exists. Nothing reaches standard error
/// meanwhile, messages of other libraries included; with --verbose the destructor prints
/// everything.
class LibraryLog {
 public:
  LibraryLog();
  ~LibraryLog();
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;

  /// The messages so far of the level with this name, without repetitions.
  std::vector<std::string> Messages(const std::string& levelName) const;
  /// Of the messages that start with `beginning`, the text after it.
  std::vector<std::string> Messages(const std::string& levelName,
                                    const std::string& beginning) const;
  /// The last such text of level info; empty if there is none.
  std::string LastInfo(const std::string& beginning) const;
  /// The device that shows the last screen that was created; empty if no screen is shown.
  std::string ShownBy() const { return LastInfo("screen 0: "); }

 private:
  std::string Text() const;

  const int level_;
  const int file_;
  const int standardError_;
};

/// Prints each message as a line with this key.
void PrintLines(const char* key, const std::vector<std::string>& messages);

}  // namespace ZIRK::zirkinfo
