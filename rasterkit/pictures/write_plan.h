#pragma once

#include <optional>
#include <string>

#include <rasterkit/codecs/rows/picture_writing.h>
#include <rasterkit/pictures/find_losses.h>
#include <rasterkit/pictures/fitting/fit_pixels.h>
#include <rasterkit/pictures/picture_state.h>
#include <rasterkit/pictures/report.h>
#include <rasterkit/pictures/saving_options.h>
#include <rasterkit/pictures/sources/page_sink.h>
#include <rasterkit/pictures/sources/picture_source.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit::detail {

/// How a picture is written, decided before any pixel is read.
struct WritePlan {
  PictureType type = PictureType::unknown;
  /// The compressed pixels of the source are copied.
  bool isCopied = false;
  /// The compressed pixels of the source are moved.
  std::optional<PictureMove> move;
  /// So is everything else: nothing was changed.
  bool isAsStored = false;
  bool hasSideFiles = false;
  /// The world file of the source goes along, or the format has no tags for the position.
  bool writesWorldFile = false;
  /// Only a small picture of the same kind is written.
  bool isSample = false;
  Form form;
  /// See Report::moveNote.
  std::string moveNote;
};

/// What is written, and how.
struct TargetPlan {
  /// The picture, or the part of it that can be moved.
  PictureState state;
  WritePlan plan;
};

inline constexpr const char* kMoved = "the pixels are moved without recompression";

/// The kind of file that the options or the name give. Throws UnsupportedError if there is none or
/// it cannot be written.
PictureType TargetType(const std::string& file, const SaveOptions& options);

/// The plan without a look at moves. Throws UnsupportedError.
WritePlan PlanOf(const PictureSource& source, const PictureState& state, PictureType type,
                 const SaveOptions& options, bool hasSideFiles);

/// The plan of a save. Throws UnsupportedError.
TargetPlan TargetPlanOf(const PictureSource& source, const PictureState& state, PictureType type,
                        const SaveOptions& options, bool hasSideFiles);

/// What the file gets besides pixels, and how it is encoded.
PictureWriting WritingOf(const PictureSource& source, const PictureState& state,
                         const WritePlan& plan, const SaveOptions& options, int threads);

/// What the pixels of a picture must become for a file of the plan.
PixelFit FitOf(const PictureState& state, const WritePlan& plan, const SaveOptions& options,
               int threads);

/// Brings the pixels into the form of the target and writes them. `state` gives metadata and
/// position. All that is lost on the way is added to `changes`.
WrittenPicture WritePixels(Pixels pixels, const PictureState& state, const PictureSource& source,
                           const WritePlan& plan, const SaveOptions& options, int threads,
                           PictureTarget& target, Changes& changes);

/// Copies or moves the compressed pixels.
WrittenPicture CopyPixels(const PictureSource& source, const PictureState& state,
                          const WritePlan& plan, PictureTarget& target, Changes& changes);

/// What writing would give, shown by a small picture of the same kind.
Report Foresee(const PictureSource& source, const PictureState& state, WritePlan plan,
               const SaveOptions& options);

/// True if something of the file is made of all pixels before the first one is written.
bool NeedsWhole(const PictureSource& source, const PictureState& state, PictureType type);

/// Says in the report what a call holds at most. `takesRows`: pixels are encoded as their rows
/// come.
void StateNeeds(const PictureSource& source, const PictureState& state, const WritePlan& plan,
                bool takesRows, Report& report);

}  // namespace rasterkit::detail
