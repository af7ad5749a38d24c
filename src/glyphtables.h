#pragma once

#include <zirk/glyph.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>

#include "lockfreehashtable.h"

namespace ZIRK {

/// Addresses of faces differ in these bits.
inline uintptr_t FaceWord(FT_Face face) {
  return reinterpret_cast<uintptr_t>(face) >> 4;
}

/// A glyph as the font keeps it. Only `glyph` is read without the font's first mutex.
struct CachedGlyph {
  /// `inAtlas` is also read without the lock. The release/acquire pair guarantees that a reader
  /// that sees it set also sees the glyph's position.
  bool IsInAtlas() const { return __atomic_load_n(&glyph.inAtlas, __ATOMIC_ACQUIRE); }
  void SetInAtlas(bool inAtlas) { __atomic_store_n(&glyph.inAtlas, inAtlas, __ATOMIC_RELEASE); }
  /// Whether loading the glyph again could place it in an atlas.
  bool IsWorthLoading() const { return !isGivenUp && !IsInAtlas(); }

  Glyph glyph = {};
  bool isTooLarge = false;  ///< For any atlas. Known once the glyph is loaded.
  bool isGivenUp = false;   ///< It failed to load, or had to be placed and is too large.
  // Each time that the atlas is emptied a new filling begins. Fillings are counted from 1.
  uint32_t placedIn = 0;   ///< The latest filling that had room for the glyph, if any.
  uint32_t leftOutOf = 0;  ///< The latest one that was full when it was to be placed, if any.
};

/// The glyph that a code point has been resolved to.
struct ResolvedChar {
  struct Key {
    uint32_t code;
    bool operator==(const Key& other) const { return code == other.code; }
    uint64_t Hash() const { return code; }
  };
  static Key KeyOf(const ResolvedChar& entry) { return {entry.code}; }

  /// The glyph of the outline that was looked up last; null at first. Any thread may call these two
  /// functions, and nothing else accesses the pointer.
  const CachedGlyph* Recent() const { return __atomic_load_n(&recent, __ATOMIC_ACQUIRE); }
  void Remember(const CachedGlyph* glyph) { __atomic_store_n(&recent, glyph, __ATOMIC_RELEASE); }

  uint32_t code;
  uint32_t index;
  FT_Face face;
  const CachedGlyph* recent = nullptr;
};

struct GlyphTraits {
  struct Key {
    Key(FT_Face face_, uint32_t index_, int outlineType_, int outlineThickness_)
        : face(face_),
          index(index_),
          outlineType(outlineType_),
          outlineThickness(outlineType_ == 0 ? 0 : outlineThickness_) {}
    bool operator==(const Key& other) const {
      return index == other.index && face == other.face && outlineType == other.outlineType &&
             outlineThickness == other.outlineThickness;
    }
    uint64_t Hash() const {
      const auto outline =
          static_cast<uint32_t>(outlineThickness) << 3 ^ static_cast<uint32_t>(outlineType);
      return (uint64_t(outline) << 32) + FaceWord(face) + index;
    }

    FT_Face face;
    uint32_t index;
    int outlineType;
    int outlineThickness;  ///< 0 for filled glyphs, whatever the font's setting.
  };
  static Key KeyOf(const CachedGlyph& cached) {
    const Glyph& glyph = cached.glyph;
    return {glyph.face, glyph.index, glyph.outlineType, glyph.outlineThickness};
  }
};

/// The kerning between two glyphs of a face, as FreeType returns it.
struct KerningPair {
  struct Key {
    FT_Face face;
    uint32_t left;
    uint32_t right;
    bool operator==(const Key& other) const {
      return left == other.left && right == other.right && face == other.face;
    }
    uint64_t Hash() const { return (uint64_t(left) << 32 ^ FaceWord(face)) + right; }
  };
  static const Key& KeyOf(const KerningPair& entry) { return entry.key; }

  Key key;
  FT_Vector kerning;
};

/// The number of an outline, by which advances with different outlines are distinguished.
struct NumberedOutline {
  struct Key {
    int type;
    int thickness;
    bool operator==(const Key& other) const {
      return type == other.type && thickness == other.thickness;
    }
    uint64_t Hash() const {
      return uint64_t(static_cast<uint32_t>(type)) << 32 | static_cast<uint32_t>(thickness);
    }
  };
  static const Key& KeyOf(const NumberedOutline& entry) { return entry.key; }

  Key key;
  unsigned number;
};

using CharTable = LockFreeHashTable<ResolvedChar, ResolvedChar>;
using GlyphTable = LockFreeHashTable<CachedGlyph, GlyphTraits>;
using KerningTable = LockFreeHashTable<KerningPair, KerningPair>;
using OutlineTable = LockFreeHashTable<NumberedOutline, NumberedOutline>;

}  // namespace ZIRK
