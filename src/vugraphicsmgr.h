#pragma once

#include <iosfwd>
#include <list>
#include <memory>
#include <mutex>

namespace ZIRK {

class VuGraphics;
class VuGraphicsImpl;

/// The process's register of live contexts, in the order of their construction. It owns none of
/// them. Any thread may call.
class VuGraphicsMgr {
 public:
  /// The register of the process. The first call creates it.
  static std::shared_ptr<VuGraphicsMgr> GetInstance();

  void Add(VuGraphics* context);
  void Remove(VuGraphics* context);

  /// Removes the backend from a context that is about to delete it, so that it is no longer listed.
  /// The context stays registered.
  VuGraphicsImpl* TakeImpl(VuGraphics& context);

  /// Lists the contexts with their bitmaps and memory. Addresses are printed XORed with `key`.
  void PrintBitmapList(unsigned key, std::ostream& os);

 private:
  std::mutex mutex_;
  std::list<VuGraphics*> instances_;
};

}  // namespace ZIRK
