#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include <rasterkit/graphics/graphic.h>
#include <rasterkit/metafiles/read_metafile_facts.h>

namespace rasterkit {

/// A Windows or enhanced metafile: records that are drawn when somebody looks.
///
/// The records are shared between copies and never change. The mark `Enhanced` says what the
/// metafile counts as, and what it is saved as; loading sets it to what the bytes are.
class RASTERKIT_EXPORT TMetafile : public TGraphic {
 public:
  /// Whether it counts as an enhanced metafile (EMF) or as a Windows metafile (WMF).
  bool Enhanced() const { return enhanced_; }
  void SetEnhanced(bool value) { enhanced_ = value; }

  /// Size at 96 pixels an inch; a metafile without records is 0 x 0.
  int Width() const override { return facts_.width; }
  int Height() const override { return facts_.height; }
  /// Size in 0.01 mm.
  int MMWidth() const { return facts_.widthMm100; }
  int MMHeight() const { return facts_.heightMm100; }
  /// What the records say about themselves; all 0 without records.
  const MetafileFacts& Facts() const { return facts_; }
  /// The file as it was loaded.
  std::span<const uint8_t> Bytes() const;

  /// Takes either kind, whatever the file is called. Throws FormatError for bytes that are none.
  void LoadFromStream(TStream& stream) override;
  /// Writes the kind that the mark names: the bytes as they are where they are of that kind; else
  /// an enhanced metafile becomes a placeable WMF file with the picture, at 96 pixels an inch, as
  /// one bitmap in it, and a Windows metafile becomes an EMF file that draws the same, record by
  /// record. Throws FormatError without records, LimitError for what the kind cannot hold.
  void SaveToStream(TStream& stream) override;
  /// Draws into the rectangle of the canvas; what the records do not paint keeps its color, and of
  /// a 32-bit bitmap all of the rectangle gets alpha 255. Throws UnsupportedError where the drawing
  /// is in EMF+ records alone.
  void DrawTo(TCanvas& canvas, const TRect& place) const override;
  /// A bitmap of 24 bits and 96 pixels an inch with the drawing on white. Throws UnsupportedError
  /// as `DrawTo` does, and without records.
  void AssignToBitmap(TBitmap& target) const override;

  /// The drawing on `background` at any size, as 32 bits with alpha 255. `keepGoing` is asked now
  /// and then, and ends the drawing by answering false; `warnings` gets what is wrong with the
  /// records. Throws as `AssignToBitmap` does, LimitError beyond the picture memory budget,
  /// RangeError for a size below 1.
  Raster Draw(int width, int height, TColor background = clWhite,
              const std::function<bool()>& keepGoing = {},
              std::vector<std::string>* warnings = nullptr) const;

 protected:
  /// Another metafile shares its records and leaves this one's mark as it is; anything else throws
  /// UnsupportedError.
  void AssignFrom(const TGraphic& source) override;
  void Clear() override;

 private:
  void RequireRecords() const;

  bool enhanced_ = true;
  std::shared_ptr<const std::vector<uint8_t>> bytes_;
  MetafileFacts facts_;
};

}  // namespace rasterkit
