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

/// The contents that a trace can name, each with its bytes. The oldest are dropped when the
/// recording dropped them.
class Contents {
 public:
  void Add(Id id, std::span<const uint8_t> bytes);
  /// Null for one that is not there.
  const std::vector<uint8_t>* Find(Id id) const;
  /// The same as a file; empty for one that is not there, and where no file can be made.
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

/// What the first field of a record names: the object that its operation is of, if it is.
Id ObjectOf(const Record& record);

/// Carries out the operations of a trace by a backend. Trusts none of them.
class Player {
 public:
  /// `backend` draws, or each context's own one where that is empty.
  explicit Player(std::string backend) : backend_(std::move(backend)) {}
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  /// Carries out one operation. False where that cannot be: see Problem().
  bool Play(const Record& record);
  const std::string& Problem() const { return problem_; }

  /// Waits until everything is drawn.
  void Finish();
  /// The name of the backend that the latest context opened; empty before.
  const std::string& Backend() const { return opened_; }

  /// The surface of this number; null if there is none.
  VuBitmap* Find(Id surface);
  /// The font of this number, null if nothing was drawn with it. It may go with any context.
  const VuFontAtlas* FindFont(Id font) const;

 private:
  struct Surface {
    Id context = Id::None;
    VuBitmapImpl* impl = nullptr;
    VuPixelFormat recordedFormat{};
    std::unique_ptr<VuBitmap> bitmap;  ///< Owns the implementation.
  };
  /// A trace does not delete fonts, but what they keep of a context is deleted with it.
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

  // Events, each by its name.
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
  Id object_ = Id::None;    ///< Of the operation that is carried out.
  size_t dataSize_ = 0;     ///< Of the content among the arguments.
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
