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

  // Null if the driver lacks the extension.
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

/// The address of a function of SDL; null if SDL or the function is missing.
void* FindInSdl(const char* function);

/// The functions of SDL that this plug-in calls. SDL is opened at run time, so that without it the
/// plug-in still loads and can log what is missing. All calls go through one table, so that tests
/// can make each of them fail.
struct SdlCalls {
#define ZIRK_SDL_FUNCTIONS(X)                         \
  X(InitSubSystem, SDL_InitSubSystem)                 \
  X(QuitSubSystem, SDL_QuitSubSystem)                 \
  X(WasInit, SDL_WasInit)                             \
  X(GetHint, SDL_GetHint)                             \
  X(SetHint, SDL_SetHint)                             \
  X(GetError, SDL_GetError)                           \
  X(Free, SDL_free)                                   \
  X(GetNumVideoDrivers, SDL_GetNumVideoDrivers)       \
  X(GetVideoDriver, SDL_GetVideoDriver)               \
  X(GetCurrentVideoDriver, SDL_GetCurrentVideoDriver) \
  X(GetNumVideoDisplays, SDL_GetNumVideoDisplays)     \
  X(GetDesktopDisplayMode, SDL_GetDesktopDisplayMode) \
  X(CreateWindow, SDL_CreateWindow)                   \
  X(SetWindowTitle, SDL_SetWindowTitle)               \
  X(GetWindowSize, SDL_GetWindowSize)                 \
  X(SetWindowSize, SDL_SetWindowSize)                 \
  X(DestroyWindow, SDL_DestroyWindow)                 \
  X(PumpEvents, SDL_PumpEvents)                       \
  X(FilterEvents, SDL_FilterEvents)                   \
  X(LoadLibrary, SDL_GL_LoadLibrary)                  \
  X(UnloadLibrary, SDL_GL_UnloadLibrary)              \
  X(SetAttribute, SDL_GL_SetAttribute)                \
  X(CreateContext, SDL_GL_CreateContext)              \
  X(DeleteContext, SDL_GL_DeleteContext)              \
  X(MakeCurrent, SDL_GL_MakeCurrent)                  \
  X(GetCurrentContext, SDL_GL_GetCurrentContext)      \
  X(GetCurrentWindow, SDL_GL_GetCurrentWindow)        \
  X(GetDrawableSize, SDL_GL_GetDrawableSize)          \
  X(GetProcAddress, SDL_GL_GetProcAddress)            \
  X(SetSwapInterval, SDL_GL_SetSwapInterval)          \
  X(GetSwapInterval, SDL_GL_GetSwapInterval)          \
  X(SwapWindow, SDL_GL_SwapWindow)
#define ZIRK_SDL_MEMBER(name, function) \
  decltype(&function) name = reinterpret_cast<decltype(&function)>(FindInSdl(#function));
  ZIRK_SDL_FUNCTIONS(ZIRK_SDL_MEMBER)
#undef ZIRK_SDL_MEMBER

  /// The name of what is missing, the library or the first function; null if nothing is.
  const char* Missing() const;
};

/// The table in use.
SdlCalls& Sdl();

}  // namespace ZIRK::backends
