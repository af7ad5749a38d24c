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

/// @file Reads and writes trace files. docs/trace-format.md describes the format.

namespace ZIRK::trace {

inline constexpr char kFileMagic[] = {'Z', 'I', 'R', 'K', 't', 'r', 'c', '\n'};
constexpr uint32_t kFormatVersion = 1;
/// The most bytes that one zstd frame holds, uncompressed.
constexpr size_t kBlockSize = size_t{1} << 18;
/// The total size of the contents that a record can name. Beyond it, the oldest are dropped.
constexpr size_t kContentWindow = size_t{256} << 20;
/// The size of the longest valid record, which has a content.
constexpr size_t kLongestRecord = kContentWindow + 64;

/// The largest number of an object or content. Larger numbers are reserved for programs that replay
/// traces.
constexpr Id kLastId{INT32_MAX};

/// The size of a RecordHead in a file.
constexpr size_t kHeadSize = 16;

/// The beginning of each record.
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
  /// The record's frame, which ends with SwapBuffers() of a screen. Counted from 1.
  uint64_t frame = 1;
  std::span<const uint8_t> fields;  ///< Valid until the next record is read.
};

/// A writer that compresses records into a file.
class TraceWriter {
 public:
  /// Returns null if the file cannot be created.
  static std::unique_ptr<TraceWriter> Create(const std::string& path);

  /// Adds bytes of records. Returns false and sets `errno` if the file cannot be written.
  bool Add(std::span<const uint8_t> bytes);
  /// Writes all bytes added so far.
  bool Flush();

 private:
  TraceWriter() = default;

  std::unique_ptr<FILE, int (*)(FILE*)> file_{nullptr, std::fclose};
  std::unique_ptr<ZSTD_CCtx, size_t (*)(ZSTD_CCtx*)> zstd_{ZSTD_createCCtx(), ZSTD_freeCCtx};
  std::vector<uint8_t> pending_;
  std::vector<uint8_t> compressed_;
};

/// A reader of a trace, record by record. It does not trust the trace, and takes as much memory as
/// the longest record.
class TraceReader {
 public:
  /// Reads from `stream`, which must outlive the reader.
  explicit TraceReader(std::istream& stream);

  /// Reads the next record. Returns false at the end or if the trace is damaged; see Problem().
  bool Next(Record& record);

  /// Returns the error, or an empty string if there is none.
  const std::string& Problem() const { return problem_; }
  /// Returns whether the file ends inside a block or a record.
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
  std::vector<uint8_t> records_;  ///< The bytes from `begin_` on are not yet used.
  size_t begin_ = 0;
  uint64_t number_ = 0, frame_ = 1;
  std::string problem_;
  bool isCut_ = false;
};

}  // namespace ZIRK::trace
