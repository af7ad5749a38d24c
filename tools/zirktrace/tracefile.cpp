#include "tracefile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "fields.h"

namespace ZIRK::trace {

namespace {

constexpr int kCompressionLevel = 3;
/// The largest window of zstd, which limits the decoder's memory.
constexpr int kLargestWindow = 20;
constexpr size_t kHeaderSize = sizeof kFileMagic + sizeof kFormatVersion;

}  // namespace

// --- Writing ----------------------------------------------------------------------------------

std::unique_ptr<TraceWriter> TraceWriter::Create(const std::string& path) {
  std::unique_ptr<TraceWriter> writer(new TraceWriter);
  writer->file_.reset(std::fopen(path.c_str(), "wbe"));
  FILE* const file = writer->file_.get();
  if (!file) return nullptr;
  ZSTD_CCtx_setParameter(writer->zstd_.get(), ZSTD_c_compressionLevel, kCompressionLevel);
  ZSTD_CCtx_setParameter(writer->zstd_.get(), ZSTD_c_checksumFlag, 1);
  writer->compressed_.resize(ZSTD_compressBound(kBlockSize));
  const bool isWritten = std::fwrite(kFileMagic, sizeof kFileMagic, 1, file) == 1 &&
                         std::fwrite(&kFormatVersion, sizeof kFormatVersion, 1, file) == 1 &&
                         std::fflush(file) == 0;
  return isWritten ? std::move(writer) : nullptr;
}

bool TraceWriter::Add(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const size_t part = std::min(bytes.size(), kBlockSize - pending_.size());
    pending_.insert(pending_.end(), bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(part));
    bytes = bytes.subspan(part);
    if (pending_.size() == kBlockSize && !Flush()) return false;
  }
  return true;
}

bool TraceWriter::Flush() {
  if (pending_.empty()) return true;
  const size_t size = ZSTD_compress2(zstd_.get(), compressed_.data(), compressed_.size(),
                                     pending_.data(), pending_.size());
  pending_.clear();
  if (ZSTD_isError(size)) {
    errno = ENOMEM;
    return false;
  }
  return std::fwrite(compressed_.data(), 1, size, file_.get()) == size &&
         std::fflush(file_.get()) == 0;
}

// --- Reading ----------------------------------------------------------------------------------

TraceReader::TraceReader(std::istream& stream)
    : stream_(stream), input_(ZSTD_DStreamInSize()), block_(kBlockSize) {
  ZSTD_DCtx_setParameter(zstd_.get(), ZSTD_d_windowLogMax, kLargestWindow);
  ReadHeader();
}

bool TraceReader::Fail(const std::string& problem) {
  problem_ = problem;
  return false;
}

bool TraceReader::ReadHeader() {
  std::array<char, kHeaderSize> header{};
  stream_.read(header.data(), header.size());
  if (!stream_ || !std::equal(std::begin(kFileMagic), std::end(kFileMagic), header.begin()))
    return Fail("no trace");
  uint32_t version = 0;
  std::memcpy(&version, header.data() + sizeof kFileMagic, sizeof version);
  if (version != kFormatVersion) return Fail("of version " + std::to_string(version));
  return true;
}

/// Reads one zstd frame and appends its content. The content is not used until its checksum has
/// been verified.
bool TraceReader::ReadBlock() {
  ZSTD_outBuffer out{block_.data(), block_.size(), 0};
  for (bool isBegun = false;; isBegun = true) {
    if (in_.pos == in_.size) {
      stream_.read(reinterpret_cast<char*>(input_.data()),
                   static_cast<std::streamsize>(input_.size()));
      in_ = {input_.data(), static_cast<size_t>(stream_.gcount()), 0};
      if (in_.size == 0) {
        isCut_ = isBegun;
        return false;
      }
    }
    const size_t before = in_.pos + out.pos;
    const size_t left = ZSTD_decompressStream(zstd_.get(), &out, &in_);
    const std::string where = "after operation " + std::to_string(number_);
    if (ZSTD_isError(left)) return Fail("damaged " + where + ": " + ZSTD_getErrorName(left));
    if (left == 0) break;
    if (in_.pos + out.pos == before) return Fail("a block is too large " + where);
  }
  records_.erase(records_.begin(), records_.begin() + static_cast<ptrdiff_t>(begin_));
  begin_ = 0;
  records_.insert(records_.end(), block_.begin(), block_.begin() + static_cast<ptrdiff_t>(out.pos));
  return true;
}

/// Makes `count` bytes available. Returns false if the trace has fewer.
bool TraceReader::Fill(size_t count) {
  while (records_.size() - begin_ < count)
    if (!ReadBlock()) {
      isCut_ = isCut_ || (problem_.empty() && records_.size() != begin_);
      return false;
    }
  return true;
}

bool TraceReader::Next(Record& record) {
  if (!problem_.empty() || !Fill(kHeadSize)) return false;
  RecordHead head;
  Decoder decoder({records_.data() + begin_, kHeadSize});
  Transfer(decoder, head);
  ++number_;
  const std::string where = "operation " + std::to_string(number_) + ": ";
  constexpr size_t kLengthSize = sizeof head.length;
  if (head.length < kHeadSize - kLengthSize || head.length > kLongestRecord)
    return Fail(where + "a length of " + std::to_string(head.length));
  if (!NameOf(head.operation))
    return Fail(where + "unknown number " + std::to_string(static_cast<int>(head.operation)));
  if (!Fill(kLengthSize + head.length)) return false;
  record = {head.operation,
            head.thread,
            head.time,
            number_,
            frame_,
            {records_.data() + begin_ + kHeadSize, head.length + kLengthSize - kHeadSize}};
  begin_ += kLengthSize + head.length;
  if (head.operation == Operation::SwapBuffers) ++frame_;
  return CheckFields(record) || Fail(where + NameOf(head.operation) + " has wrong fields");
}

/// Returns whether the fields are valid for the operation.
bool TraceReader::CheckFields(const Record& record) {
  Decoder decoder(record.fields);
  Id largest = Id::None;
  const auto read = [&](auto value) {
    Transfer(decoder, value);
    if constexpr (std::is_same_v<decltype(value), Id>) largest = std::max(largest, value);
    if constexpr (std::is_same_v<decltype(value), CreatedValue>)
      largest = std::max(largest, value.id);
    if constexpr (std::is_same_v<decltype(value), FileValue>)
      largest = std::max(largest, value.content);
  };
  if (HasObject(record.operation)) read(Id{});
  WithFields(record.operation, [&]<class Result, class... W>() {
    (read(Value<W>{}), ...);
    read(Value<Result>{});
  });
  if (largest > kLastId) return false;
  return record.operation == Operation::Content ? decoder.IsRight() : decoder.IsDone();
}

}  // namespace ZIRK::trace
