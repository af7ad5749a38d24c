#pragma once

#include <zstd.h>

#include <cstdint>
#include <cstdio>
#include <istream>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "operations.h"

/// @file
/// A trace as a file; docs/trace-format.md describes it.

namespace ZIRK::trace {

inline constexpr char kFileMagic[] = {'Z', 'I', 'R', 'K', 't', 'r', 'c', '\n'};
constexpr uint32_t kFormatVersion = 1;
/// The most that one frame of zstd holds.
constexpr size_t kBlockSize = size_t{1} << 18;
/// The most that contents take together before the oldest can no longer be named.
constexpr size_t kContentWindow = size_t{256} << 20;
/// Longer records are refused; the longest have a content.
constexpr size_t kLongestRecord = kContentWindow + 64;

/// The largest number of an object or content. Those above it are left to what replays a trace.
constexpr Id kLastId{INT32_MAX};

/// Bytes of what each record begins with.
constexpr size_t kHeadSize = 16;

/// What each record begins with.
struct RecordHead {
  uint32_t length = 0;  ///< Bytes after this field.
  Operation operation{};
  uint16_t thread = 0;  ///< Counted from 0 in the order of their first records.
  uint64_t time = 0;    ///< Nanoseconds since the recording began.
};
template <class Archive>
void Transfer(Archive& archive, RecordHead& head) {
  archive.Group(head.length, head.operation, head.thread, head.time);
}

struct Record {
  Operation operation{};
  uint16_t thread = 0;
  uint64_t time = 0;
  uint64_t number = 0;  ///< Counted from 1.
  /// The one that it belongs to, which its screen's SwapBuffers() ends. Counted from 1.
  uint64_t frame = 1;
  std::span<const uint8_t> fields;  ///< Valid until the next record is read.
};

/// Compresses records into a file.
class TraceWriter {
 public:
  /// Empty if the file cannot be made.
  static std::unique_ptr<TraceWriter> Create(const std::string& path);

  /// Adds bytes of records. False, with `errno`, where the file cannot be written.
  bool Add(std::span<const uint8_t> bytes);
  /// Writes what was added so far.
  bool Flush();

 private:
  TraceWriter() = default;

  std::unique_ptr<FILE, int (*)(FILE*)> file_{nullptr, std::fclose};
  std::unique_ptr<ZSTD_CCtx, size_t (*)(ZSTD_CCtx*)> zstd_{ZSTD_createCCtx(), ZSTD_freeCCtx};
  std::vector<uint8_t> pending_;
  std::vector<uint8_t> compressed_;
};

/// Reads a trace record by record, and trusts none of it. Takes as much memory as the longest
/// record.
class TraceReader {
 public:
  /// Reads from `stream`, which has to live as long.
  explicit TraceReader(std::istream& stream);

  /// False at the end and where the trace is damaged: see Problem().
  bool Next(Record& record);

  /// What is wrong, empty if nothing is.
  const std::string& Problem() const { return problem_; }
  /// Whether the file ends inside a block or a record.
  bool IsCut() const { return isCut_; }

 private:
  bool ReadHeader();
  bool ReadBlock();
  bool Fill(size_t count);
  bool Fail(const std::string& problem);
  bool CheckFields(const Record& record);

  std::istream& stream_;
  std::unique_ptr<ZSTD_DCtx, size_t (*)(ZSTD_DCtx*)> zstd_{ZSTD_createDCtx(), ZSTD_freeDCtx};
  std::vector<uint8_t> input_;
  ZSTD_inBuffer in_{};
  std::vector<uint8_t> block_;
  std::vector<uint8_t> records_;  ///< Read, from `begin_` on not yet handed out.
  size_t begin_ = 0;
  uint64_t number_ = 0, frame_ = 1;
  std::string problem_;
  bool isCut_ = false;
};

}  // namespace ZIRK::trace
