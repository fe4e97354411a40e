#pragma once

#include <rasterkit/metafiles/emf/emf_writer.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {

/// Writes records of a Windows metafile as those of an enhanced one.
///
/// Beside it a player follows the same records: objects, mapping and fonts are as they are at the
/// record that is written.
class WmfRecorder {
 public:
  /// `picture` is the window of a new context and the size of the device in pixels. Context and
  /// player are those that `Record` is told of; all stay alive as long as the recorder.
  WmfRecorder(EmfWriter& writer, DeviceContext& context, const WmfPlayer& player,
              const WmfPicture& picture);

  /// Writes a record that the player has played; one that leaves nothing to be seen is left out.
  /// Throws an Error for a damaged one.
  void Record(const WmfRecord& record);
  /// Handles that the records use, number 0 included.
  size_t Handles() const { return handles_; }

 private:
  /// What SaveDC puts by of what the player does not tell.
  struct State {
    bool hasPen = true;
    /// Absent: the palette of a new context.
    std::optional<size_t> palette;
    double textExtra = 0;
    ArcDirection arcs = ArcDirection::counterclockwise;
    PointD windowOrg, viewportOrg;
  };

  // Each answers whether the record is one of its family.
  bool RecordShape(const WmfRecord& record);
  bool RecordPoints(const WmfRecord& record);
  bool RecordPixels(const WmfRecord& record);
  bool RecordState(const WmfRecord& record);
  bool RecordMode(const WmfRecord& record);
  bool RecordMapping(const WmfRecord& record);
  bool RecordObject(const WmfRecord& record);
  bool RecordRegion(const WmfRecord& record);
  bool RecordBitmap(const WmfRecord& record);
  bool RecordText(const WmfRecord& record);

  void Save();
  void Restore(int32_t number);
  void Select(size_t handle);
  void SelectClip(const RegionObject* region);
  void Create(size_t handle);
  void CreatePen(size_t handle, const LogicalPen& pen);
  void CreateBrush(size_t handle, const LogicalBrush& brush);
  void CreateFont(size_t handle, const LogicalFont& font);
  void CreatePalette(size_t handle, const HPALETTE& palette);
  bool RecordPalette(const WmfRecord& record);
  const RegionObject* RegionOf(size_t handle) const;
  void FillRegion(EmfType type, const WmfRecord& record);

  /// Device pixels a logical unit; negative where the axis points the other way.
  PointD Scale() const;
  /// A box with the corners that the pen reaches.
  RectD Reached(const RectD& box) const;
  void Arc(EmfType type, const WmfRecord& record);

  void Blit(const WmfRecord& record, bool isStretched, bool isDeviceBitmap);
  void PatBlt(const RectD& dest, uint32_t operation);
  void StretchBits(const WmfRecord& record);
  void SetBits(const WmfRecord& record);

  std::vector<double> MeasuredSteps(const std::u16string& text, PointD origin);

  EmfWriter& writer_;
  DeviceContext& context_;
  const WmfPlayer& player_;
  State state_;
  std::vector<State> saved_;
  /// SaveDC beyond what is kept.
  int64_t savedBeyond_ = 0;
  size_t handles_ = 1;
};

}  // namespace rasterkit::detail
