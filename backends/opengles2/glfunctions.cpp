#include "opengles2/glfunctions.h"

#include <cstring>
#include <string>

namespace ZIRK::backends {

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

SdlCalls& Sdl() {
  static SdlCalls calls;
  return calls;
}

}  // namespace ZIRK::backends
