#include <zirk/kit/machinefonts.h>

#include <memory>
#include <new>

#include "error.h"

#ifdef ZIRK_HAVE_FONTCONFIG
#include <dlfcn.h>
#include <fontconfig/fontconfig.h>
#endif

namespace ZIRK::kit {

#ifdef ZIRK_HAVE_FONTCONFIG

namespace {

#define ZIRK_FONTCONFIG_FUNCTIONS(F) \
  F(FcPatternCreate)                 \
  F(FcPatternDestroy)                \
  F(FcPatternAddString)              \
  F(FcPatternAddInteger)             \
  F(FcPatternAddBool)                \
  F(FcPatternGetString)              \
  F(FcPatternGetInteger)             \
  F(FcConfigSubstitute)              \
  F(FcDefaultSubstitute)             \
  F(FcFontMatch)

/// The functions of fontconfig. They are loaded at run time, since it may not be installed.
struct Fontconfig {
#define ZIRK_DECLARE(name) decltype(&::name) name = nullptr;
  ZIRK_FONTCONFIG_FUNCTIONS(ZIRK_DECLARE)
#undef ZIRK_DECLARE
  bool isComplete = true;

  Fontconfig() {
    // The library stays open: it caches its list of fonts.
    void* const library = dlopen("libfontconfig.so.1", RTLD_LAZY | RTLD_LOCAL);
#define ZIRK_LOAD(name)                                                                  \
  name = library ? reinterpret_cast<decltype(&::name)>(dlsym(library, #name)) : nullptr; \
  isComplete = isComplete && name;
    ZIRK_FONTCONFIG_FUNCTIONS(ZIRK_LOAD)
#undef ZIRK_LOAD
  }
};

std::optional<FontFile> Find(const Fontconfig& fc, const std::string& family, bool bold,
                             bool italic) {
  const auto destroy = [&fc](FcPattern* pattern) { fc.FcPatternDestroy(pattern); };
  using Pattern = std::unique_ptr<FcPattern, decltype(destroy)>;
  const Pattern wanted(fc.FcPatternCreate(), destroy);
  if (!wanted) throw std::bad_alloc();
  const auto* const name = reinterpret_cast<const FcChar8*>(family.c_str());
  if (!fc.FcPatternAddString(wanted.get(), FC_FAMILY, name) ||
      !fc.FcPatternAddInteger(wanted.get(), FC_WEIGHT, bold ? FC_WEIGHT_BOLD : FC_WEIGHT_NORMAL) ||
      !fc.FcPatternAddInteger(wanted.get(), FC_SLANT, italic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN) ||
      !fc.FcPatternAddBool(wanted.get(), FC_SCALABLE, FcTrue) ||
      // Of a variable font, only the named instances have a style.
      !fc.FcPatternAddBool(wanted.get(), FC_VARIABLE, FcFalse) ||
      !fc.FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern))
    throw std::bad_alloc();
  fc.FcDefaultSubstitute(wanted.get());

  FcResult result = FcResultNoMatch;
  const Pattern found(fc.FcFontMatch(nullptr, wanted.get(), &result), destroy);
  FcChar8* path = nullptr;
  FontFile file;
  if (!found || fc.FcPatternGetString(found.get(), FC_FILE, 0, &path) != FcResultMatch ||
      fc.FcPatternGetInteger(found.get(), FC_INDEX, 0, &file.faceIndex) != FcResultMatch)
    return std::nullopt;
  file.path = reinterpret_cast<const char*>(path);
  return file;
}

}  // namespace

std::optional<FontFile> FindFont(std::string_view family, bool bold, bool italic) {
  static const Fontconfig fontconfig;
  if (!fontconfig.isComplete) {
    ZIRK_KIT_ERROR("FindFont: libfontconfig.so.1 does not open");
    return std::nullopt;
  }
  try {
    std::optional<FontFile> file = Find(fontconfig, std::string(family), bold, italic);
    if (!file) ZIRK_KIT_ERROR("FindFont: no font is installed");
    return file;
  } catch (const std::bad_alloc&) {
    ZIRK_KIT_ERROR("FindFont: no memory");
    return std::nullopt;
  }
}

#else

std::optional<FontFile> FindFont(std::string_view, bool, bool) {
  ZIRK_KIT_ERROR("FindFont: the kit was built without fontconfig");
  return std::nullopt;
}

#endif

}  // namespace ZIRK::kit
