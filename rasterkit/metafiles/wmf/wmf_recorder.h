#pragma once

#include <rasterkit/metafiles/emf/emf_writer.h>
#include <rasterkit/metafiles/wmf/wmf_player.h>

namespace rasterkit::detail {

/// Converts WMF records to EMF records.
///
/// A player must play the same records in parallel, so that objects, mapping and fonts have their
/// state at the record that is converted.
class WmfRecorder {
 public:
  /// `picture` is the initial window and the size of the device. `context` and `player` are those
  /// that play the records. All arguments must outlive the recorder.
  WmfRecorder(EmfWriter& writer, DeviceContext& context, const WmfPlayer& player,
              const WmfPicture& picture);

  /// Converts a record that the player has just played; records without a visible effect are
  /// dropped. Throws an Error if the record is damaged.
  void Record(const WmfRecord& record);
  /// Returns the number of used handles, including the reserved handle 0.
  size_t Handles() const { return handles_; }

 private:
  /// The part of the SaveDC state that the player does not provide.
  struct State {
    bool hasPen = true;
    /// Absent: the initial palette.
    std::optional<size_t> palette;
    double textExtra = 0;
    ArcDirection arcs = ArcDirection::counterclockwise;
    PointD windowOrg, viewportOrg;
  };

  // Each returns whether the record belongs to its family.
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

  /// Returns device pixels per logical unit; negative if an axis is flipped.
  PointD Scale() const;
  /// Returns the box extended to the edges that the pen reaches.
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
  /// Number of SaveDC calls beyond the limit of kept states.
  int64_t savedBeyond_ = 0;
  size_t handles_ = 1;
};

}  // namespace rasterkit::detail
