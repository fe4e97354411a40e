#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/metafiles/read_metafile_facts.h>

namespace rasterkit {

/// A Windows metafile (WMF) or enhanced metafile (EMF): records that are played whenever the
/// picture is drawn.
///
/// Copies share the records, which never change. The flag `Enhanced` states the format in which the
/// metafile is saved; loading sets it to the format of the file.
class RASTERKIT_EXPORT TMetafile : public TGraphic {
 public:
  /// The format in which the metafile is saved: enhanced (EMF) if true, else WMF.
  bool Enhanced() const { return enhanced_; }
  void SetEnhanced(bool value) { enhanced_ = value; }

  /// Size in pixels at 96 dpi; a metafile without records is 0 x 0.
  int Width() const override { return facts_.width; }
  int Height() const override { return facts_.height; }
  /// Size in 0.01 mm.
  int MMWidth() const { return facts_.widthMm100; }
  int MMHeight() const { return facts_.heightMm100; }
  /// True if a drawing at its own size fits the amount of data: at most 256 MiB, or 1024 pixels per
  /// byte of the file. Always true if the limits of the thread allow implausible sizes (see
  /// Limits).
  bool IsSizePlausible() const;
  /// Properties of the metafile, read once when it is loaded; all 0 without records.
  const MetafileFacts& Facts() const { return facts_; }
  /// The file as it was loaded; empty without records. Valid until the next load, assignment or
  /// destruction.
  std::span<const uint8_t> Bytes() const;

  /// Loads either format, detected by content. Throws FormatError if the data is neither WMF nor
  /// EMF.
  void LoadFromStream(TStream& stream) override;
  /// Saves in the format that the flag states. The same format is written unchanged. EMF is
  /// converted to a placeable WMF file with one bitmap of the picture at 96 dpi. WMF is converted
  /// to an EMF file that draws the same, record by record. Throws FormatError without records,
  /// LimitError if the format cannot hold the picture.
  void SaveToStream(TStream& stream) override;
  /// Draws into the rectangle of the canvas. Pixels that the records do not paint keep their color;
  /// in a 32-bit bitmap, the whole rectangle gets alpha 255. Throws UnsupportedError if the drawing
  /// consists of EMF+ records only.
  void DrawTo(TCanvas& canvas, const TRect& place) const override;
  /// Assigns the drawing on white as a 24-bit bitmap at 96 dpi. Throws UnsupportedError without
  /// records, or if the drawing consists of EMF+ records only; LimitError if its size is not
  /// plausible.
  void AssignToBitmap(TBitmap& target) const override;

  /// Returns the drawing on `background` at any size as pf32bit with alpha 255. `keepGoing`, if
  /// set, is called every 64 records; drawing stops if it returns false. Problems in the records
  /// are appended to `warnings`. Throws the errors of `AssignToBitmap`, LimitError if the picture
  /// memory budget is exceeded, RangeError if width or height is below 1.
  Raster Draw(int width, int height, TColor background = clWhite,
              const std::function<bool()>& keepGoing = {},
              std::vector<std::string>* warnings = nullptr) const;

 protected:
  /// Shares the records of another metafile and keeps the flag `Enhanced`. Throws UnsupportedError
  /// for other sources.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  void RequireRecords() const;
  void RequirePlausibleSize() const;

  bool enhanced_ = true;
  std::shared_ptr<const std::vector<uint8_t>> bytes_;
  MetafileFacts facts_;
};

}  // namespace rasterkit
