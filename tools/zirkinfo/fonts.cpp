#include <ft2build.h>
#include <zirk/vufontatlas.h>
#include <zirk/zirk.h>

#include <cstdio>

#include "commands.h"

#include FT_FREETYPE_H

namespace ZIRK::zirkinfo {

namespace {

const char* NameOr(const char* name, const char* otherwise) {
  return name ? name : otherwise;
}

/// Counts the characters, and prints them as ranges if they are to be listed.
void ShowCharacters(FT_Face face, bool areListed) {
  FT_UInt glyph = 0;
  FT_ULong first = FT_Get_First_Char(face, &glyph), last = first;
  int count = 0;
  while (glyph != 0) {
    ++count;
    const FT_ULong next = FT_Get_Next_Char(face, last, &glyph);
    const bool isLastOfRange = glyph == 0 || next != last + 1;
    if (isLastOfRange && areListed) std::printf("range: U+%04lX U+%04lX\n", first, last);
    if (isLastOfRange) first = next;
    last = next;
  }
  std::printf("characters: %d\n", count);
}

void ShowMeasures(const VuFontAtlas& font, int size) {
  int height = 0, ascender = 0, descender = 0, maxAdvance = 0, position = 0, thickness = 0;
  font.GetFontMetrics(height, ascender, descender, maxAdvance);
  font.GetUnderlineMetrics(position, thickness);
  std::printf("size: %d\n", size);
  std::printf("line-height: %d\n", height);
  std::printf("ascender: %d\n", ascender);
  std::printf("descender: %d\n", descender);
  std::printf("max-advance: %d\n", maxAdvance);
  std::printf("underline-position: %d\n", position);
  std::printf("underline-thickness: %d\n", thickness);
}

/// Shows a face. Returns the number of faces in the file; 0 if this one cannot be opened.
long ShowFace(const std::string& file, int index, const CommandLine& line) {
  const VuFontAtlas font(file.c_str(), index, line.size, false, false);
  const FT_Face face = font.GetFontFace();
  if (!face) return 0;
  std::printf("%sfile: %s\n", index == 0 ? "" : "\n", file.c_str());
  std::printf("face: %d\n", index);
  std::printf("family: %s\n", NameOr(face->family_name, "-"));
  std::printf("style: %s\n", NameOr(face->style_name, "-"));
  std::printf("format: %s\n", FT_IS_SCALABLE(face) ? "outlines" : "bitmaps");
  std::printf("kerning: %s\n", FT_HAS_KERNING(face) ? "yes" : "no");
  std::printf("glyphs: %ld\n", face->num_glyphs);
  ShowCharacters(face, line.listsCharacters);
  ShowMeasures(font, line.size);
  return face->num_faces;
}

bool ShowFile(const std::string& file, const CommandLine& line) {
  long count = 1;
  for (int index = 0; index < count; ++index) {
    const long faces = ShowFace(file, index, line);
    if (faces == 0) {
      std::fprintf(stderr, "zirkinfo: %s: face %d cannot be opened\n", file.c_str(), index);
      return false;
    }
    count = faces;
  }
  return true;
}

}  // namespace

int ShowFonts(const CommandLine& line) {
  int status = kDone;
  for (const std::string& file : line.operands) {
    if (&file != &line.operands.front()) std::puts("");
    if (!ShowFile(file, line)) status = kFailed;
  }
  return status;
}

}  // namespace ZIRK::zirkinfo
