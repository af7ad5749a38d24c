#pragma once

#include <deque>
#include <map>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "fields.h"
#include "memoryfile.h"
#include "tracefile.h"

namespace ZIRK::trace {

/// The contents that a trace can name, with their bytes. The oldest are dropped when the recorder
/// dropped them.
class Contents {
 public:
  void Add(Id id, std::span<const uint8_t> bytes);
  /// Returns null if there is no such content.
  const std::vector<uint8_t>* Find(Id id) const;
  /// Returns the content as a file, or null if there is no such content or the file cannot be made.
  std::shared_ptr<const MemoryFile> FileOf(Id id);

 private:
  struct Content {
    std::vector<uint8_t> bytes;
    std::weak_ptr<const MemoryFile> file;
  };
  std::map<Id, Content> contents_;
  std::deque<Id> oldest_;
  size_t size_ = 0;
};

/// Returns the Id in the first field of a record, which is that of the operation's object if it has
/// one.
Id ObjectOf(const Record& record);

/// A player of a trace's operations on a backend. It does not trust the trace.
class Player {
 public:
  /// Plays on `backend`, or on each context's own backend if the name is empty.
  explicit Player(std::string backend) : backend_(std::move(backend)) {}
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  /// Plays one operation. Returns false on failure; see Problem().
  bool Play(const Record& record);
  const std::string& Problem() const { return problem_; }

  /// Waits until all drawing is complete.
  void Finish();
  /// Returns the name of the backend of the context opened last, or an empty name before that.
  const std::string& Backend() const { return opened_; }

  /// Returns the surface with this number, or null if there is none.
  VuBitmap* Find(Id surface);
  /// Returns the font with this number, or null if nothing was drawn with it. Closing any context
  /// may delete it.
  const VuFontAtlas* FindFont(Id font) const;

 private:
  struct Surface {
    Id context = Id::None;
    VuBitmapImpl* impl = nullptr;
    VuPixelFormat recordedFormat{};
    std::unique_ptr<VuBitmap> bitmap;  ///< Owns the implementation.
  };
  /// A trace does not delete fonts. What they keep of a context is deleted with the context.
  struct PlayedFont {
    std::shared_ptr<const MemoryFile> file, fallbackFile;
    int faceIndex = 0, pixelSize = 0;
    bool bold = false, italic = false;
    VuFont::OutlineType outlineType = VuFont::OutlineType::None;
    int outlineThickness = 0;
    unsigned fallbackGlyph = 0;
    int fallbackFaceIndex = 0, fallbackPixelSize = 0;
    std::unique_ptr<VuFontAtlas> impl;
  };

  bool Fail(const std::string& problem);

  // Operations of an object.
  bool PlayOperation(Operation operation, Decoder& fields);
  template <class Object, class Result, class... W, class Call>
  bool PlayOn(Object* object, Decoder& fields, Result (*)(W...), const Call& call);
  template <class W>
  decltype(auto) ToArgument(Value<W>& value);
  template <class Impl>
  bool Keep(Impl* made, const CreatedValue& recorded);
  VuScreenImpl* MakeScreen(VuGraphicsImpl& graphics, VuScreenDescription asked,
                           const CreatedValue& recorded);
  VuBitmapImpl* SurfaceOf(Id id);
  VuScreenImpl* ScreenOf(Id id);
  VuFontAtlas* FontOf(Id id);
  const std::vector<uint8_t>* BytesOf(Id id);
  const char* PathOf(const FileValue& value);
  void* Scratch();

  // One function for each event.
  bool PlayEvent(Operation operation, Decoder& fields);
  bool DoContent(Decoder& fields, Id id);
  bool DoMakeFont(Decoder&, Id id, Id content, int faceIndex, int pixelSize, bool bold,
                  bool italic);
  bool DoStyleFont(Decoder&, Id id, VuFont::OutlineType type, int thickness, unsigned glyph,
                   Id fallback, int faceIndex, int pixelSize);
  bool DoOpenContext(Decoder&, Id id, const char* file, bool flag);
  bool DoOpenCompositor(Decoder&, Id id, const char* file, bool flag);
  bool DoClose(Decoder&, Id id);
  bool DoSetPixels(Decoder&, Id surface, VuRect part, Id content, unsigned pitch, bool isDone);
  bool DoPixelsWritten(Decoder&, Id surface, VuRect part, Id content);
  void Open(PlayedFont& font);
  void Apply(const PlayedFont& font, bool hasOtherFallback);

  const std::string backend_;
  std::string opened_;
  std::string problem_;
  bool isSkipped_ = false;  ///< An argument was not recorded.
  Id object_ = Id::None;    ///< The object of the current operation.
  size_t dataSize_ = 0;     ///< The size of the content among the arguments.
  std::vector<uint8_t> scratch_;
  std::ostream nowhere_{nullptr};
  std::shared_ptr<const MemoryFile> openFile_;  ///< During the operation.

  Contents contents_;
  std::map<Id, std::unique_ptr<VuGraphicsImpl>> contexts_;
  std::map<Id, std::unique_ptr<VuCompositorImpl>> compositors_;
  std::map<Id, PlayedFont> fonts_;
  std::map<Id, Surface> surfaces_;
};

}  // namespace ZIRK::trace
