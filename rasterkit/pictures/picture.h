#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <rasterkit/codecs/picture_type.h>
#include <rasterkit/codecs/rows/form.h>
#include <rasterkit/graphics/bitmap.h>
#include <rasterkit/metadata/metadata.h>
#include <rasterkit/pictures/open_options.h>
#include <rasterkit/pictures/report.h>
#include <rasterkit/pictures/row_sink.h>
#include <rasterkit/pictures/run.h>
#include <rasterkit/pictures/saving_options.h>
#include <rasterkit/pictures/steps.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/raster/samples.h>
#include <rasterkit/runtime/export.h>
#include <rasterkit/runtime/files/stream.h>

namespace rasterkit {

namespace detail {
class PictureSource;
struct PictureState;
struct PictureParts;
}  // namespace detail

/// A picture as a value: a source that is never changed, and the steps that lead to what is wanted.
///
///     Picture photo = Picture::Open("photo.jpg");       // headers only; upright from here on
///     photo.Crop({100, 0, 800, 600}).Resize(400, 300);
///     const Report report = photo.Save("part.jpg");     // report.losses: what the file lacks
///
/// Copies are cheap: they share the source. The facts (Width, GetMetadata and so on) are those
/// after the steps so far and need no pixel. Pixels are read by the calls that take a `Run`. Const
/// calls may be made from several threads at once. Errors are of the family of Error, with file and
/// reason.
class RASTERKIT_EXPORT Picture {
 public:
  /// Reads the headers, once, and keeps the file open: a later Save reads its pixels even if the
  /// name is then another file's, and throws FileError if the open file itself was changed. The
  /// orientation of EXIF or TIFF becomes the first step, unless the options say otherwise. Throws
  /// FileError, FormatError, UnsupportedError, LimitError.
  static Picture Open(const std::string& file, const OpenOptions& options = {});
  /// Takes over the bytes of a file.
  static Picture Open(std::vector<uint8_t> bytes, const OpenOptions& options = {});
  /// Takes over the rows, without a copy. Throws FormatError for 0 x 0 pixels.
  static Picture Of(std::unique_ptr<TBitmap> rows);
  static Picture Of(Samples rows);

  Picture(const Picture&);
  Picture(Picture&&) noexcept;
  Picture& operator=(Picture) noexcept;
  ~Picture();

  int Width() const;
  int Height() const;
  /// Kind of the pixels after the steps; as stored if there are none.
  const PixelLayout& Layout() const;
  const Metadata& GetMetadata() const;
  const Placement& GetPlacement() const;
  /// Facts of the file. `unknown` for rows in memory.
  PictureType SourceType() const;
  const Form& SourceForm() const;
  const std::string& SourceFile() const;
  /// Pictures of the file: pages or frames.
  int Pages() const;
  /// The steps, those of the orientation first.
  const std::vector<Step>& Steps() const;
  /// How many of them turn the source upright.
  size_t OrientationSteps() const;

  /// Adds a step. Throws RangeError if it does not fit the picture after the steps so far.
  Picture& Apply(Step step);
  Picture& Turn(int quarters) { return Apply(TurnStep{quarters}); }
  Picture& Mirror(MirrorAxis axis) { return Apply(MirrorStep{axis}); }
  Picture& Rotate(double degrees, const RotateOptions& options = {}) {
    return Apply(RotateStep{degrees, options});
  }
  Picture& Crop(const CropStep& rect) { return Apply(rect); }
  /// Crops to a part of the map: each edge goes to the nearest pixel corner (halves to even), at
  /// least one pixel; the bounding box where the position is turned. Adds a CropStep. Throws
  /// RangeError without a position.
  Picture& CropToMap(const MapRect& rect);
  Picture& Resize(int width, int height, const ResizeOptions& options = {}) {
    return Apply(ResizeStep{width, height, options});
  }
  Picture& Change(const ColorChange& change) { return Apply(ChangeStep{change}); }
  /// How numbers of more than 8 bits are shown from here on; see StretchStep.
  Picture& Stretch(const NumberStretch& stretch) { return Apply(StretchStep{stretch}); }
  Picture& Combine(const Picture& other, const CombineOptions& options = {});
  Picture& Edit(const MetadataEdit& edit) { return Apply(EditStep{edit}); }

  /// What Save would do; reads no pixel and writes nothing.
  Report Plan(const std::string& file, const SaveOptions& options = {}) const;
  /// What Save to a stream would do, which has no files beside it.
  Report PlanStream(const SaveOptions& options = {}) const;
  /// Writes the file, and the files beside it that state its position, as a whole or not at all. A
  /// page of a TIFF file, saved as one, keeps the other pages (see SaveOptions::onlyThisPage).
  Report Save(const std::string& file, const SaveOptions& options = {}, const Run& run = {}) const;
  /// The same without files beside it; `options.type` or the source's kind.
  Report Save(TStream& stream, const SaveOptions& options = {}, const Run& run = {}) const;
  /// The pixels to look at, 1 to 32 bits.
  std::unique_ptr<TBitmap> Bitmap(const Run& run = {}) const;
  /// The thumbnail inside of the source's metadata, upright and with the source's profile if it has
  /// none of its own; steps of this picture are not part of it. `options` say where it is decoded.
  /// Nothing if there is none, or none that can be read.
  std::optional<Picture> EmbeddedThumbnail(const OpenOptions& options = {},
                                           const Run& run = {}) const;
  /// The pixels as they are.
  Samples Numbers(const Run& run = {}) const;
  /// The pixels to look at, from top to bottom.
  void Rows(RowSink& sink, const Run& run = {}) const;

 private:
  friend struct detail::PictureParts;
  explicit Picture(std::shared_ptr<const detail::PictureSource> source, bool turnsUpright = true);

  std::shared_ptr<const detail::PictureSource> source_;
  std::vector<Step> steps_;
  size_t orientationSteps_ = 0;
  std::shared_ptr<const detail::PictureState> state_;
};

}  // namespace rasterkit
