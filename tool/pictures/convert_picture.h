#pragma once

#include <functional>

#include "tool/command/batch.h"
#include "tool/command/output_options.h"
#include "tool/pictures/picture_file.h"

namespace rasterkit::tool {

/// A picture in the hands of a verb: it stands upright, and nothing is written yet.
struct Subject {
  std::unique_ptr<TBitmap>& bitmap;
  /// Where a TIFF output lies on the map; nothing when the input says nothing or was turned. Who
  /// moves pixels adapts or clears it.
  std::optional<TiffGeoTags>& place;
  const Job& job;
  const PictureOptions& options;
  /// Warnings and losses can be added.
  JobResult& result;

  /// Threads for the work on one picture, as --threads says: 1 to 100.
  int Threads() const;
  /// Paints what is transparent onto the background and reports the loss.
  void PaintTransparency();
  /// Ends the work on this picture: nothing is written, and the reason is said.
  [[noreturn]] void Refuse(const std::string& reason) const;
};

/// What a verb does to a picture.
using PictureChange = std::function<void(Subject& picture)>;

/// The last step: writes a finished picture under the job's output name. `picture.photo` still says
/// how the file's rows lay before they were set upright.
using PictureWriter = std::function<void(LoadedPicture& picture, const Job& job)>;

struct PictureSteps {
  /// Nothing when empty.
  PictureChange change;
  /// SavePicture when empty.
  PictureWriter write;
  /// What the results call the type of a file that is no picture type of the tool.
  std::string typeName;
};

/// The way of one picture: load, set upright, turn, change, convert to another depth, write. Throws
/// Failure.
JobResult ConvertPicture(const Job& job, const PictureOptions& options,
                         const PictureSteps& steps = {});

/// The same for a picture that was loaded before; what is left of it then is undefined.
JobResult ConvertLoaded(LoadedPicture& picture, const Job& job, const PictureOptions& options,
                        const PictureSteps& steps = {});

}  // namespace rasterkit::tool
