#pragma once

#include <zirk/vufontatlas.h>

#include <atomic>
#include <chrono>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "fields.h"
#include "ring.h"
#include "rows.h"
#include "tracefile.h"

namespace ZIRK::trace {

/// An object of the program's that a trace may begin with.
class Described {
 public:
  virtual ~Described() = default;
  /// Writes the records after which the object is as it is now.
  virtual void Describe() = 0;
};

/// Writes records into the ring, as long as there is one, in the order in which operations end.
/// Any thread may call. Logs nothing.
class Recorder {
 public:
  /// The process's one.
  static Recorder& Get();

  bool IsOn() const { return isOn_.load(std::memory_order_relaxed); }
  Id NewId() { return Id{++lastId_}; }

  /// Writes a record with these fields.
  template <class... T>
  void Write(Operation operation, T... fields) {
    if (!IsOn()) return;
    const std::lock_guard lock(mutex_);
    record_.Clear();
    (Transfer(record_, fields), ...);
    HandOver(operation, {});
  }

  /// Every object of the program's, from when it is made until it is deleted.
  void Add(Id id, Described& object);
  void Remove(Id id);
  /// To be called after a screen was shown: begins and ends recording where not all frames are
  /// asked for.
  void EndFrame();

  /// The content with the bytes of these rows, which is written where it was not yet. 0 for one
  /// that is too large.
  Id ContentOf(const Rows& rows);
  /// That of a file; None where it cannot be read.
  Id ContentOfFile(const char* path);
  /// The font, which is written where it is new or has changed. 0 for one that is not the
  /// library's.
  Id FontOf(const VuFontImpl* font);

 private:
  /// Fonts are made and deleted without a record, so one is known by what it was made of.
  struct KnownFont {
    Id id = Id::None;
    std::string path, fallbackPath;
    FontSource source, fallback;
    VuFont::OutlineType outlineType = VuFont::OutlineType::None;
    int outlineThickness = 0;
    unsigned fallbackGlyph = 0;
  };
  struct Hash {
    uint64_t low, high;
    bool operator==(const Hash&) const = default;
  };
  struct LowHalf {
    size_t operator()(const Hash& hash) const { return static_cast<size_t>(hash.low); }
  };

  Recorder();
  void HandOver(Operation operation, const Rows& content);
  void MakeFont(KnownFont& known, const FontSource& source);
  void StyleFont(KnownFont& known, const VuFontAtlas& font);

  std::unique_ptr<Ring> ring_;
  uint64_t firstFrame_ = 1, lastFrame_ = UINT64_MAX;
  std::atomic<uint64_t> framesDone_{0};
  std::atomic<bool> isOn_{false};
  std::atomic<uint32_t> lastId_{0};
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();

  std::mutex mutex_;  ///< Guards the ring and the record.
  Encoder head_, record_;

  std::mutex objectMutex_;
  std::map<Id, Described*> objects_;  ///< In the order in which they were made.

  std::mutex contentMutex_;
  std::unordered_map<Hash, Id, LowHalf> contents_;
  std::deque<std::pair<Hash, size_t>> oldest_;
  size_t contentBytes_ = 0;

  std::mutex fontMutex_;
  std::unordered_map<const VuFontImpl*, KnownFont> fonts_;
};

}  // namespace ZIRK::trace
