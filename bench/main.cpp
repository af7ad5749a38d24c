#include <benchmark/benchmark.h>
#include <malloc.h>
#include <zirk/vusyslog.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "operations.h"
#include "support/offscreen.h"
#include "textpeer.h"

namespace {

using namespace ZIRK::bench;
namespace support = ZIRK::support;

/// This library first; empty if its backend does not open.
Peers MakePeers() {
  Peers peers;
  peers.push_back(MakeZirkPeer("ZIRK", "FB"));
  if (!peers[0]) return {};
  peers.push_back(MakePixmanPeer());
#ifdef ZIRK_BENCH_CAIRO
  peers.push_back(MakeCairoPeer());
#endif
#ifdef ZIRK_BENCH_SDL
  peers.push_back(MakeSdlPeer());
#endif
#ifdef ZIRK_BENCH_QT
  peers.push_back(MakeQtPeer());
#endif
#ifdef ZIRK_BENCH_DIRECTFB_BACKEND
  support::UseOffscreenDirectFb();
  if (auto peer = MakeZirkPeer("ZIRK on DirectFB", "DirectFB")) peers.push_back(std::move(peer));
#endif
  return peers;
}

/// The same for text. A peer that does not start is left out: DirectFB's fonts are a separate
/// package.
TextPeers MakeTextPeers() {
  TextPeers peers;
  for (const auto make : {
           MakeZirkText,
           MakeFreeTypeText,
           MakePixmanText,
#ifdef ZIRK_BENCH_CAIRO
           MakeCairoText,
#endif
#ifdef ZIRK_BENCH_SDL_TTF
           MakeSdlText,
#endif
#ifdef ZIRK_BENCH_DIRECTFB
           MakeDirectFbText,
#endif
#ifdef ZIRK_BENCH_PANGO
           MakePangoText,
#endif
       }) {
    try {
      peers.push_back(make());
    } catch (const std::runtime_error& error) {
      std::fprintf(stderr, "a peer is left out: %s\n", error.what());
    }
  }
  return peers;
}

}  // namespace

/// `--verify` compares the pictures instead of measuring, and fails if they differ.
int main(int argc, char** argv) {
  ZIRK::LogLevel = 3;
  // What is measured is not how the allocator gives memory back to the kernel.
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  const Peers peers = MakePeers();
  if (peers.empty()) {
    std::fprintf(stderr, "the FB backend does not open\n");
    return 1;
  }
  const TextPeers textPeers = MakeTextPeers();
  if (argc == 2 && std::strcmp(argv[1], "--verify") == 0) {
    const bool same = Verify(peers);
    return VerifyText(textPeers) && same ? 0 : 1;
  }

  RegisterOperations(peers);
  RegisterText(textPeers);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
