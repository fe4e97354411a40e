#pragma once

#include <functional>

#include <rasterkit/bands/stage/stage_run.h>

namespace rasterkit::detail {

/// The part of a stage's progress that one pass over rows makes up.
struct ProgressShare {
  double from = 0, to = 1;
};

/// Runs `work` for `count` rows in pieces of at most `piece` rows, on the threads of `run`. Pieces
/// are started in order and may end in any order; they must not depend on each other. Reports
/// progress on the calling thread between pieces and checks the time of the call. The first error
/// ends all threads and is thrown, that of the progress callback too.
void ForRows(int count, int piece, const StageRun& run, const ProgressShare& share,
             const std::function<void(int first, int last)>& work);

/// Rows of a piece that takes a small part of a millisecond: at least 1, at most `count`.
int PieceOf(int count, size_t bytesPerRow);

}  // namespace rasterkit::detail
