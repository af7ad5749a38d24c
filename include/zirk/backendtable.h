#pragma once

#include <cstdint>
#include <optional>

/// @file
/// The backends that the library knows by name. GraphicsImplLoader::SetupGfxImpl() adds more at run
/// time.

namespace ZIRK {

/// The values of VuGraphics::GetGraphicsType() for ZIRK's own backends. Third-party backends return
/// other numbers.
enum class BackendType : int32_t {
  OpenGLES2 = 1,  ///< Draws by OpenGL ES 2.
  DirectFB = 2,   ///< Draws by DirectFB.
  Hybrid = 3,     ///< Draws onto screens by OpenGL ES 2, into bitmaps by the processor.
  Stub = 4,       ///< Draws nothing.
  FB = 5,         ///< Draws by the processor.
};

/// The number that VuGraphics::GetGraphicsType() returns for `type`.
[[nodiscard]] constexpr int TypeCode(BackendType type) {
  return static_cast<int>(type);
}

/// The facts about a plug-in that the library knows before it opens it.
struct BackendRecord {
  const char* name;                 ///< Argument of VuGraphics::Create(), in its exact spelling.
  std::optional<BackendType> type;  ///< Empty for a compositor, which is not a graphics backend.
  const char* dso;                  ///< File name of the plug-in, without directory.
  const char* createSymbol;         ///< Entry point `void* (bool)`.
  const char* destroySymbol;        ///< Entry point `void (void*)`.
  uint32_t features;  ///< What VuGraphics::GetSupportedFeatures() returns: 1 by OpenGL ES, else 0.
  uint32_t details;   ///< What VuGraphics::GetFeatureDetails() stores.
  bool lookOnDisk;    ///< Whether VuGraphics::HasBackend() looks for the file.

  /// Whether the plug-in makes graphics contexts; it makes compositors otherwise.
  [[nodiscard]] constexpr bool IsGraphics() const { return type.has_value(); }
};

/// Every plug-in that the loader's table has at the start, in this order.
inline constexpr BackendRecord kBackendTable[] = {
    {"OpenGLES2", BackendType::OpenGLES2, "libZIRKImplOpenGL.so", "CreateVuGraphics",
     "DestroyVuGraphics", 1, 0x7F, true},
    {"DirectFB", BackendType::DirectFB, "libZIRKImplDirectFB.so", "CreateVuGraphics",
     "DestroyVuGraphics", 0, 0x1BF, true},
    {"GLCompositor", std::nullopt, "libZIRKImplOpenGL.so", "CreateVuCompositor",
     "DestroyVuCompositor", 0, 0, false},
    {"Hybrid", BackendType::Hybrid, "libZIRKImplHybrid.so", "CreateVuGraphics", "DestroyVuGraphics",
     1, 0, true},
    {"Stub", BackendType::Stub, "libZIRKImplStub.so", "CreateVuGraphics", "DestroyVuGraphics", 0, 0,
     true},
    {"FB", BackendType::FB, "libZIRKImplFB.so", "CreateVuGraphics", "DestroyVuGraphics", 0, 0,
     true},
};

/// The backend that VuGraphics::Create() opens unless VuGraphics::SetDefaultImpl() or the
/// environment variable `ZIRK_DEFAULT_GFX_BACKEND` names another.
inline constexpr BackendType kDefaultBackend = BackendType::Hybrid;

/// The name of the backend `type`; an empty string for an unknown value.
[[nodiscard]] constexpr const char* BackendName(BackendType type) {
  for (const BackendRecord& record : kBackendTable)
    if (record.type == type) return record.name;
  return "";
}

}  // namespace ZIRK
