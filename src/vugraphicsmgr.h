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
  /// The one register, created when first asked for.
  static std::shared_ptr<VuGraphicsMgr> GetInstance();

  void Add(VuGraphics* context);
  void Remove(VuGraphics* context);

  /// Takes the backend out of a context that is about to delete it, so that nobody lists it any
  /// more. The context stays registered.
  VuGraphicsImpl* TakeImpl(VuGraphics& context);

  /// Lists the contexts with their bitmaps and memory. Addresses are printed XORed with `key`.
  void PrintBitmapList(unsigned key, std::ostream& os);

 private:
  std::mutex mutex_;
  std::list<VuGraphics*> instances_;
};

}  // namespace ZIRK
