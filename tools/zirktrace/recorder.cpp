#include "recorder.h"

#include <pthread.h>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstdio>
#include <cstdlib>

namespace ZIRK::trace {

namespace {

uint16_t ThisThread() {
  static std::atomic<uint16_t> count{0};
  thread_local const uint16_t number = count++;
  return number;
}

/// Access to a font's style, which is protected in VuFontImpl.
struct Style : VuFontImpl {
  static constexpr auto kOutlineType = &Style::outlineType_;
  static constexpr auto kOutlineThickness = &Style::outlineThickness_;
  static constexpr auto kFallbackGlyph = &Style::fallbackGlyph_;
};

const char* OrEmpty(const char* text) {
  return text ? text : "";
}

/// Returns the hash of the rows without the gaps between them.
XXH128_hash_t HashOf(const Rows& rows) {
  if (rows.pitch == rows.size) return XXH3_128bits(rows.first, rows.Bytes());
  XXH3_state_t state;
  XXH3_128bits_reset(&state);
  for (size_t y = 0; y < rows.count; ++y)
    XXH3_128bits_update(&state, rows.first + y * rows.pitch, rows.size);
  return XXH3_128bits_digest(&state);
}

/// Returns whether two fonts have the same source: the same path, or the same address in memory.
bool IsSame(const FontSource& a, const std::string& pathOfA, const FontSource& b) {
  return a.data == b.data && a.size == b.size && a.faceIndex == b.faceIndex &&
         a.pixelSize == b.pixelSize && a.bold == b.bold && a.italic == b.italic &&
         pathOfA == OrEmpty(b.path);
}

}  // namespace

Recorder& Recorder::Get() {
  // Never deleted: surfaces may be destroyed after the static objects.
  static Recorder* const recorder = new Recorder;
  return *recorder;
}

Recorder::Recorder() : ring_(Ring::Claim()) {
  unsigned long long first = 1, last = UINT64_MAX;
  const char* const frames = std::getenv(kFramesVariable);
  if (frames && std::sscanf(frames, "%llu-%llu", &first, &last) == 2) {
    firstFrame_ = first;
    lastFrame_ = last;
  }
  isOn_ = ring_ && firstFrame_ == 1;
  // A forked child must not write to the ring, which the parent uses.
  pthread_atfork(nullptr, nullptr, [] { Get().isOn_ = false; });
}

/// Writes the record's head, its fields and the content that follows them.
void Recorder::HandOver(Operation operation, const Rows& content) {
  const std::span<const uint8_t> fields = record_.Bytes();
  const auto time = std::chrono::steady_clock::now() - start_;
  RecordHead head;
  head.length =
      static_cast<uint32_t>(kHeadSize - sizeof head.length + fields.size() + content.Bytes());
  head.operation = operation;
  head.thread = ThisThread();
  head.time = static_cast<uint64_t>(std::chrono::nanoseconds(time).count());
  head_.Clear();
  Transfer(head_, head);
  bool isWritten = ring_->Write(head_.Bytes()) && ring_->Write(fields);
  for (size_t y = 0; y < content.count && isWritten; ++y)
    isWritten = ring_->Write({content.first + y * content.pitch, content.size});
  if (!isWritten) isOn_ = false;
}

void Recorder::Add(Id id, Described& object) {
  const std::lock_guard lock(objectMutex_);
  objects_[id] = &object;
}

void Recorder::Remove(Id id) {
  const std::lock_guard lock(objectMutex_);
  objects_.erase(id);
}

void Recorder::EndFrame() {
  const uint64_t done = ++framesDone_;
  if (done == lastFrame_) isOn_ = false;
  if (!ring_ || done + 1 != firstFrame_) return;
  isOn_ = true;
  const std::lock_guard lock(objectMutex_);
  for (const auto& [id, object] : objects_) object->Describe();
}

Id Recorder::ContentOf(const Rows& rows) {
  const size_t size = rows.Bytes();
  if (!IsOn() || size > kContentWindow) return Id::None;
  const XXH128_hash_t hash = HashOf(rows);
  const Hash key{hash.low64, hash.high64};
  const std::lock_guard lock(contentMutex_);
  const auto [found, isNew] = contents_.try_emplace(key, Id::None);
  if (!isNew) return found->second;
  Id id = found->second = NewId();
  oldest_.emplace_back(key, size);
  for (contentBytes_ += size; contentBytes_ > kContentWindow; oldest_.pop_front()) {
    contentBytes_ -= oldest_.front().second;
    contents_.erase(oldest_.front().first);
  }
  const std::lock_guard recordLock(mutex_);
  record_.Clear();
  Transfer(record_, id);
  HandOver(Operation::Content, rows);
  return id;
}

Id Recorder::ContentOfFile(const char* path) {
  const std::unique_ptr<FILE, int (*)(FILE*)> file(path ? std::fopen(path, "rbe") : nullptr,
                                                   std::fclose);
  if (!IsOn() || !file) return Id::None;
  std::vector<uint8_t> bytes;
  constexpr size_t kPart = 1 << 16;
  for (size_t read = kPart; read == kPart && bytes.size() <= kContentWindow;) {
    const size_t size = bytes.size();
    bytes.resize(size + kPart);
    read = std::fread(bytes.data() + size, 1, kPart, file.get());
    bytes.resize(size + read);
  }
  return std::ferror(file.get()) ? Id::None : ContentOf(AsRow(bytes));
}

Id Recorder::FontOf(const VuFontImpl* font) {
  const auto* const atlas = dynamic_cast<const VuFontAtlas*>(font);
  if (!atlas || !IsOn()) return Id::None;
  const std::lock_guard lock(fontMutex_);
  KnownFont& known = fonts_[font];
  const FontSource source = atlas->GetSource();
  if (known.id == Id::None || !IsSame(known.source, known.path, source)) MakeFont(known, source);
  StyleFont(known, *atlas);
  return known.id;
}

void Recorder::MakeFont(KnownFont& known, const FontSource& source) {
  known = {};
  known.id = NewId();
  known.path = OrEmpty(source.path);
  known.source = source;
  const Id content =
      source.data ? ContentOf(AsRow({source.data, source.size})) : ContentOfFile(source.path);
  Write(Operation::MakeFont, known.id, content, source.faceIndex, source.pixelSize, source.bold,
        source.italic);
}

void Recorder::StyleFont(KnownFont& known, const VuFontAtlas& font) {
  const FontSource fallback = font.GetFallbackSource();
  const auto type = font.*Style::kOutlineType;
  const int thickness = font.*Style::kOutlineThickness;
  const unsigned glyph = font.*Style::kFallbackGlyph;
  if (known.outlineType == type && known.outlineThickness == thickness &&
      known.fallbackGlyph == glyph && IsSame(known.fallback, known.fallbackPath, fallback))
    return;
  known.outlineType = type;
  known.outlineThickness = thickness;
  known.fallbackGlyph = glyph;
  known.fallback = fallback;
  known.fallbackPath = OrEmpty(fallback.path);
  Write(Operation::StyleFont, known.id, type, thickness, glyph, ContentOfFile(fallback.path),
        fallback.faceIndex, fallback.pixelSize);
}

}  // namespace ZIRK::trace
