#include <zirk/impl/log.h>
#include <zirk/utf8.h>
#include <zirk/vufontatlas.h>
#include <zirk/vutextureatlasimpl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "advancecache.h"
#include "floattoint.h"
#include "fontfile.h"
#include "freetypeerror.h"
#include "glyphatlas.h"
#include "glyphimage.h"
#include "glyphtables.h"
#include "nomemory.h"
#include "texturelimit.h"

namespace ZIRK {

namespace {

/// The thickness of no outline does not matter.
bool HasOutline(const Glyph& glyph, int type, int thickness) {
  return glyph.outlineType == type && (type == 0 || glyph.outlineThickness == thickness);
}

/// Other threads may read a glyph while it is loaded again, so unchanged fields are not written.
void StoreIfChanged(int32_t& field, int64_t value) {
  if (field != value) field = static_cast<int32_t>(value);
}

/// The advance is read without the lock while a glyph is measured. It is 0 until the glyph loads
/// and does not change after that. It is one aligned word, read and written atomically, so no
/// reader sees half of it.
int Advance(const Glyph& glyph) {
  return __atomic_load_n(&glyph.advance, __ATOMIC_RELAXED);
}
void SetAdvance(Glyph& glyph, FT_Pos advance) {
  __atomic_store_n(&glyph.advance, static_cast<int32_t>(advance >> 6), __ATOMIC_RELAXED);
}

/// Design units in pixels, rounded half up where they are positive: the divisions go toward zero.
int ToPixels(int designUnits, int pixelSize, int unitsPerEm) {
  // A font that has only bitmaps has no design units.
  if (unitsPerEm == 0) return 0;
  return (WrappingProduct(WrappingProduct(pixelSize, designUnits), 2) / unitsPerEm + 1) / 2;
}

/// Reads the line's next code point; false at its end. Bytes that are not UTF-8 are skipped.
bool ReadChar(const char* function, const char* text, const char*& next, uint32_t& code) {
  if (!text) return false;
  for (;; ++next) {
    const auto byte = static_cast<unsigned char>(*next);
    if (byte == 0) return false;
    if (byte < 0x80) {
      code = byte;
      ++next;
      return true;
    }
    int length = 0;
    code = GetUtf8Char(next, &length);
    next += length;
    if (length > 0) return true;
    ZIRK_LOG_INFO("%s: encountered invalid UTF-8 encoding at 0x%x in the string '%s'", function,
                  byte, text);
  }
}

}  // namespace

// The definition of the constant: programs and plug-ins may take its address.
const int VuFontAtlas::margin_;

struct VuFontAtlas::State {
  State(std::string fileName_, int faceIndex_, int pixelSize_, bool bold_, bool italic_)
      : faceIndex(faceIndex_),
        fileName(std::move(fileName_)),
        pixelSize(pixelSize_),
        bold(bold_),
        italic(italic_) {}
  ~State();
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  void ReadMetrics(const char* source);
  bool InitLibrary();
  int FinishFace(const char* function, const char* source, FT_Error opened, int size,
                 FT_Face* face) const;
  std::pair<FT_Face, uint32_t> Resolve(uint32_t code, uint32_t fallbackGlyph) const;
  unsigned OutlineNumber(int type, int thickness);
  bool Render(GlyphImage& image, CachedGlyph& cached, bool toDraw) const;
  bool Load(CachedGlyph& cached, bool render);
  // Separate from the search for known kerning, the usual case, so that the search needs no stack.
  [[gnu::noinline]] FT_Vector ReadKerning(const KerningPair::Key& key);

  FT_Library freeType = nullptr;
  FT_Face face = nullptr;
  const int faceIndex;
  const std::string fileName;
  std::unique_ptr<uint8_t[]> buffer;  ///< A font given in memory.
  unsigned bufferSize = 0;
  const int pixelSize;

  int lineHeight = 0;
  int ascender = 0;
  int descender = 0;  ///< Negative below the baseline.
  int maxAdvance = 0;
  int underlinePosition = 0;
  int underlineThickness = 0;

