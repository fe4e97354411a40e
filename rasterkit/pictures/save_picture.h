#pragma once

#include <functional>
#include <string>

#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {

/// Thrown before the first byte is written, if blocks that were to be moved turn out damaged.
class DamagedBlocks : public FormatError {
 public:
  /// `isDamage` is false for whole blocks of a kind that cannot be moved.
  DamagedBlocks(const std::string& reason, bool isDamage)
      : FormatError(reason), isDamage_(isDamage) {}
  bool IsDamage() const { return isDamage_; }

 private:
  bool isDamage_;
};

/// Calls `write`, and once more without moves if blocks are damaged: what is trimmed for a move
/// alone is there again then.
Report WriteMovedOrAnew(const SaveOptions& options,
                        const std::function<Report(const SaveOptions& options)>& write);

/// The part of a call that writing one picture is.
struct WorkPart {
  double from = 0, end = 1;
};

/// Reads the pixels of a picture and writes them to a file or a page. The report lacks side files.
/// Throws DamagedBlocks.
Report WriteOne(PictureTarget& target, const PictureSource& source, const PictureState& state,
                const WritePlan& plan, const SaveOptions& options, RunScope& run, WorkPart part);

/// The same for a file of one picture.
Report WriteTo(TStream& target, const PictureSource& source, const PictureState& state,
               const WritePlan& plan, const SaveOptions& options, RunScope& run);

}  // namespace rasterkit::detail
