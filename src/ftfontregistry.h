#pragma once

#include <zirk/impl/vufontregistryimpl.h>
#include <zirk/vufontregistry.h>

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cstdint>
#include <list>
#include <mutex>
#include <string>

namespace ZIRK {

/// Reads families and styles from font files with FreeType, and keeps none of the files open.
class FTFontRegistry : public VuFontRegistryImpl {
 public:
  explicit FTFontRegistry(VuFontRegistry::FontFactory factory);
  ~FTFontRegistry() override;

  bool Register(const char* path) override;
  void Unregister(const char* path) override;
  VuFont* GetFont(const char* family, int pixelSize, bool bold, bool italic) override;

 private:
  struct Record {
    std::string path;
    int32_t faceIndex = -1;
    std::string family;
    std::string style;
    bool bold = false;
    bool italic = false;
  };

  bool Inspect(const char* path);
  Record BestMatch(const std::string& family, bool bold, bool italic) const;

  VuFontRegistry::FontFactory factory_;
  FT_Library library_ = nullptr;
  std::list<Record> records_;  ///< In the order in which they came.
  std::mutex mutex_;
};

}  // namespace ZIRK
