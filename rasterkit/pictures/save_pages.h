#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/report.h>
#include <rasterkit/pictures/run_scope.h>
#include <rasterkit/pictures/saving_options.h>
#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/pictures/write_plan.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {
class Picture;
}

namespace rasterkit::detail {

/// One page of a file to be written: a picture, or a page that stays as it is.
struct PagePart {
  SourcePtr source;
  /// The picture of `source`; null for a page that stays.
  std::shared_ptr<const PictureState> state;
  /// The page of the source's file that stays, counted from 1.
  int page = 1;
};

/// A file to be written: one picture, or the pages of a TIFF file.
struct FileParts {
  PictureType type = PictureType::unknown;
  std::vector<PagePart> pages;
  /// False for a file of one picture, which any format can hold.
  bool isDocument = false;
  /// The page whose size and form the report states.
  size_t shown = 0;
  /// The report names the page of each loss.
  bool isNumbered = false;
};

/// The file that saving a picture writes. A TIFF file keeps the other pages of its source.
FileParts PartsOf(const Picture& picture, PictureType type, const SaveOptions& options);

/// What writing would give. The report lacks side files.
Report ForeseeParts(const FileParts& parts, const SaveOptions& options, bool hasSideFiles);

/// Writes the file to a stream. The report lacks side files.
Report WriteParts(TStream& target, const FileParts& parts, const SaveOptions& options,
                  bool hasSideFiles, RunScope& run);

/// The first page, which the files beside the target belong to.
struct FirstPage {
  SourcePtr source;
  std::shared_ptr<const PictureState> state;
  WritePlan plan;
};
FirstPage FirstPageOf(const FileParts& parts, const SaveOptions& options, bool hasSideFiles);

}  // namespace rasterkit::detail
