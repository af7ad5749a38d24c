#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

/// @file Passes records from the recorded program to zirktrace through shared memory, so that no
/// record is lost if a signal ends the program.

namespace ZIRK::trace {

/// Names the ring's file descriptor in the program's environment.
inline constexpr char kRingVariable[] = "ZIRK_TRACE_RING";

/// Names the variable with the frames to record, as "A-B". All are recorded if it is not set.
inline constexpr char kFramesVariable[] = "ZIRK_TRACE_FRAMES";

/// One end of the ring. One process writes to it, from one thread at a time, and one process reads.
class Ring {
 public:
  ~Ring();
  Ring(const Ring&) = delete;
  Ring& operator=(const Ring&) = delete;

  /// Makes a ring for the reader. Returns null and sets `errno` on failure.
  static std::unique_ptr<Ring> Create();
  /// Opens the ring named in the environment. Returns null if another process has claimed it, or if
  /// there is none.
  static std::unique_ptr<Ring> Claim();

  int Descriptor() const { return descriptor_; }
  /// Returns whether a process has claimed the ring.
  bool IsClaimed() const;

  /// Writes bytes, and waits for room if necessary. Returns false if the reader has exited.
  bool Write(std::span<const uint8_t> bytes);

  /// Returns the bytes that can be read, or the part of them before the end of the memory.
  std::span<const uint8_t> Readable() const;
  void Consume(size_t count);
  /// Ends writing.
  void Close();

 private:
  struct Shared;

  Ring(int descriptor, Shared* shared) : descriptor_(descriptor), shared_(shared) {}
  bool WaitForRoom(uint32_t written);

  const int descriptor_;
  Shared* const shared_;
};

}  // namespace ZIRK::trace
