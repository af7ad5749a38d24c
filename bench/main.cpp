#include <benchmark/benchmark.h>
#include <zirk/vusyslog.h>

#include <cstdio>
#include <cstring>

#include "operations.h"

namespace {

using namespace ZIRK::bench;

/// This library first; empty if its backend does not open.
Peers MakePeers() {
  Peers peers;
  peers.push_back(MakeZirkPeer());
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
  return peers;
}

}  // namespace

/// `--verify` compares the pictures instead of measuring, and fails if they differ.
int main(int argc, char** argv) {
  ZIRK::LogLevel = 3;
  const Peers peers = MakePeers();
  if (peers.empty()) {
    std::fprintf(stderr, "the FB backend does not open\n");
    return 1;
  }
  if (argc == 2 && std::strcmp(argv[1], "--verify") == 0) return Verify(peers) ? 0 : 1;

  RegisterOperations(peers);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
