#include "opengles2/glfunctions.h"

#include <dlfcn.h>

#include <cstring>
#include <string>

namespace ZIRK::backends {

namespace {

constexpr char kSdlLibrary[] = "libSDL2-2.0.so.0";

/// SDL stays open, since its threads may run until the process ends.
void* SdlLibrary() {
  static void* const library = dlopen(kSdlLibrary, RTLD_LAZY | RTLD_LOCAL);
  return library;
}

}  // namespace

const char* GlFunctions::Load(void* (*find)(const char*)) {
#define ZIRK_GL_LOAD(name, type)                   \
  name = reinterpret_cast<type>(find("gl" #name)); \
  if (!name) return "gl" #name;
  ZIRK_GL_FUNCTIONS(ZIRK_GL_LOAD)
#undef ZIRK_GL_LOAD
  return nullptr;
}

void GlFunctions::LoadExtensions(void* (*find)(const char*)) {
  if (Has("GL_KHR_debug"))
    ObjectLabel = reinterpret_cast<PFNGLOBJECTLABELKHRPROC>(find("glObjectLabelKHR"));
  // Both extensions have the same function, each under its own name.
  for (const std::string vendor : {"KHR", "EXT"}) {
    if (GetGraphicsResetStatus || !Has(("GL_" + vendor + "_robustness").c_str())) continue;
    GetGraphicsResetStatus = reinterpret_cast<PFNGLGETGRAPHICSRESETSTATUSEXTPROC>(
        find(("glGetGraphicsResetStatus" + vendor).c_str()));
  }
}

GLenum GlFunctions::TakeError() const {
  GLenum first = GL_NO_ERROR;
  // One error of each kind may be pending.
  for (int i = 0; i < 8; ++i) {
    const GLenum error = GetError();
    if (error == GL_NO_ERROR) break;
    if (first == GL_NO_ERROR) first = error;
  }
  return first;
}

bool GlFunctions::Has(const char* extension) const {
  const auto* all = reinterpret_cast<const char*>(GetString(GL_EXTENSIONS));
  const size_t length = std::strlen(extension);
  for (const char* at = all; at && (at = std::strstr(at, extension)); at += length) {
    const bool begins = at == all || at[-1] == ' ';
    if (begins && (at[length] == ' ' || at[length] == '\0')) return true;
  }
  return false;
}

void* FindInSdl(const char* function) {
  return SdlLibrary() ? dlsym(SdlLibrary(), function) : nullptr;
}

const char* SdlCalls::Missing() const {
  if (!SdlLibrary()) return kSdlLibrary;
#define ZIRK_SDL_CHECK(name, function) \
  if (!name) return #function;
  ZIRK_SDL_FUNCTIONS(ZIRK_SDL_CHECK)
#undef ZIRK_SDL_CHECK
  return nullptr;
}

SdlCalls& Sdl() {
  static SdlCalls calls;
  return calls;
}

}  // namespace ZIRK::backends
