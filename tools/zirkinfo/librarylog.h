#pragma once

#include <string>
#include <vector>

namespace ZIRK::zirkinfo {

/// Collects what the library logs, down to the level debug, as long as it lives. Nothing of it
/// reaches standard error meanwhile, other libraries' messages included; with --verbose all follows
/// at the end.
class LibraryLog {
 public:
  LibraryLog();
  ~LibraryLog();
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;

  /// The messages so far of the level with this name, each once.
  std::vector<std::string> Messages(const std::string& levelName) const;
  /// What follows `beginning` in those that begin so.
  std::vector<std::string> Messages(const std::string& levelName,
                                    const std::string& beginning) const;
  /// The last of these of the level info; empty if there is none.
  std::string LastInfo(const std::string& beginning) const;
  /// What shows the last screen created meanwhile; empty where none is shown.
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
