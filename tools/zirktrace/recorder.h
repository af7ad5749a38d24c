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

/// An object of the program that may exist when the recording begins.
class Described {
 public:
  virtual ~Described() = default;
  /// Writes the records that create the object in its current state.
  virtual void Describe() = 0;
};

/// The writer of records into the ring, if there is one, in the order in which operations end. All
/// functions are safe to call from any thread. Logs nothing.
class Recorder {
 public:
  /// Returns the recorder of the process.
  static Recorder& Get();

  bool IsOn() const { return isOn_.load(std::memory_order_relaxed); }
  Id NewId() { return Id{++lastId_}; }

  /// Writes a record with the given fields.
  template <class... T>
  void Write(Operation operation, T... fields) {
    if (!IsOn()) return;
    const std::lock_guard lock(mutex_);
    record_.Clear();
    (Transfer(record_, fields), ...);
    HandOver(operation, {});
  }

  /// Register an object of the program after its creation, and remove it before its deletion.
  void Add(Id id, Described& object);
  void Remove(Id id);
  /// Begins or ends the recording if only some frames are requested. Call it after each
  /// SwapBuffers().
  void EndFrame();

  /// Returns the Id of the content with the bytes of these rows, and writes the content if it is
  /// new. Returns None if it is too large.
  Id ContentOf(const Rows& rows);
  /// Returns the Id of a file's content, or None if the file cannot be read.
  Id ContentOfFile(const char* path);
  /// Returns the Id of a font, and writes the font if it is new or has changed. Returns None if it
  /// is not a font of the library.
  Id FontOf(const VuFontImpl* font);

 private:
  /// No records show that fonts are made or deleted, so a font is identified by its source.
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
  std::map<Id, Described*> objects_;  ///< In the order of their creation.

  std::mutex contentMutex_;
  std::unordered_map<Hash, Id, LowHalf> contents_;
  std::deque<std::pair<Hash, size_t>> oldest_;
  size_t contentBytes_ = 0;

  std::mutex fontMutex_;
  std::unordered_map<const VuFontImpl*, KnownFont> fonts_;
};

}  // namespace ZIRK::trace
