#pragma once

#include "peer.h"

namespace ZIRK::bench {

/// One kind of drawing, measured for every peer that has it.
struct Operation {
  const char* name;
  int count;          ///< Items per iteration.
  int width, height;  ///< Of an item's place.
  bool (*draw)(Peer& peer, const Batch& batch);
  /// How far the pictures of two peers may lie apart: mean difference per channel, of pixels that
  /// either has drawn on, after averaging over squares of `cell` pixels.
  int cell;
  double tolerance;

  Batch MakeItems() const { return MakeBatch(count, width, height); }
};

extern const std::vector<Operation> kOperations;

using Peers = std::vector<std::unique_ptr<Peer>>;

/// Registers a benchmark "Operation/Peer" for each operation of each peer.
void RegisterOperations(const Peers& peers);

/// Compares what the peers draw with what the first one does, one line each on the standard
/// output. False if one lies outside the tolerance.
bool Verify(const Peers& peers);

}  // namespace ZIRK::bench