  const bool bold;
  const bool italic;
  FT_Face fallbackFace = nullptr;
  std::string fallbackFile;
  int fallbackFaceIndex = 0;
  int fallbackPixelSize = 0;

  // The tables and the cache are searched without a lock. For a missing entry the search is
  // repeated under a lock, and the entry added.
  CharTable chars;
  GlyphTable glyphs;
  KerningTable kerning;
  AdvanceCache advances;
  OutlineTable outlines;

  GlyphAtlas atlas{glyphs};

  std::mutex glyphMutex;  ///< Guards characters, glyphs, outlines and atlas, and all loading.
  std::mutex kerningMutex;
};

VuFontAtlas::State::~State() {
  if (fallbackFace) FT_Done_Face(fallbackFace);
  if (face) FT_Done_Face(face);
  if (freeType) FT_Done_FreeType(freeType);
}

bool VuFontAtlas::State::InitLibrary() {
  const FT_Error error = FT_Init_FreeType(&freeType);
  if (!error) return true;
  freeType = nullptr;
  const FreeTypeError entry(error);
  ZIRK_LOG_ERROR("%s: cannot init FreeType library FT_Error (0x%02x) : %s", "VuFontAtlas",
                 entry.code, entry.message);
  return false;
}

void VuFontAtlas::State::ReadMetrics(const char* source) {
  const FT_Size_Metrics& metrics = face->size->metrics;
  ascender = static_cast<int>(metrics.ascender >> 6);
  descender = static_cast<int>(metrics.descender >> 6);
  maxAdvance = static_cast<int>(metrics.max_advance >> 6);
  lineHeight = std::abs(descender) + ascender + 1;
  underlinePosition = ToPixels(face->underline_position, pixelSize, face->units_per_EM);
  underlineThickness = ToPixels(face->underline_thickness, pixelSize, face->units_per_EM);
  ZIRK_LOG_INFO("%s: font %s size %d, ascender %d, descender %d, height %d, maxadvance %d",
                "VuFontAtlas", source, pixelSize, ascender, descender, lineHeight, maxAdvance);
}

VuFontAtlas::VuFontAtlas(const char* path, int faceIndex, int pixelSize, bool bold, bool italic)
    : state_(std::make_unique<State>(path, faceIndex, pixelSize, bold, italic)) {
  if (!state_->InitLibrary()) return;
  NewFace(path, faceIndex, pixelSize, &state_->face);
  if (state_->face) state_->ReadMetrics(path);
}

VuFontAtlas::VuFontAtlas(const unsigned char* data, unsigned int size, int faceIndex, int pixelSize,
                         bool bold, bool italic)
    : state_(std::make_unique<State>(std::string(), faceIndex, pixelSize, bold, italic)) {
  if (!data) {
    ZIRK_LOG_ERROR("%s: Failed to create font buffer", "VuFontAtlas");
    return;
  }
  state_->buffer.reset(new uint8_t[size]);
  state_->bufferSize = size;
  if (size > 0) std::memcpy(state_->buffer.get(), data, size);
  if (!state_->InitLibrary()) return;
  NewFaceFromMemory(faceIndex, pixelSize, &state_->face);
  if (state_->face) state_->ReadMetrics("[memory]");
}

VuFontAtlas::~VuFontAtlas() = default;

int VuFontAtlas::NewFace(const char* path, int faceIndex, int pixelSize, FT_Face* face) {
  const FT_Error error = IsPipe(path) ? FT_Err_Cannot_Open_Resource
                                      : FT_New_Face(state_->freeType, path, faceIndex, face);
  return state_->FinishFace("NewFace", path, error, pixelSize, face);
}

int VuFontAtlas::NewFaceFromMemory(int faceIndex, int pixelSize, FT_Face* face) {
  const FT_Error error =
      FT_New_Memory_Face(state_->freeType, state_->buffer.get(),
                         static_cast<FT_Long>(state_->bufferSize), faceIndex, face);
  return state_->FinishFace("NewFaceFromMemory", "[memory]", error, pixelSize, face);
}

/// Selects the character map and the size of a face that was opened, or logs why it was not.
int VuFontAtlas::State::FinishFace(const char* function, const char* source, FT_Error opened,
                                   int size, FT_Face* newFace) const {
  if (!opened && !(*newFace)->size) {
    // A negative index opens a face that only holds the number of faces.
    FT_Done_Face(*newFace);
    opened = FT_Err_Invalid_Argument;
  }
  if (opened) {
    *newFace = nullptr;
    const FreeTypeError entry(opened);
    if (opened == FT_Err_Unknown_File_Format)
      ZIRK_LOG_ERROR("%s: font format is unsupported %s FT_Error (0x%02x) : %s", function, source,
                     opened, "unknown file format");
    else
      ZIRK_LOG_ERROR("%s: error %d creating FT font from file %s FT_Error (0x%02x) : %s", function,
                     opened, source, entry.code, entry.message);
    return opened;
  }
  if (FT_Select_Charmap(*newFace, FT_ENCODING_UNICODE)) {
    ZIRK_LOG_INFO("%s: couldn't select Unicode encoding, falling back to Latin1", function);
    if (const FT_Error error = FT_Select_Charmap(*newFace, FT_ENCODING_ADOBE_LATIN_1)) {
      const FreeTypeError entry(error);
      ZIRK_LOG_ERROR("%s: couldn't fallback to Latin1, error %d FT_Error (0x%02x) : %s", function,
                     error, entry.code, entry.message);
    }
  }
  const FT_Error error = FT_Set_Pixel_Sizes(*newFace, 0, static_cast<FT_UInt>(size));
  if (error) {
    const FreeTypeError entry(error);
    ZIRK_LOG_ERROR(
        "%s: cannot set desired pixel height %d error %d filename %s FT_Error (0x%02x) : %s",
        function, size, error, source, entry.code, entry.message);
  }
  return error;
}

FT_Face VuFontAtlas::GetFontFace() const {
  return state_->face;
}

FontSource VuFontAtlas::GetSource() const {
  const State& s = *state_;
  // Without a buffer it is a path's font, or one of null data.
  const char* const path = s.buffer || s.fileName.empty() ? nullptr : s.fileName.c_str();
  return {path, s.buffer.get(), s.bufferSize, s.faceIndex, s.pixelSize, s.bold, s.italic};
}

FontSource VuFontAtlas::GetFallbackSource() const {
  const State& s = *state_;
  if (!s.fallbackFace) return {};
  return {s.fallbackFile.c_str(), nullptr, 0, s.fallbackFaceIndex, s.fallbackPixelSize};
}

void VuFontAtlas::GetFontMetrics(int& height, int& ascender, int& descender,
                                 int& maxAdvance) const {
  height = state_->lineHeight;
  ascender = state_->ascender;
  descender = state_->descender;
  maxAdvance = state_->maxAdvance;
}

int VuFontAtlas::GetOneLineHeight() const {
  return state_->lineHeight;
}

int VuFontAtlas::GetAscent() const {
  return state_->ascender;
}

int VuFontAtlas::GetDescent() const {
  return std::abs(state_->descender);
}

int VuFontAtlas::GetMaxAdvance() const {
  return state_->maxAdvance;
}

void VuFontAtlas::GetUnderlineMetrics(int& position, int& thickness) const {
  position = state_->underlinePosition;
  thickness = state_->underlineThickness;
}

void VuFontAtlas::SetFallbackFont(const VuFontImpl* font) {
  const auto* const other = dynamic_cast<const VuFontAtlas*>(font);
  ClearGlyphs();
  if (state_->fallbackFace) FT_Done_Face(std::exchange(state_->fallbackFace, nullptr));
  if (!other || !other->state_->face) return;
  const State& theirs = *other->state_;
  state_->fallbackFile = theirs.fileName;
  state_->fallbackFaceIndex = theirs.faceIndex;
  state_->fallbackPixelSize = theirs.pixelSize;
  NewFace(theirs.fileName.c_str(), theirs.faceIndex, theirs.pixelSize, &state_->fallbackFace);
}

/// The face and the index of a code point's glyph, or of its replacement.
std::pair<FT_Face, uint32_t> VuFontAtlas::State::Resolve(uint32_t code,
                                                         uint32_t fallbackGlyph) const {
  if (const FT_UInt index = FT_Get_Char_Index(face, code)) return {face, index};
  if (fallbackFace) {
    if (const FT_UInt index = FT_Get_Char_Index(fallbackFace, code)) {
      ZIRK_LOG_DEBUG("%s: replace with fallback face -- index %d", "AddGlyph",
                     static_cast<int>(index));
      return {fallbackFace, index};
    }
  }
  if (fallbackGlyph == 0) return {face, 0};
  const FT_UInt index = FT_Get_Char_Index(face, fallbackGlyph);
  ZIRK_LOG_DEBUG("%s: replace with fallback code 0x%x index %d", "AddGlyph", fallbackGlyph,
                 static_cast<int>(index));
  return {face, index};
}

void VuFontAtlas::AddGlyph(unsigned int charcode, bool render) const {
  State& s = *state_;
  if (!s.face) return;
  const auto [face, index] = s.Resolve(charcode, fallbackGlyph_);
  const int type = static_cast<int>(outlineType_);
  if (!s.glyphs.Find({face, index, type, outlineThickness_})) {
    CachedGlyph cached;
    Glyph& glyph = cached.glyph;
    glyph.face = face;
    glyph.charcode = charcode;
    glyph.index = index;
    glyph.outlineType = type;
    glyph.outlineThickness = outlineThickness_;
    s.Load(cached, render);
    ZIRK_LOG_DEBUG("%s: inserting glyph %d outline type %d outline thickness %d", "AddGlyph",
                   static_cast<int>(index), type, outlineThickness_);
    s.glyphs.Insert(cached);
  }
  ZIRK_LOG_DEBUG("%s: inserting charcode %d index %d", "AddGlyph", static_cast<int>(charcode),
                 static_cast<int>(index));
  if (!s.chars.Find({charcode})) s.chars.Insert({charcode, index, face});
  ZIRK_LOG_INFO("%s: total chars %d glyphs %d", "AddGlyph", static_cast<int>(s.chars.Size()),
                static_cast<int>(s.glyphs.Size()));
}

const Glyph* VuFontAtlas::GetGlyph(unsigned long charcode, bool render) const {
  return Find(static_cast<uint32_t>(charcode), render, true);
}

/// With `insist`, a glyph is rendered even if the full atlas already left it out.
inline const Glyph* VuFontAtlas::Find(uint32_t code, bool render, bool insist) const {
  State& s = *state_;
  if (!s.face) return nullptr;
  const int type = static_cast<int>(outlineType_);
  if (ResolvedChar* const known = s.chars.Find({code})) {
    const CachedGlyph* cached = known->Recent();
    if (!cached || !HasOutline(cached->glyph, type, outlineThickness_)) {
      cached = s.glyphs.Find({known->face, known->index, type, outlineThickness_});
      known->Remember(cached);
    }
    if (cached && (!render || cached->IsInAtlas())) return &cached->glyph;
  }
  return FindOrLoad(code, render, insist);
}

/// The same as Find(), for a glyph that is missing or not rendered yet.
const Glyph* VuFontAtlas::FindOrLoad(uint32_t code, bool render, bool insist) const {
  State& s = *state_;
  const int type = static_cast<int>(outlineType_);
  const auto find = [&](const ResolvedChar& entry) {
    return s.glyphs.Find({entry.face, entry.index, type, outlineThickness_});
  };
  const std::lock_guard lock(s.glyphMutex);
  const ResolvedChar* entry = s.chars.Find({code});
  if (!entry) {
    AddGlyph(code, render);
    entry = s.chars.Find({code});
  }
  if (!entry) {
    ZIRK_LOG_INFO("%s: charcode 0x%x not found", "GetGlyph", code);
    return nullptr;
  }
  CachedGlyph* cached = find(*entry);
  if (!cached) {
    AddGlyph(code, render);
    cached = find(*entry);
  }
  if (!cached) {
    // Each word is followed by the value of the word before it; the first value is the face.
    ZIRK_LOG_INFO("%s: glyph %d outline type %d outline thickness %d not found", "GetGlyph",
                  static_cast<int>(reinterpret_cast<intptr_t>(entry->face)),
                  static_cast<int>(entry->index), type);
    return nullptr;
  }
  if (render && cached->IsWorthLoading() && (insist || !s.atlas.HasNoRoomFor(*cached)))
    s.Load(*cached, true);
  return &cached->glyph;
}

std::shared_ptr<VuBitmapImpl> VuFontAtlas::PlaceLeftOut(const Glyph& glyph) const {
  State& s = *state_;
  const std::lock_guard lock(s.glyphMutex);
  CachedGlyph* const cached = s.glyphs.Find(GlyphTraits::KeyOf({glyph}));
  if (!cached || !s.atlas.Texture() || !cached->IsWorthLoading()) return nullptr;
  if (s.atlas.HasNoRoomFor(*cached)) {
    if (!s.atlas.PaysToEmpty()) {
      GlyphImage image(s.freeType, GlyphAtlas::kLargestBitmap);
      return s.Render(image, *cached, true) ? s.atlas.PlaceApart(image) : nullptr;
    }
    s.atlas.Reset();
  }
  s.Load(*cached, true);
  return nullptr;
}

void VuFontAtlas::LoadGlyph(Glyph& glyph, bool render) const {
  State& s = *state_;
  CachedGlyph stranger{glyph};
  CachedGlyph* const cached = s.glyphs.Find(GlyphTraits::KeyOf(stranger));
  if (cached && &cached->glyph == &glyph) {
    s.Load(*cached, render);
    return;
  }
  stranger.glyph.advance = 0;
  if (s.Load(stranger, render)) glyph = stranger.glyph;
}

bool VuFontAtlas::State::Render(GlyphImage& image, CachedGlyph& cached, bool toDraw) const {
  const Glyph& glyph = cached.glyph;
  if (!image.Render(glyph, cached.isTooLarge)) {
    cached.isGivenUp = !image.LacksMemory();
    return false;
  }
  if (toDraw && bold && !(glyph.face->style_flags & FT_STYLE_FLAG_BOLD)) image.Embolden(glyph);
  return true;
}

/// Returns false, with the glyph unchanged, if it does not load.
bool VuFontAtlas::State::Load(CachedGlyph& cached, bool render) {
  Glyph& glyph = cached.glyph;
  const int index = static_cast<int>(glyph.index);
  ZIRK_LOG_DEBUG("%s: font %s %d load glyph %d", "LoadGlyph", fileName.c_str(), lineHeight, index);
  GlyphImage image(freeType, GlyphAtlas::kLargestBitmap);
  if (!Render(image, cached, render)) return false;

  cached.isTooLarge = image.IsTooLarge();
  StoreIfChanged(glyph.left, image.Left());
  StoreIfChanged(glyph.width, image.Width());
  StoreIfChanged(glyph.height, image.Height());
  if (Advance(glyph) == 0) SetAdvance(glyph, glyph.face->glyph->advance.x);
  StoreIfChanged(glyph.top, ascender - image.Top());
  atlas.CountHeight(glyph.height);
  ZIRK_LOG_DEBUG("%s: '%c' charcode 0x%x index %d width %d advance %d left %d height %d top %d",
                 "LoadGlyph", static_cast<int>(glyph.charcode), glyph.charcode, index, glyph.width,
                 glyph.advance, glyph.left, glyph.height, glyph.top);
  if (render && atlas.Texture()) atlas.Place(cached, image);
  return true;
}

void VuFontAtlas::ResetGlyphs() const {
  state_->atlas.Reset();
}

void VuFontAtlas::ClearGlyphs() const {
  State& s = *state_;
  {
    const std::lock_guard lock(s.glyphMutex);
    s.chars.Clear();
    s.glyphs.Clear();
    s.advances.Clear();
    s.atlas.Close();
  }
  const std::lock_guard lock(s.kerningMutex);
  s.kerning.Clear();
}

std::shared_ptr<VuTextureAtlasImpl> VuFontAtlas::GetAtlas(VuGraphicsImpl* graphics) const {
  State& s = *state_;
  if (!s.face) return nullptr;
  const std::lock_guard lock(s.glyphMutex);
  if (s.atlas.Texture()) return s.atlas.Texture();
  s.atlas.Open(graphics, s.fileName + ' ' + std::to_string(s.lineHeight));
  for (CachedGlyph& cached : s.glyphs)
    if (cached.IsWorthLoading()) s.Load(cached, true);
  return s.atlas.Texture();
}

FT_Vector VuFontAtlas::GetKerning(const Glyph& left, const Glyph& right) const {
  if (!FT_HAS_KERNING(left.face) || right.face != left.face || right.index == 0) return {0, 0};
  const KerningPair::Key key = {left.face, left.index, right.index};
  if (const KerningPair* const known = state_->kerning.Find(key)) return known->kerning;
  return state_->ReadKerning(key);
}

FT_Vector VuFontAtlas::State::ReadKerning(const KerningPair::Key& key) {
  const std::lock_guard lock(kerningMutex);
  if (const KerningPair* const known = kerning.Find(key)) return known->kerning;
  FT_Vector read = {0, 0};
  FT_Get_Kerning(key.face, key.left, key.right, FT_KERNING_DEFAULT, &read);
  kerning.Insert({key, read});
  return read;
}

const Glyph* VuFontAtlas::NextGlyph(TextCursor& cursor, bool render) const {
  uint32_t code;
  while (ReadChar("NextGlyph", cursor.text, cursor.next, code)) {
    const Glyph* const glyph = Find(code, render, false);
    if (!glyph) continue;
    cursor.pen = cursor.width;
    if (cursor.previous) cursor.pen += GetKerning(*cursor.previous, *glyph).x >> 6;
    cursor.width = cursor.pen + Advance(*glyph);
    cursor.previous = glyph;
    return glyph;
  }
  return nullptr;
}

/// The number of an outline; 0 without one. Outlines for which no number is left share one.
unsigned VuFontAtlas::State::OutlineNumber(int type, int thickness) {
  if (type == 0) return 0;
  const NumberedOutline::Key key = {type, thickness};
  if (const NumberedOutline* const known = outlines.Find(key)) return known->number;

  const std::lock_guard lock(glyphMutex);
  if (const NumberedOutline* const known = outlines.Find(key)) return known->number;
  const auto number = static_cast<unsigned>(outlines.Size()) + 1;
  if (number < AdvanceCache::kOutlines) outlines.Insert({key, number});
  return number;
}

int VuFontAtlas::GetOneLineWidth(const char* text) const {
  if (!state_->face) return 0;
  return UnlessMemoryRunsOut("measuring text", [&] { return Measure(text); });
}

int VuFontAtlas::Measure(const char* text) const {
  State& s = *state_;
  const unsigned outline = s.OutlineNumber(static_cast<int>(outlineType_), outlineThickness_);
  int64_t width = 0;
  uint32_t previous = AdvanceCache::kNone;
  uint32_t code;
  for (const char* next = text; ReadChar("GetOneLineWidth", text, next, code);) {
    std::optional<int> advance = s.advances.Find(previous, code, outline);
    if (!advance) {
      const Glyph* const glyph = GetGlyph(code, false);
      if (!glyph) continue;
      const int glyphAdvance = Advance(*glyph);
      advance = glyphAdvance;
      const Glyph* const before =
          previous == AdvanceCache::kNone ? nullptr : GetGlyph(previous, false);
      if (before) *advance += static_cast<int>(GetKerning(*before, *glyph).x >> 6);
      // A glyph that failed to load has advance 0, which changes if it loads later.
      if (glyphAdvance != 0) s.advances.Store(previous, code, outline, *advance);
    }
    width += *advance;
    previous = code;
  }
  return static_cast<int>(
      std::clamp<int64_t>(width, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

}  // namespace ZIRK
