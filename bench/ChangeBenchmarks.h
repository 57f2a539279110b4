/// From a change on the disk to its notice.
#pragma once
#include "bench/LibraryFolder.h"

namespace bench {

/// Registers the notice alone and the tree brought into step, by us and by a bare watch.
/// @param library  outlives the benchmarks
void addChangeBenchmarks(const LibraryFolder& library);

} // namespace bench
