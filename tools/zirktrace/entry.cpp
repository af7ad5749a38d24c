#include "entry.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

#include "traced.h"

namespace ZIRK::trace {

namespace {

namespace fs = std::filesystem;

/// Returns the folder of the library that contains an address.
fs::path FolderOf(const void* address) {
  Dl_info info{};
  if (!dladdr(address, &info)) return {};
  std::error_code error;
  return fs::canonical(info.dli_fname, error).parent_path();
}

/// Returns the folders that the loader would search: those of the environment, and the library's.
std::vector<fs::path> SearchPath() {
  std::vector<fs::path> folders;
  const char* const path = std::getenv("LD_LIBRARY_PATH");
  std::istringstream rest(path ? path : "");
  for (std::string folder; std::getline(rest, folder, ':');)
    folders.emplace_back(folder.empty() ? "." : folder);
  folders.push_back(FolderOf(reinterpret_cast<const void*>(&GraphicsImplLoader::GetInstance)));
  return folders;
}

/// Opens the plug-in to record. It needs the path, since the recording plug-in has the same name.
/// Like the library, it never closes the plug-in.
void* OpenReal(const char* file) {
  const fs::path own = FolderOf(reinterpret_cast<const void*>(&OpenReal));
  std::error_code error;
  for (const fs::path& folder : SearchPath()) {
    const fs::path path = fs::canonical(folder / file, error);
    if (error || path.parent_path() == own) continue;
    void* const handle = dlopen(path.c_str(), RTLD_LAZY | RTLD_GLOBAL);
    if (!handle) continue;
    const auto* const number = static_cast<const uint32_t*>(dlsym(handle, "ZIRKBackendInterface"));
    if (!number || *number == kBackendInterface) return handle;
    dlclose(handle);
  }
  return nullptr;
}

void* MakeReal(const char* file, const char* symbol, bool flag) {
  void* const handle = OpenReal(file);
  if (!handle) return nullptr;
  const auto make = reinterpret_cast<void* (*)(bool)>(dlsym(handle, symbol));
  return make ? make(flag) : nullptr;
}

template <class Traced, class Real>
Real* Open(const char* file, const char* symbol, bool flag) {
  auto* const real = static_cast<Real*>(MakeReal(file, symbol, flag));
  if (!real) return nullptr;
  return new Traced(real, Recorder::Get().NewId(), file, flag);
}

}  // namespace

void* OpenTracedGraphics(const char* file, bool flag) {
  return Open<TracedGraphics, VuGraphicsImpl>(file, "CreateVuGraphics", flag);
}

void* OpenTracedCompositor(const char* file, bool flag) {
  return Open<TracedCompositor, VuCompositorImpl>(file, "CreateVuCompositor", flag);
}

void CloseTracedGraphics(void* graphics) {
  delete static_cast<VuGraphicsImpl*>(graphics);
}

void CloseTracedCompositor(void* compositor) {
  delete static_cast<VuCompositorImpl*>(compositor);
}

}  // namespace ZIRK::trace
