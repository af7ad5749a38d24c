#pragma once

#include <zirk/impl/vubitmapimpl.h>
#include <zirk/impl/vugraphicsimpl.h>

#include <memory>
#include <mutex>

#include "surface/memorybudget.h"

namespace ZIRK::backends {

/// The allocator of a graphics context for the bitmaps of glyph atlases.
///
/// A font keeps a pointer to the allocator of its atlas to grow the atlas, and may outlive the
/// graphics context. The allocator is therefore a separate object, which the context's surfaces and
/// the bitmaps of the atlases keep alive. Backends implement MakeBitmap().
class GlyphAtlasAllocator : public VuGraphicsImpl,
                            public std::enable_shared_from_this<GlyphAtlasAllocator> {
 public:
  /// The bitmaps' memory counts towards `budget`. `graphicsType` is the context's. A
  /// std::shared_ptr must own the object.
  GlyphAtlasAllocator(std::shared_ptr<MemoryBudget> budget, int graphicsType);
  ~GlyphAtlasAllocator() override;

  /// Returns the allocator at the address that an atlas stores: usually this one, otherwise that of
  /// another context. Returns null and logs an error if it belongs to another plug-in or was
  /// deleted.
  std::shared_ptr<GlyphAtlasAllocator> FindOwner(const VuGraphicsImpl* owner);

  /// Returns the mutex to lock while text is drawn from one of the atlases.
  std::mutex& DrawingMutex() { return drawingMutex_; }

  // The operations that atlases use.
  VuBitmapImpl* CreateBitmap(int width, int height, VuPixelFormat format) final;
  int GetGraphicsType() const final { return graphicsType_; }

  // The other operations of a context, which atlases do not use.
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
  /// Makes a bitmap. It need not be cleared, since only glyphs are read. Returns null after it logs
  /// an error. May throw std::bad_alloc, which the caller logs and turns into null.
  virtual std::unique_ptr<VuBitmapImpl> MakeBitmap(Reservation reservation, int width, int height,
                                                   VuPixelFormat format) = 0;

  const std::shared_ptr<MemoryBudget> budget_;
  const int graphicsType_;
  std::mutex drawingMutex_;
  GlyphAtlasAllocator* next_;  ///< In the list of all allocators.
};

}  // namespace ZIRK::backends
