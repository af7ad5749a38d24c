#pragma once

#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vugraphicsimpl.h>

#include <memory>
#include <mutex>

#include "surface/memorybudget.h"

namespace ZIRK::backends {

/// Makes the bitmaps of glyph atlases. A graphics context has one.
///
/// A font keeps a pointer to the allocator of its atlas so that it can grow it, and may outlive the
/// graphics context. The allocator is therefore an object of its own, which the context's surfaces
/// and the bitmaps of the atlases keep alive. A backend adds how a bitmap is made.
class GlyphAtlasAllocator : public VuGraphicsImpl,
                            public std::enable_shared_from_this<GlyphAtlasAllocator> {
 public:
  /// The bitmaps count in `budget`. `graphicsType` is the context's. Owned by a std::shared_ptr.
  GlyphAtlasAllocator(std::shared_ptr<MemoryBudget> budget, int graphicsType);
  ~GlyphAtlasAllocator() override;

  /// The allocator at the address that an atlas stores: usually this one, otherwise that of another
  /// context. Null, after an error line, if it belongs to another plug-in or was deleted.
  std::shared_ptr<GlyphAtlasAllocator> FindOwner(const VuGraphicsImpl* owner);

  /// Locked while text is drawn from one of the atlases.
  std::mutex& DrawingMutex() { return drawingMutex_; }

  // The operations that an atlas uses.
  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) final;
  int GetGraphicsType() const final { return graphicsType_; }

  // The other operations of a context. No atlas uses them.
  VuScreenImpl* CreateScreen(bool) final { return nullptr; }
  VuScreenImpl* CreateScreen(const VuScreenDescription&) final { return nullptr; }
  VuBitmapImpl* CreateBitmapFromFile(const char*) final { return nullptr; }
  VuBitmapImpl* CreateBitmapFromFile(const char*, int, int, VuScaleMode, VuDisplayMode) final {
    return nullptr;
  }
  VuBitmapImpl* CreateBitmapFromMemory(const void*, unsigned) final { return nullptr; }
  VuBitmapImpl* CreateBitmapFromMemory(const void*, unsigned, int, int, VuScaleMode) final {
    return nullptr;
  }
  unsigned AvailableMemory() const final { return 0; }
  unsigned TotalMemory() const final { return 0; }
  unsigned BitmapSize(int, int, VuPixelFormat) const final { return 0; }
  unsigned BitmapSize(const char*) const final { return 0; }
  unsigned BitmapSize(const char*, int, int) const final { return 0; }
  unsigned BitmapSize(const void*, unsigned) const final { return 0; }
  unsigned BitmapSize(const void*, unsigned, int, int) const final { return 0; }
  void PrintBitmapList(unsigned, std::ostream&) final {}
  void Flush() final {}

 protected:
  using Reservation = std::unique_ptr<MemoryBudget::Reservation>;

 private:
  /// A bitmap, which need not be cleared: only glyphs are read. Null after an error line; may throw
  /// std::bad_alloc, which becomes both.
  virtual std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                                   VuPixelFormat format) = 0;

  const std::shared_ptr<MemoryBudget> budget_;
  const int graphicsType_;
  std::mutex drawingMutex_;
  GlyphAtlasAllocator* next_;  ///< In the list of all that exist.
};

}  // namespace ZIRK::backends
