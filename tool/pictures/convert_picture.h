#pragma once

#include <functional>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"
#include "tool/pictures/picture_input.h"

namespace rasterkit::tool {

/// A picture that a verb changes: it is upright and not yet written.
struct Subject {
  std::unique_ptr<TBitmap>& bitmap;
  /// Map position of a TIFF output; nothing if the input states none or was turned. Code that moves
  /// pixels must adapt or clear it.
  std::optional<TiffGeoTags>& place;
  const Job& job;
  const PictureOptions& options;
  /// The change may add warnings and losses.
  JobResult& result;

  /// Threads for the work on one picture according to --threads, 1 to 100.
  int Threads() const;
  /// Paints transparent parts with the background color and reports the loss.
  void PaintTransparency();
  /// Stops the work on this picture: nothing is written. Throws Failure(exitOutputNotWritten) with
  /// the reason.
  [[noreturn]] void Refuse(const std::string& reason) const;
};

/// What a verb does to a picture.
using PictureChange = std::function<void(Subject& picture)>;

/// Writes a finished picture to the job's output and returns that (see WriteOutput); the last step.
/// `picture.photo` still holds the orientation of the input file.
using PictureWriter =
    std::function<std::unique_ptr<AtomicFile>(LoadedPicture& picture, const Job& job)>;

struct PictureSteps {
  /// No change if empty.
  PictureChange change;
  /// SavePicture if empty.
  PictureWriter write;
  /// Type name for the results, if the output is not one of the tool's picture types.
  std::string typeName;
};

/// Processes one picture: load, turn upright, turn, change, convert to another depth, write. Throws
/// Failure.
JobResult ConvertPicture(const Job& job, const PictureOptions& options,
                         const PictureSteps& steps = {});

/// Processes a picture that is already loaded, and leaves it in an unspecified state.
JobResult ConvertLoaded(LoadedPicture& picture, const Job& job, const PictureOptions& options,
                        const PictureSteps& steps = {});

}  // namespace rasterkit::tool
