#pragma once

#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>
#include <SDL.h>

namespace ZIRK::backends {

/// The functions of OpenGL ES 2.0 that this plug-in calls, looked up in the driver.
struct GlFunctions {
#define ZIRK_GL_FUNCTIONS(X)                                     \
  X(ActiveTexture, PFNGLACTIVETEXTUREPROC)                       \
  X(AttachShader, PFNGLATTACHSHADERPROC)                         \
  X(BindAttribLocation, PFNGLBINDATTRIBLOCATIONPROC)             \
  X(BindBuffer, PFNGLBINDBUFFERPROC)                             \
  X(BindFramebuffer, PFNGLBINDFRAMEBUFFERPROC)                   \
  X(BindTexture, PFNGLBINDTEXTUREPROC)                           \
  X(BlendColor, PFNGLBLENDCOLORPROC)                             \
  X(BlendFuncSeparate, PFNGLBLENDFUNCSEPARATEPROC)               \
  X(BufferData, PFNGLBUFFERDATAPROC)                             \
  X(BufferSubData, PFNGLBUFFERSUBDATAPROC)                       \
  X(CheckFramebufferStatus, PFNGLCHECKFRAMEBUFFERSTATUSPROC)     \
  X(Clear, PFNGLCLEARPROC)                                       \
  X(ClearColor, PFNGLCLEARCOLORPROC)                             \
  X(ColorMask, PFNGLCOLORMASKPROC)                               \
  X(CompileShader, PFNGLCOMPILESHADERPROC)                       \
  X(CopyTexSubImage2D, PFNGLCOPYTEXSUBIMAGE2DPROC)               \
  X(CreateProgram, PFNGLCREATEPROGRAMPROC)                       \
  X(CreateShader, PFNGLCREATESHADERPROC)                         \
  X(DeleteBuffers, PFNGLDELETEBUFFERSPROC)                       \
  X(DeleteFramebuffers, PFNGLDELETEFRAMEBUFFERSPROC)             \
  X(DeleteProgram, PFNGLDELETEPROGRAMPROC)                       \
  X(DeleteShader, PFNGLDELETESHADERPROC)                         \
  X(DeleteTextures, PFNGLDELETETEXTURESPROC)                     \
  X(Disable, PFNGLDISABLEPROC)                                   \
  X(DrawElements, PFNGLDRAWELEMENTSPROC)                         \
  X(Enable, PFNGLENABLEPROC)                                     \
  X(EnableVertexAttribArray, PFNGLENABLEVERTEXATTRIBARRAYPROC)   \
  X(DisableVertexAttribArray, PFNGLDISABLEVERTEXATTRIBARRAYPROC) \
  X(Finish, PFNGLFINISHPROC)                                     \
  X(Flush, PFNGLFLUSHPROC)                                       \
  X(FramebufferTexture2D, PFNGLFRAMEBUFFERTEXTURE2DPROC)         \
  X(GenBuffers, PFNGLGENBUFFERSPROC)                             \
  X(GenFramebuffers, PFNGLGENFRAMEBUFFERSPROC)                   \
  X(GenTextures, PFNGLGENTEXTURESPROC)                           \
  X(GetError, PFNGLGETERRORPROC)                                 \
  X(GetIntegerv, PFNGLGETINTEGERVPROC)                           \
  X(GetProgramInfoLog, PFNGLGETPROGRAMINFOLOGPROC)               \
  X(GetProgramiv, PFNGLGETPROGRAMIVPROC)                         \
  X(GetShaderInfoLog, PFNGLGETSHADERINFOLOGPROC)                 \
  X(GetShaderPrecisionFormat, PFNGLGETSHADERPRECISIONFORMATPROC) \
  X(GetShaderiv, PFNGLGETSHADERIVPROC)                           \
  X(GetString, PFNGLGETSTRINGPROC)                               \
  X(GetUniformLocation, PFNGLGETUNIFORMLOCATIONPROC)             \
  X(LinkProgram, PFNGLLINKPROGRAMPROC)                           \
  X(PixelStorei, PFNGLPIXELSTOREIPROC)                           \
  X(ReadPixels, PFNGLREADPIXELSPROC)                             \
  X(ShaderSource, PFNGLSHADERSOURCEPROC)                         \
  X(TexImage2D, PFNGLTEXIMAGE2DPROC)                             \
  X(TexParameteri, PFNGLTEXPARAMETERIPROC)                       \
  X(TexSubImage2D, PFNGLTEXSUBIMAGE2DPROC)                       \
  X(Uniform1i, PFNGLUNIFORM1IPROC)                               \
  X(Uniform2fv, PFNGLUNIFORM2FVPROC)                             \
  X(Uniform4fv, PFNGLUNIFORM4FVPROC)                             \
  X(UniformMatrix4fv, PFNGLUNIFORMMATRIX4FVPROC)                 \
  X(UseProgram, PFNGLUSEPROGRAMPROC)                             \
  X(VertexAttribPointer, PFNGLVERTEXATTRIBPOINTERPROC)           \
  X(Viewport, PFNGLVIEWPORTPROC)
#define ZIRK_GL_MEMBER(name, type) type name = nullptr;
  ZIRK_GL_FUNCTIONS(ZIRK_GL_MEMBER)
#undef ZIRK_GL_MEMBER

  // Null where the driver lacks the extension.
  PFNGLOBJECTLABELKHRPROC ObjectLabel = nullptr;
  PFNGLGETGRAPHICSRESETSTATUSEXTPROC GetGraphicsResetStatus = nullptr;

  /// Looks up all functions of OpenGL ES 2.0. Returns the name of the first that is missing, or
  /// null.
  const char* Load(void* (*find)(const char*));
  /// Looks up the extensions' functions. The context has to be current.
  void LoadExtensions(void* (*find)(const char*));

  /// The first error since the last call, or GL_NO_ERROR.
  GLenum TakeError() const;

  /// Whether the current context has the extension.
  bool Has(const char* extension) const;
};

/// The functions of SDL that can fail, and the one that finds OpenGL's. The plug-in calls all of
/// them through this table, so that tests can make each fail.
struct SdlCalls {
  decltype(&SDL_InitSubSystem) InitSubSystem = SDL_InitSubSystem;
  decltype(&SDL_GL_LoadLibrary) LoadLibrary = SDL_GL_LoadLibrary;
  decltype(&SDL_GL_SetAttribute) SetAttribute = SDL_GL_SetAttribute;
  decltype(&SDL_CreateWindow) CreateWindow = SDL_CreateWindow;
  decltype(&SDL_GL_CreateContext) CreateContext = SDL_GL_CreateContext;
  decltype(&SDL_GL_MakeCurrent) MakeCurrent = SDL_GL_MakeCurrent;
  decltype(&SDL_GL_SetSwapInterval) SetSwapInterval = SDL_GL_SetSwapInterval;
  decltype(&SDL_GL_GetProcAddress) GetProcAddress = SDL_GL_GetProcAddress;
  decltype(&SDL_GetDesktopDisplayMode) GetDesktopDisplayMode = SDL_GetDesktopDisplayMode;
};

/// The table in use.
SdlCalls& Sdl();

}  // namespace ZIRK::backends
