#pragma once

#include <zirk/export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZIRK {

/// A backend's features, known before its plug-in is opened.
struct GraphicsFeatureInfo {
  uint32_t features;  ///< What VuGraphics::GetSupportedFeatures() returns: 1 by OpenGL ES, else 0.
  uint32_t details;   ///< What VuGraphics::GetFeatureDetails() stores.
};

/// Whether both fields are equal.
constexpr bool operator==(GraphicsFeatureInfo a, GraphicsFeatureInfo b) {
  return a.features == b.features && a.details == b.details;
}
/// Whether a field differs.
constexpr bool operator!=(GraphicsFeatureInfo a, GraphicsFeatureInfo b) {
  return !(a == b);
}

/// The record of one backend's plug-in. Its destructor closes the plug-in.
struct ZIRK_API GfxImplRecord {
  GfxImplRecord() = default;
  ~GfxImplRecord();
  GfxImplRecord(const GfxImplRecord&) = delete;
  GfxImplRecord& operator=(const GfxImplRecord&) = delete;

  std::string dso;                        ///< File name, without directory.
  std::string createSymbol;               ///< Entry point `void* (bool)`.
  std::string destroySymbol;              ///< Entry point `void (void*)`.
  GraphicsFeatureInfo featureInfo{0, 0};  ///< As SetupGfxImpl() got it.
  bool libraryFound = false;              ///< Whether the file is in /lib or /usr/lib.
  void* handle = nullptr;                 ///< From dlopen; null while the plug-in is not open.
  void* (*createFn)(bool) = nullptr;      ///< Valid while `loaded`.
  void (*destroyFn)(void*) = nullptr;     ///< Valid while `loaded`.
  bool loaded = false;                    ///< Open, with both entry points resolved.
};

/// The table of plug-ins: from backend name (case-sensitive) to file and entry points. A plug-in is
/// opened at its first use and stays open until the process ends.
///
///     const auto loader = GraphicsImplLoader::GetInstance();
///     loader->SetupGfxImpl("Mine", "libZIRKImplMine.so", {0, 0}, true);
///     VuGraphics::SetDefaultImpl("Mine");
///     std::unique_ptr<VuGraphics> graphics(VuGraphics::Create());
///
/// **Threads**: only GetInstance() may be called from several threads at once.
class ZIRK_API GraphicsImplLoader {
 public:
  /// The process's loader. The first call builds the table and, if the environment variable
  /// `ZIRK_DEFAULT_GFX_BACKEND` is set, takes the default backend's name from it.
  static std::shared_ptr<GraphicsImplLoader> GetInstance();

  /// Adds or replaces the record of `name`. With `lookOnDisk`, looks for `dso` in /lib and
  /// /usr/lib, whose result IsLibraryAvailable() gives. A path of 30 characters or more is cut to
  /// its first 29 and so not found.
  void SetupGfxImpl(const std::string& name, const std::string& dso,
                    const std::string& createSymbol, const std::string& destroySymbol,
                    GraphicsFeatureInfo info, bool lookOnDisk);
  /// The same with the entry points "CreateVuGraphics" and "DestroyVuGraphics".
  void SetupGfxImpl(const std::string& name, const std::string& dso, GraphicsFeatureInfo info,
                    bool lookOnDisk);

  /// Whether SetupGfxImpl() found the plug-in of `name` on disk. False, with a warning, for an
  /// unknown name. A null name raises std::logic_error.
  bool IsLibraryAvailable(const char* name);
  /// The names of all plug-ins that were found on disk, in no particular order; stores their number
  /// in `count`. The array is valid until the next call.
  const char* const* GetBackends(unsigned& count);

  /// Opens the plug-in of `name`, unless it is open already. Returns 0 if it is open, -1 for an
  /// unknown name, and -2, with an error line, if it does not open or lacks an entry point.
  int loadImpl(std::string name);
  /// Opens the plug-in of `name` and calls its creation entry point with `flag`. Returns null, with
  /// an error line, if it does not open; also null if the plug-in returns null. The caller owns the
  /// object and deletes it through its virtual destructor.
  [[nodiscard]] void* CreateImplInstance(std::string name, bool flag);
  /// Passes `instance` to the destruction entry point of `name`. Does nothing if that plug-in is
  /// not open; for an unknown name, also logs a warning.
  void DestroyImplInstance(std::string name, void* instance);

  /// The record's features; zeros, with a warning, for an unknown name.
  GraphicsFeatureInfo GetFeatureInfo(const std::string& name);

 private:
  ZIRK_LOCAL bool open(GfxImplRecord& record);

  std::unordered_map<std::string, GfxImplRecord> table_;
  std::vector<const char*> backendNames_;
};

}  // namespace ZIRK
