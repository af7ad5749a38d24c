#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>

/// @file
/// How records get from the program that is recorded to zirktrace: through memory that both have,
/// so that a program that ends by a signal has handed over all that it did.

namespace ZIRK::trace {

/// Names the ring's file descriptor in the program's environment.
inline constexpr char kRingVariable[] = "ZIRK_TRACE_RING";

/// Has the frames that are recorded, as "A-B"; all where it is not set.
inline constexpr char kFramesVariable[] = "ZIRK_TRACE_FRAMES";

/// One end of the ring. One process writes, one thread at a time, and one process reads.
class Ring {
 public:
  ~Ring();
  Ring(const Ring&) = delete;
  Ring& operator=(const Ring&) = delete;

  /// Makes a ring, for the reader. Empty, with `errno`, where that cannot be.
  static std::unique_ptr<Ring> Create();
  /// The ring of the environment, for the first process that asks for it. Empty where there is
  /// none.
  static std::unique_ptr<Ring> Claim();

  int Descriptor() const { return descriptor_; }
  /// Whether a process has claimed it.
  bool IsClaimed() const;

  /// Waits for room. False once the reader has gone.
  bool Write(std::span<const uint8_t> bytes);

  /// What is there to be read, or the part of it before the memory's end.
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
