#pragma once

#include <unordered_map>

#include <rasterkit/metafiles/emf/emf_records.h>
#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/metafiles/records/player_objects.h>

namespace rasterkit::detail {

/// Plays the records of an EMF file on a drawing context, one at a time.
class EmfPlayer {
 public:
  /// `context` must outlive the player; `fileBytes` limits the size of bitmaps.
  EmfPlayer(DeviceContext& context, uint64_t fileBytes);

  /// Returns false if the record type is unknown. Throws an Error if the record is damaged; the
  /// context stays usable.
  bool Play(const EmfRecord& record);

 private:
  // Each returns whether the record belongs to its family.
  bool PlayLine(const EmfRecord& record);
  bool PlayShape(const EmfRecord& record);
  bool PlayState(const EmfRecord& record);
  bool PlayMapping(const EmfRecord& record);
  bool PlayObject(const EmfRecord& record);
  bool PlayPalette(const EmfRecord& record);
  bool PlayPath(const EmfRecord& record);
  bool PlayRegion(const EmfRecord& record);
  bool PlayBitmap(const EmfRecord& record);
  bool PlayText(const EmfRecord& record);

  /// The size of a record's coordinates: 16 or 32 bits.
  enum class PointSize { words, longs };
  std::span<const PointD> Points(MetafileBytes& fields, size_t count, PointSize size);
  /// Reads bounds, a count and points.
  std::span<const PointD> CountedPoints(const EmfRecord& record, PointSize size);
  void Polygons(const EmfRecord& record, PointSize size, bool isFilled);
  void PolyDraw(const EmfRecord& record, PointSize size);
  void Gradient(const EmfRecord& record);

  void Select(uint32_t handle);
  void CreatePen(const EmfRecord& record);
  void CreateExtendedPen(const EmfRecord& record);
  void CreateFont(const EmfRecord& record);
  void CreatePatternBrush(const EmfRecord& record, bool isMono);
  BrushObject BrushOf(uint32_t handle) const;
  /// Returns null if the handle is not a palette.
  PaletteObject PaletteOf(uint32_t handle) const;
  /// Stores an object under its handle. Throws RangeError for a handle of 0x10000 or more.
  void Keep(uint32_t handle, MetafileObject object);
  TColor Color(MetafileBytes& fields) const {
    return StatedColor(fields.Long(), context_.Palette());
  }

  /// The place of a bitmap in a record: offsets and sizes of header and rows.
  struct BitmapPlace {
    uint32_t headOffset = 0, headBytes = 0, bitsOffset = 0, bitsBytes = 0;
    bool IsEmpty() const { return headBytes == 0; }
  };
  static BitmapPlace ReadPlace(MetafileBytes& fields);
  Dib Bitmap(const EmfRecord& record, const BitmapPlace& place, DibRequest request);
  /// A bitmap, the part of it to draw, and an optional mask.
  struct MaskedBitmap {
    Dib dib;
    RectD box;
    std::optional<Dib> mask;
    PixelPoint maskOrigin;
    BitmapPart Part() const { return {dib.raster, box}; }
  };
  MaskedBitmap ReadMasked(const EmfRecord& record, MetafileBytes& fields, const RectD& box);
  void Blit(const EmfRecord& record);
  void Mask(const EmfRecord& record);
  void Parallelogram(const EmfRecord& record);
  void StretchBits(const EmfRecord& record);
  void SetBits(const EmfRecord& record);

  struct TextPlace {
    PointD origin;
    uint32_t count = 0, offset = 0, options = 0;
    RectD box;
    uint32_t stepsOffset = 0;
  };
  enum class LetterSize { bytes, words };
  struct Letters {
    std::u16string_view text;
    std::span<const double> steps, verticalSteps;
  };
  static TextPlace ReadTextPlace(MetafileBytes& fields);
  void DrawText(const EmfRecord& record, const TextPlace& place, LetterSize size, uint32_t mode);
  void ShowText(const TextPlace& place, uint32_t mode, const Letters& letters);
  void SmallText(const EmfRecord& record);
  void ManyTexts(const EmfRecord& record, LetterSize size);

  DeviceContext& context_;
  DibReader dibs_;
  std::unordered_map<uint32_t, MetafileObject> objects_;
  /// Reused for all records, as most have few points.
  std::vector<PointD> points_;
};

}  // namespace rasterkit::detail
