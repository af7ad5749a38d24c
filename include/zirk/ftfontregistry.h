#pragma once

#include <zirk/export.h>
#include <zirk/impl/vufontregistryimpl.h>
#include <zirk/vufontregistry.h>

#include <cstdint>
#include <list>
#include <mutex>
#include <string>

/// FreeType's handle of its library, declared here so that this header needs none of FreeType's.
using FT_Library = struct FT_LibraryRec_*;

namespace ZIRK {

/// The implementation of a VuFontRegistry: it reads families and styles from font files with
/// FreeType, and keeps no file open. VuFontRegistry documents each operation.
///
/// **Threads**: any thread may call every member.
class ZIRK_API FTFontRegistry : public VuFontRegistryImpl {
 public:
  /// An empty registry. `factory` makes the fonts; null stands for VuFont::CreateFontEx(). Logs an
  /// error line if FreeType does not start; then no file can be registered.
  explicit FTFontRegistry(VuFontRegistry::FontFactory factory = nullptr);
  ~FTFontRegistry() override;

  bool Register(const char* path) override;
  void Unregister(const char* path) override;
  [[nodiscard]] VuFont* GetFont(const char* family, int pixelSize, bool bold, bool italic) override;

 private:
  struct Record {
    std::string path;
    int32_t faceIndex = -1;
    std::string family;
    std::string style;
    bool bold = false;
    bool italic = false;
  };

  ZIRK_LOCAL bool Inspect(const char* path);
  ZIRK_LOCAL Record BestMatch(const std::string& family, bool bold, bool italic) const;

  VuFontRegistry::FontFactory factory_;
  FT_Library library_ = nullptr;
  std::list<Record> records_;  ///< In the order in which they were registered.
  std::mutex mutex_;
};

}  // namespace ZIRK
