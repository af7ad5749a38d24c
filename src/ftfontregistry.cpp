#include <zirk/ftfontregistry.h>
#include <zirk/impl/log.h>
#include <zirk/vufont.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_PARAMETER_TAGS_H

#include <memory>
#include <stdexcept>
#include <utility>

#include "fontfile.h"

namespace ZIRK {

namespace {

struct FaceDone {
  void operator()(FT_Face face) const { FT_Done_Face(face); }
};
using FaceHandle = std::unique_ptr<FT_FaceRec_, FaceDone>;

FT_Error OpenFirstFace(FT_Library library, const char* path, FaceHandle& face) {
  // Use the older family names, which have only the styles regular, bold and italic.
  FT_Parameter parameters[] = {{FT_PARAM_TAG_IGNORE_PREFERRED_SUBFAMILY, nullptr},
                               {FT_PARAM_TAG_IGNORE_PREFERRED_FAMILY, nullptr}};
  if (IsPipe(path)) return FT_Err_Cannot_Open_Resource;
  FT_Open_Args args = {};
  args.flags = FT_OPEN_PATHNAME | FT_OPEN_PARAMS;
  args.pathname = const_cast<char*>(path);
  args.num_params = 2;
  args.params = parameters;
  FT_Face opened = nullptr;
  const FT_Error error = FT_Open_Face(library, &args, 0, &opened);
  if (!error) face.reset(opened);
  return error;
}

}  // namespace

FTFontRegistry::FTFontRegistry(VuFontRegistry::FontFactory factory) : factory_(factory) {
  const FT_Error error = FT_Init_FreeType(&library_);
  if (!error) return;
  library_ = nullptr;
  ZIRK_LOG_ERROR("failed to initialize the freetype library: %i", error);
}

FTFontRegistry::~FTFontRegistry() {
  if (library_) FT_Done_FreeType(library_);
}

bool FTFontRegistry::Register(const char* path) {
  const std::lock_guard lock(mutex_);
  if (!path) throw std::logic_error("FTFontRegistry: null path");
  ZIRK_LOG_INFO("FTFontRegistry: inspecting file: %s", path);
  if (!Inspect(path)) {
    ZIRK_LOG_ERROR("FTFontRegistry: Corrupt or invalid font file: %s", path);
    return false;
  }
  ZIRK_LOG_INFO("done inspecting file: %s", path);
  ZIRK_LOG_INFO("FTFontRegistry: Added font %s", path);
  return true;
}

/// Adds a record of the file's first face. False after an error line.
bool FTFontRegistry::Inspect(const char* path) {
  if (!library_) {
    ZIRK_LOG_ERROR("ft library is null");
    return false;
  }
  FaceHandle face;
  if (const FT_Error error = OpenFirstFace(library_, path, face)) {
    ZIRK_LOG_ERROR("FTFontRegistry: error #%d opening font", error);
    return false;
  }
  Record record;
  record.path = path;
  record.faceIndex = 0;
  record.family = NameOrEmpty(face->family_name);
  record.style = NameOrEmpty(face->style_name);
  record.bold = (face->style_flags & FT_STYLE_FLAG_BOLD) != 0;
  record.italic = (face->style_flags & FT_STYLE_FLAG_ITALIC) != 0;
  ZIRK_LOG_INFO("face: (%i,%s,%s,italic:%i,bold:%i)", record.faceIndex, record.family.c_str(),
                record.style.c_str(), record.italic, record.bold);
  ZIRK_LOG_INFO("asc:%i, desc:%i, height:%i, bbox(%li,%li,%li,%li)", face->ascender,
                face->descender, face->height, face->bbox.xMin, face->bbox.xMax, face->bbox.yMin,
                face->bbox.yMax);
  records_.push_back(std::move(record));
  return true;
}

void FTFontRegistry::Unregister(const char* path) {
  const std::lock_guard lock(mutex_);
  if (!path) return;
  records_.remove_if([path](const Record& record) { return record.path == path; });
}

/// The first of the best records of the family, or an empty one.
FTFontRegistry::Record FTFontRegistry::BestMatch(const std::string& family, bool bold,
                                                 bool italic) const {
  const Record* best = nullptr;
  int bestScore = 0;
  for (const Record& record : records_) {
    if (record.family != family) continue;
    const int score = (record.bold == bold ? 2 : 1) + (record.italic == italic ? 1 : 0);
    if (score <= bestScore) continue;
    bestScore = score;
    best = &record;
  }
  return best ? *best : Record();
}

VuFont* FTFontRegistry::GetFont(const char* family, int pixelSize, bool bold, bool italic) {
  const std::lock_guard lock(mutex_);
  if (!family) throw std::logic_error("FTFontRegistry: null family");
  const Record best = BestMatch(family, bold, italic);
  ZIRK_LOG_INFO("FTFontRegistry: found best match (%i,%s,%s,italic:%i,bold:%i)", best.faceIndex,
                best.family.c_str(), best.style.c_str(), best.italic, best.bold);
  if (best.path.empty()) {
    ZIRK_LOG_ERROR("FTFontRegistry: Cannot find font family <%s> bold %d italic %d", family, bold,
                   italic);
    return nullptr;
  }
  if (factory_) return factory_(best.path.c_str(), best.faceIndex, pixelSize);
  return VuFont::CreateFontEx(best.path.c_str(), best.faceIndex, pixelSize, bold, italic);
}

}  // namespace ZIRK
