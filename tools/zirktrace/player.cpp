#include "player.h"

#include <zirk/backendtable.h>
#include <zirk/graphicsimplloader.h>
#include <zirk/vufontatlas.h>

#include <ostream>

namespace ZIRK::trace {

// --- Contents ---------------------------------------------------------------------------------

void Contents::Add(Id id, std::span<const uint8_t> bytes) {
  const auto [added, isNew] = contents_.try_emplace(id);
  if (!isNew) return;
  added->second.bytes.assign(bytes.begin(), bytes.end());
  oldest_.push_back(id);
  for (size_ += bytes.size(); size_ > kContentWindow; oldest_.pop_front()) {
    const auto oldest = contents_.find(oldest_.front());
    size_ -= oldest->second.bytes.size();
    contents_.erase(oldest);
  }
}

const std::vector<uint8_t>* Contents::Find(Id id) const {
  const auto found = contents_.find(id);
  return found == contents_.end() ? nullptr : &found->second.bytes;
}

std::shared_ptr<const MemoryFile> Contents::FileOf(Id id) {
  const auto found = contents_.find(id);
  if (found == contents_.end()) return nullptr;
  std::shared_ptr<const MemoryFile> file = found->second.file.lock();
  if (!file) found->second.file = file = MemoryFile::Create(found->second.bytes);
  return file;
}

Id ObjectOf(const Record& record) {
  Decoder fields(record.fields);
  Id id = Id::None;
  Transfer(fields, id);
  return id;
}

// --- Arguments --------------------------------------------------------------------------------

Player::~Player() {
  fonts_.clear();
  surfaces_.clear();
  compositors_.clear();
}

bool Player::Fail(const std::string& problem) {
  if (problem_.empty()) problem_ = problem;
  return false;
}

VuBitmapImpl* Player::SurfaceOf(Id id) {
  const auto found = surfaces_.find(id);
  if (found != surfaces_.end()) return found->second.impl;
  Fail("there is no surface " + std::to_string(static_cast<uint32_t>(id)));
  return nullptr;
}

/// Returns the bytes of a content. An operation whose content was not recorded is skipped, which is
/// no error.
const std::vector<uint8_t>* Player::BytesOf(Id id) {
  const std::vector<uint8_t>* const bytes = contents_.Find(id);
  if (id == Id::None) isSkipped_ = true;
  if (!bytes && id != Id::None)
    Fail("there is no content " + std::to_string(static_cast<uint32_t>(id)));
  return bytes;
}

const char* Player::PathOf(const FileValue& value) {
  if (!BytesOf(value.content)) return nullptr;
  openFile_ = contents_.FileOf(value.content);
  if (!openFile_) Fail("cannot make a file in memory");
  return openFile_ ? openFile_->Path().c_str() : nullptr;
}

/// Returns memory for all pixels of the current operation's surface.
void* Player::Scratch() {
  const VuRect bounds = surfaces_.at(object_).impl->GetBounds();
  scratch_.resize(size_t{4} * static_cast<size_t>(bounds.width) *
                  static_cast<size_t>(bounds.height));
  return scratch_.data();
}

/// Converts a value of the trace to an argument of the operation.
template <class W>
decltype(auto) Player::ToArgument(Value<W>& value) {
  if constexpr (std::is_same_v<W, Source>) {
    return SurfaceOf(value);
  } else if constexpr (std::is_same_v<W, Mask>) {
    return value == Id::None ? nullptr : SurfaceOf(value);
  } else if constexpr (std::is_same_v<W, Font>) {
    return static_cast<VuFontImpl*>(FontOf(value));
  } else if constexpr (std::is_same_v<W, File>) {
    return PathOf(value);
  } else if constexpr (std::is_same_v<W, Data>) {
    const std::vector<uint8_t>* const bytes = BytesOf(value);
    dataSize_ = bytes ? bytes->size() : 0;
    return static_cast<const void*>(bytes ? bytes->data() : nullptr);
  } else if constexpr (std::is_same_v<W, Size>) {
    if (value > dataSize_ && !isSkipped_) Fail("more bytes than the content has");
    return (value);
  } else if constexpr (std::is_same_v<W, Into>) {
    return Scratch();
  } else if constexpr (std::is_same_v<W, Stream>) {
    return (nowhere_);
  } else if constexpr (std::is_same_v<W, Layers>) {
    return static_cast<const LayerDescription*>(value.data());
  } else if constexpr (std::is_same_v<W, Filled>) {
    return static_cast<LayerDescription*>(nullptr);
  } else if constexpr (requires { value.points; }) {
    return value.isThere ? value.points.data() : nullptr;
  } else {
    return (value);
  }
}

// --- Operations -------------------------------------------------------------------------------

template <class Impl>
bool Player::Keep(Impl* made, const CreatedValue& recorded) {
  if (!made) return Fail("the backend makes no such surface");
  VuBitmapImpl* const impl = made;
  surfaces_.insert_or_assign(
      recorded.id, Surface{object_, impl, recorded.format, std::make_unique<VuBitmap>(impl)});
  return true;
}

/// Makes a screen of the recorded size, even if the program left the size to the display.
VuScreenImpl* Player::MakeScreen(VuGraphicsImpl& graphics, VuScreenDescription asked,
                                 const CreatedValue& recorded) {
  asked.width = recorded.width;
  asked.height = recorded.height;
  asked.format = recorded.format;
  return graphics.CreateScreen(asked);
}

template <class Object, class Result, class... W, class Call>
bool Player::PlayOn(Object* object, Decoder& fields, Result (*)(W...), const Call& call) {
  std::tuple<Value<W>...> values{};
  std::apply([&](auto&... value) { (Transfer(fields, value), ...); }, values);
  Value<Result> recorded{};
  Transfer(fields, recorded);
  if (!object) return problem_.empty();
  return std::apply(
      [&](auto&... value) {
        std::tuple<decltype(ToArgument<W>(value))...> arguments{ToArgument<W>(value)...};
        if (!problem_.empty() || isSkipped_) return problem_.empty();
        const auto run = [&](auto&&... argument) { return call(*object, argument...); };
        if constexpr (std::is_same_v<Value<Result>, CreatedValue>) {
          if (recorded.id == Id::None) return true;
          if constexpr (std::is_same_v<Result, NewBitmap>)
            return Keep(std::apply(run, arguments), recorded);
          else if constexpr (std::is_same_v<std::tuple<W...>, std::tuple<bool>>)
            return Keep(MakeScreen(*object, {0, 0, 0, uint8_t(1 + std::get<0>(values)), {}, false},
                                   recorded),
                        recorded);
          else
            return Keep(MakeScreen(*object, std::get<0>(values), recorded), recorded);
        } else {
          std::apply(run, arguments);
          return true;
        }
      },
      values);
}

bool Player::PlayOperation(Operation operation, Decoder& fields) {
  Transfer(fields, object_);
  const auto find = [&](const auto& objects) {
    const auto found = objects.find(object_);
    if (found != objects.end()) return found->second.get();
    Fail("there is no object " + std::to_string(static_cast<uint32_t>(object_)));
    return decltype(found->second.get()){};
  };
  switch (operation) {
#define ZIRK_TRACE_PLAY(object, name, method, result, parameters)             \
  case Operation::name:                                                       \
    return PlayOn(object, fields, static_cast<result(*) parameters>(nullptr), \
                  [](auto& on, auto&&... with) { return on.method(with...); });
#define X(number, name, method, result, isConst, count, parameters) \
  ZIRK_TRACE_PLAY(find(contexts_), name, method, result, parameters)
    ZIRK_TRACE_CONTEXT_OPERATIONS(X)
#undef X
#define X(number, name, method, result, isConst, count, parameters) \
  ZIRK_TRACE_PLAY(SurfaceOf(object_), name, method, result, parameters)
    ZIRK_TRACE_SURFACE_OPERATIONS(X)
    ZIRK_TRACE_WATCHED_OPERATIONS(X)
#undef X
#define X(number, name, method, result, isConst, count, parameters) \
  ZIRK_TRACE_PLAY(ScreenOf(object_), name, method, result, parameters)
    ZIRK_TRACE_SCREEN_OPERATIONS(X)
#undef X
#define X(number, name, method, result, isConst, count, parameters) \
  ZIRK_TRACE_PLAY(find(compositors_), name, method, result, parameters)
    ZIRK_TRACE_COMPOSITOR_OPERATIONS(X)
#undef X
#undef ZIRK_TRACE_PLAY
    default:
      return Fail("unknown");
  }
}

VuScreenImpl* Player::ScreenOf(Id id) {
  auto* const screen = dynamic_cast<VuScreenImpl*>(SurfaceOf(id));
  if (!screen) Fail("the surface is no screen");
  return screen;
}

bool Player::Play(const Record& record) {
  problem_.clear();
  isSkipped_ = false;
  Decoder fields(record.fields);
  const bool isDone = HasObject(record.operation) ? PlayOperation(record.operation, fields)
                                                  : PlayEvent(record.operation, fields);
  openFile_.reset();
  return isDone;
}

void Player::Finish() {
  for (const auto& [id, surface] : surfaces_) surface.impl->Finish();
}

VuBitmap* Player::Find(Id surface) {
  const auto found = surfaces_.find(surface);
  return found == surfaces_.end() ? nullptr : found->second.bitmap.get();
}

const VuFontAtlas* Player::FindFont(Id font) const {
  const auto found = fonts_.find(font);
  return found == fonts_.end() ? nullptr : found->second.impl.get();
}

// --- Events -----------------------------------------------------------------------------------

bool Player::PlayEvent(Operation operation, Decoder& fields) {
  const auto play = [&]<class... W>(auto&& call, void (*)(W...)) {
    std::tuple<Value<W>...> values{};
    std::apply([&](auto&... value) { (Transfer(fields, value), ...); }, values);
    return std::apply([&](auto&... value) { return call(value...); }, values);
  };
  switch (operation) {
#define X(number, name, parameters)                                         \
  case Operation::name:                                                     \
    return play([&](auto&... value) { return Do##name(fields, value...); }, \
                static_cast<void(*) parameters>(nullptr));
    ZIRK_TRACE_EVENTS(X)
#undef X
    default:
      return Fail("unknown");
  }
}

bool Player::DoContent(Decoder& fields, Id id) {
  contents_.Add(id, fields.Rest());
  return true;
}

bool Player::DoMakeFont(Decoder&, Id id, Id content, int faceIndex, int pixelSize, bool bold,
                        bool italic) {
  PlayedFont font;
  font.file = contents_.FileOf(content);
  font.faceIndex = faceIndex;
  font.pixelSize = pixelSize;
  font.bold = bold;
  font.italic = italic;
  Open(font);
  fonts_.insert_or_assign(id, std::move(font));
  return true;
}

bool Player::DoStyleFont(Decoder&, Id id, VuFont::OutlineType type, int thickness, unsigned glyph,
                         Id fallback, int faceIndex, int pixelSize) {
  const auto found = fonts_.find(id);
  if (found == fonts_.end()) return Fail("there is no such font");
  PlayedFont& font = found->second;
  const std::shared_ptr<const MemoryFile> file = contents_.FileOf(fallback);
  const bool hasOther = file != font.fallbackFile || faceIndex != font.fallbackFaceIndex ||
                        pixelSize != font.fallbackPixelSize;
  font.outlineType = type;
  font.outlineThickness = thickness;
  font.fallbackGlyph = glyph;
  font.fallbackFile = file;
  font.fallbackFaceIndex = faceIndex;
  font.fallbackPixelSize = pixelSize;
  if (font.impl) Apply(font, hasOther);
  return true;
}

void Player::Open(PlayedFont& font) {
  font.impl = std::make_unique<VuFontAtlas>(font.file ? font.file->Path().c_str() : "",
                                            font.faceIndex, font.pixelSize, font.bold, font.italic);
  Apply(font, font.fallbackFile != nullptr);
}

/// Applies the style in the trace to a font. A new fallback font makes the font drop its glyphs.
void Player::Apply(const PlayedFont& font, bool hasOtherFallback) {
  constexpr float kUnits = 64;
  font.impl->SetOutlineType(font.outlineType);
  font.impl->SetOutlineThickness(static_cast<float>(font.outlineThickness) / kUnits);
  font.impl->SetFallbackGlyph(font.fallbackGlyph);
  if (!hasOtherFallback) return;
  std::unique_ptr<VuFontAtlas> fallback;
  if (font.fallbackFile)
    fallback =
        std::make_unique<VuFontAtlas>(font.fallbackFile->Path().c_str(), font.fallbackFaceIndex,
                                      font.fallbackPixelSize, false, false);
  font.impl->SetFallbackFont(fallback.get());
}

VuFontAtlas* Player::FontOf(Id id) {
  const auto found = fonts_.find(id);
  if (found == fonts_.end()) {
    Fail("there is no font " + std::to_string(static_cast<uint32_t>(id)));
    return nullptr;
  }
  PlayedFont& font = found->second;
  if (!font.impl) Open(font);
  return font.impl.get();
}

bool Player::DoOpenContext(Decoder&, Id id, const char* file, bool flag) {
  std::string name = backend_;
  for (const BackendRecord& record : kBackendTable)
    if (name.empty() && record.IsGraphics() && file && std::string(record.dso) == file)
      name = record.name;
  if (name.empty()) return Fail("its backend is not the library's");
  if (contexts_.count(id) > 0) return Fail("the context is already open");
  auto* const made = static_cast<VuGraphicsImpl*>(
      GraphicsImplLoader::GetInstance()->CreateImplInstance(name, flag));
  if (!made) return Fail(name + " does not open here");
  contexts_[id].reset(made);
  opened_ = name;
  return true;
}

/// Only OpenGLES2 has layers. On other backends, screens are drawn but not composed.
bool Player::DoOpenCompositor(Decoder&, Id id, const char*, bool flag) {
  compositors_[id].reset();
  if (opened_ != BackendName(BackendType::OpenGLES2)) return true;
  compositors_[id].reset(static_cast<VuCompositorImpl*>(
      GraphicsImplLoader::GetInstance()->CreateImplInstance("GLCompositor", flag)));
  return true;
}

bool Player::DoClose(Decoder&, Id id) {
  if (surfaces_.erase(id) + compositors_.erase(id) > 0) return true;
  const auto context = contexts_.find(id);
  if (context == contexts_.end()) return Fail("there is no such object");
  // A context makes the atlases of fonts. Delete the fonts and the context's surfaces before it.
  for (auto& [fontId, font] : fonts_) font.impl.reset();
  std::erase_if(surfaces_, [&](const auto& entry) { return entry.second.context == id; });
  contexts_.erase(context);
  return true;
}

bool Player::DoSetPixels(Decoder& fields, Id surface, VuRect part, Id content, unsigned, bool) {
  return DoPixelsWritten(fields, surface, part, content);
}

bool Player::DoPixelsWritten(Decoder&, Id id, VuRect part, Id content) {
  if (!SurfaceOf(id)) return false;
  const std::vector<uint8_t>* const bytes = BytesOf(content);
  if (!bytes) return problem_.empty();
  const Surface& surface = surfaces_.at(id);
  const VuBitmapInfo info = surface.impl->GetInfo();
  const uint32_t pixel = BytesPerPixel(surface.recordedFormat);
  const uint64_t row = uint64_t{pixel} * static_cast<uint32_t>(part.width);
  const bool isSound = part.width > 0 && part.height > 0 && part.width <= info.width &&
                       row * static_cast<uint32_t>(part.height) <= bytes->size();
  if (!isSound) return Fail("fewer pixels than the part has");
  const auto pitch = static_cast<unsigned>(row);
  if (info.format == surface.recordedFormat) {
    surface.impl->SetPixels(part, bytes->data(), pitch);
    return true;
  }
  // A screen's format may differ from the recorded one.
  const std::unique_ptr<VuBitmapImpl> between(
      contexts_.at(surface.context)->CreateBitmap(part.width, part.height, surface.recordedFormat));
  if (!between) return Fail("the backend makes no bitmap of this format");
  between->SetPixels({0, 0, part.width, part.height}, bytes->data(), pitch);
  surface.impl->CopyPixels({part.x, part.y}, between.get(), {0, 0, part.width, part.height});
  return true;
}

}  // namespace ZIRK::trace
