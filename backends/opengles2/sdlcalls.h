#pragma once

#include <SDL.h>

namespace ZIRK::backends {

/// The functions of SDL that can fail, and the way to OpenGL's. All calls go through here, so that
/// tests can have each of them fail.
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

SdlCalls& Sdl();

}  // namespace ZIRK::backends
