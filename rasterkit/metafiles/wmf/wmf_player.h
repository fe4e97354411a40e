#pragma once

#include <optional>
#include <queue>

#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/metafiles/records/player_objects.h>
#include <rasterkit/metafiles/wmf/wmf_picture.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {

/// The handle table of a WMF file: a record that creates an object does not name a handle; the
/// object gets the lowest free one.
class WmfObjects {
 public:
  void Add(MetafileObject object);
  /// Returns the handle that the last `Add` assigned.
  size_t Last() const { return last_; }
  void Delete(size_t handle);
  /// Returns null for a free handle.
  const MetafileObject* Find(size_t handle) const;

 private:
  std::vector<std::optional<MetafileObject>> objects_;
  std::priority_queue<size_t, std::vector<size_t>, std::greater<>> free_;
  size_t last_ = 0;
};

/// A mapping mode of a WMF file, and the window and viewport to set with it so that the picture's
/// box stays visible.
struct WmfMode {
  MapMode mode = MapMode::anisotropic;
  std::optional<PointD> windowOrg, windowExt, viewportExt;
};

/// Returns the effect of a mapping mode record; nothing for modes that are ignored.
std::optional<WmfMode> WmfModeOf(uint16_t number, const WmfPicture& picture);

/// Returns whether the record creates an object, which gets the lowest free handle.
bool MakesObject(WmfFunction function);

/// Plays the records of a WMF file on a drawing context, one at a time.
class WmfPlayer {
 public:
  /// `context` must outlive the player; `fileBytes` limits the size of bitmaps.
  WmfPlayer(DeviceContext& context, const WmfPicture& picture, uint64_t fileBytes);

  /// Returns false if the record type is unknown. Throws an Error if the record is damaged; the
  /// context stays usable.
  bool Play(const WmfRecord& record);

  const WmfObjects& Objects() const { return objects_; }
  const WmfPicture& Picture() const { return picture_; }
  /// Convert from pixels of the file's device to pixels of this device: a length, and the origin of
  /// a viewport.
  PointD ViewportScaled(PointD recorded) const;
  PointD ViewportPlace(PointD recorded) const;

 private:
  // Each returns whether the record belongs to its family.
  bool PlayShape(const WmfRecord& record);
  bool PlayPoints(const WmfRecord& record);
  bool PlayState(const WmfRecord& record);
  bool PlayMapping(const WmfRecord& record);
  bool PlayObject(const WmfRecord& record);
  bool PlayPalette(const WmfRecord& record);
  bool PlayRegion(const WmfRecord& record);
  bool PlayBitmap(const WmfRecord& record);
  bool PlayText(const WmfRecord& record);

  /// Creates the object of a record; a damaged object also takes its handle.
  bool CreateObject(const WmfRecord& record);
  MetafileObject ReadObject(const WmfRecord& record);
  BrushObject ReadBitmapBrush(const WmfRecord& record);
  void Select(size_t handle);
  void SelectClip(size_t handle);
  const RegionObject& RegionOf(size_t handle) const;
  const LogicalBrush& BrushOf(size_t handle) const;
  TColor Color(MetafileBytes& fields) const {
    return StatedColor(fields.Long(), context_.Palette());
  }

  Dib Bitmap(std::span<const uint8_t> packed, DibColors colors);
  void Blit(const WmfRecord& record, bool isStretched, bool isDeviceBitmap);
  void StretchBits(const WmfRecord& record);
  void SetBits(const WmfRecord& record);

  DeviceContext& context_;
  const WmfPicture picture_;
  DibReader dibs_;
  WmfObjects objects_;
  /// The first viewport extent that the file sets; it stands for the whole picture.
  std::optional<PointD> firstViewport_;
};

}  // namespace rasterkit::detail
