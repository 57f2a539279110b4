/// The effect's state as a host may write it: the way to those parameters that have no operation of
/// their own.
#pragma once
#include "host/cli/PlayOptions.h"

#include <cstdint>
#include <vector>

/// A chunk with an empty pattern and the options' parameters. docs/formats/state-chunk.md lists the
/// bytes.
std::vector<std::uint8_t> makeStateChunk(const PlayOptions& options);
