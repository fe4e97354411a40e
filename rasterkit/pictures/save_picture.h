#pragma once

#include <functional>

#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// Thrown before the first byte is written, if blocks that were to be moved turn out damaged.
class DamagedBlocks : public FormatError {
 public:
  using FormatError::FormatError;
};

/// Calls `write`, and once more without moves if blocks are damaged: what is trimmed for a move
/// alone is there again then.
Report WriteMovedOrAnew(const SaveOptions& options,
                        const std::function<Report(const SaveOptions& options)>& write);

/// Reads the pixels of a picture and writes its file to a stream. The report lacks side files.
/// Throws DamagedBlocks.
Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run);

}  // namespace rasterkit::detail
