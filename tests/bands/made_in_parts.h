#pragma once

#include <random>

#include <rasterkit/bands/stage/stage.h>

namespace rasterkit::test {

/// Starts the stage's work and makes its result in bands of 1, 7 and 64 rows and, where the work
/// makes parts of rows, in tiles of odd sizes. Each band gets no more of the source than the work
/// needs, and is made in pieces of rows in any order. Expects the bytes of `made`, the whole
/// result.
void ExpectSameInParts(const Stage& stage, const Pixels& source, const Pixels& made,
                       std::mt19937& random);

}  // namespace rasterkit::test
