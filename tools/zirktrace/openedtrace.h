#pragma once

#include <cstdio>
#include <fstream>
#include <string>

#include "player.h"
#include "tracefile.h"

namespace ZIRK::trace {

/// A trace file, read from the beginning.
class OpenedTrace {
 public:
  explicit OpenedTrace(const std::string& path)
      : path_(path), stream_(path, std::ios::binary), reader_(stream_) {}

  bool Next(Record& record) { return reader_.Next(record); }

  /// Prints on standard error what is wrong with the trace, or that it is cut off, which is no
  /// failure. Returns whether the trace is usable.
  bool Report() const {
    if (!stream_.is_open())
      std::fprintf(stderr, "zirktrace: %s: cannot be read\n", path_.c_str());
    else if (!reader_.Problem().empty())
      std::fprintf(stderr, "zirktrace: %s: %s\n", path_.c_str(), reader_.Problem().c_str());
    else if (reader_.IsCut())
      std::fprintf(stderr, "zirktrace: %s: is cut off; the part before is used\n", path_.c_str());
    return stream_.is_open() && reader_.Problem().empty();
  }

  /// Prints that an operation failed.
  void Report(const Record& record, const Player& player) const {
    std::fprintf(stderr, "zirktrace: %s: operation %llu, %s: %s\n", path_.c_str(),
                 static_cast<unsigned long long>(record.number), NameOf(record.operation),
                 player.Problem().c_str());
  }

 private:
  const std::string path_;
  std::ifstream stream_;
  TraceReader reader_;
};

}  // namespace ZIRK::trace
