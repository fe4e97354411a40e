#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/metafiles/read_metafile_facts.h>

namespace rasterkit {

/// A Windows metafile (WMF) or enhanced metafile (EMF): records that are drawn on demand.
///
/// The records are shared between copies and never change. `Enhanced` tells what the metafile
/// counts as and is saved as; loading sets it to the format of the file.
class RASTERKIT_EXPORT TMetafile : public TGraphic {
 public:
  /// Whether it counts as an enhanced metafile (EMF) or as a Windows metafile (WMF).
  bool Enhanced() const { return enhanced_; }
  void SetEnhanced(bool value) { enhanced_ = value; }

  /// Size at 96 pixels per inch; a metafile without records is 0 x 0.
  int Width() const override { return facts_.width; }
  int Height() const override { return facts_.height; }
  /// Size in 0.01 mm.
  int MMWidth() const { return facts_.widthMm100; }
  int MMHeight() const { return facts_.heightMm100; }
  /// Facts stated by the records; all 0 without records.
  const MetafileFacts& Facts() const { return facts_; }
  /// The file as it was loaded.
  std::span<const uint8_t> Bytes() const;

  /// Loads a WMF or EMF file, whatever its extension. Throws FormatError if the data is neither WMF
  /// nor EMF.
  void LoadFromStream(TStream& stream) override;
  /// Saves as EMF if `Enhanced` is set, else as WMF. Bytes of that format are written unchanged. An
  /// enhanced metafile becomes a placeable WMF file that holds the picture as one bitmap at 96
  /// pixels per inch; a Windows metafile is translated record by record into an EMF file that draws
  /// the same. Throws FormatError without records, LimitError if the format cannot hold the
  /// picture.
  void SaveToStream(TStream& stream) override;
  /// Draws into a rectangle of the canvas. What the records do not paint keeps its color; in a
  /// 32-bit bitmap the whole rectangle gets alpha 255. Throws UnsupportedError if the drawing
  /// consists of EMF+ records only.
  void DrawTo(TCanvas& canvas, const TRect& place) const override;
  /// Draws on white into a 24-bit bitmap of 96 dots per inch. Throws UnsupportedError as `DrawTo`
  /// does, and without records.
  void AssignToBitmap(TBitmap& target) const override;

  /// Draws on `background` at any size, as 32 bits with alpha 255. `keepGoing` is called now and
  /// then and cancels drawing by returning false; `warnings` gets the defects of the records.
  /// Throws as `AssignToBitmap` does, LimitError beyond the picture memory budget, RangeError for a
  /// size below 1.
  Raster Draw(int width, int height, TColor background = clWhite,
              const std::function<bool()>& keepGoing = {},
              std::vector<std::string>* warnings = nullptr) const;

 protected:
  /// Shares the records of another metafile and keeps `Enhanced`. Throws UnsupportedError for any
  /// other class.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  void RequireRecords() const;

  bool enhanced_ = true;
  std::shared_ptr<const std::vector<uint8_t>> bytes_;
  MetafileFacts facts_;
};

}  // namespace rasterkit
