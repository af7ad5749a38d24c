#pragma once

#include <zirk/export.h>

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace ZIRK {

/// What a backend says of itself before it is opened.
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

/// One backend's plug-in. Destroying the record closes the plug-in.
struct ZIRK_API GfxImplRecord {
  GfxImplRecord() = default;
  ~GfxImplRecord();
  GfxImplRecord(const GfxImplRecord&) = delete;
  GfxImplRecord& operator=(const GfxImplRecord&) = delete;

  std::string dso;                        ///< File name, without directory.
  std::string createSymbol;               ///< Entry point `void* (bool)`.
  std::string destroySymbol;              ///< Entry point `void (void*)`.
  GraphicsFeatureInfo featureInfo{0, 0};  ///< As it was entered.
  bool libraryFound = false;              ///< The file lies under /lib or /usr/lib.
  void* handle = nullptr;                 ///< From dlopen; null while the plug-in is not open.
  void* (*createFn)(bool) = nullptr;      ///< Valid while `loaded`.
  void (*destroyFn)(void*) = nullptr;     ///< Valid while `loaded`.
  bool loaded = false;                    ///< Open, with both entry points resolved.
};

/// The one place that knows the plug-ins: a table from backend name (case-sensitive) to file and
/// entry points. Plug-ins are opened when first asked for and stay open until the process ends.
///
/// Only GetInstance() may be called from several threads at once.
class ZIRK_API GraphicsImplLoader {
 public:
  /// The process's loader. The first call builds the table, and takes the default backend's name
  /// from the environment variable `ZIRK_DEFAULT_GFX_BACKEND` where it is set.
  static std::shared_ptr<GraphicsImplLoader> GetInstance();

  /// Enters or replaces the record of `name`. `lookOnDisk` says whether to look for `dso` under
  /// /lib and /usr/lib. Of a path of 30 characters or more the first 29 are looked for.
  void SetupGfxImpl(const std::string& name, const std::string& dso,
                    const std::string& createSymbol, const std::string& destroySymbol,
                    GraphicsFeatureInfo info, bool lookOnDisk);
  /// The same with the entry points "CreateVuGraphics" and "DestroyVuGraphics".
  void SetupGfxImpl(const std::string& name, const std::string& dso, GraphicsFeatureInfo info,
                    bool lookOnDisk);

  /// Whether set-up found the plug-in of `name` (not null) on disk; false, with a warning, for an
  /// unknown name.
  bool IsLibraryAvailable(const char* name);
  /// The names whose plug-in was found, in the table's own order; valid until the next call.
  const char* const* GetBackends(unsigned& count);

  /// Opens the plug-in of `name`: 0 when it is open, -1 for an unknown name, -2, with an error
  /// line, when it does not open or lacks an entry point.
  int loadImpl(std::string name);
  /// Opens the plug-in of `name` and calls its creation entry point with `flag`. Null, with an
  /// error line, if it does not open; null too if the plug-in says so. Who receives the object
  /// deletes it through its virtual destructor.
  void* CreateImplInstance(std::string name, bool flag);
  /// Hands `instance` to the destruction entry point of `name`, if that plug-in is open.
  void DestroyImplInstance(std::string name, void* instance);

  /// The record's features; zeros, with a warning, for an unknown name.
  GraphicsFeatureInfo GetFeatureInfo(const std::string& name);

 private:
  ZIRK_LOCAL bool open(GfxImplRecord& record);

  std::unordered_map<std::string, GfxImplRecord> table_;
  std::vector<const char*> backendNames_;
};

}  // namespace ZIRK
