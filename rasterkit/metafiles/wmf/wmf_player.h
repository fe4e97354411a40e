#pragma once

#include <optional>
#include <queue>

#include <rasterkit/metafiles/records/dib_reader.h>
#include <rasterkit/metafiles/records/player_objects.h>
#include <rasterkit/metafiles/wmf/wmf_picture.h>
#include <rasterkit/metafiles/wmf/wmf_records.h>

namespace rasterkit::detail {

/// Handles of a Windows metafile: records create objects without naming a handle, and each takes
/// the lowest one that is free.
class WmfObjects {
 public:
  void Add(MetafileObject object);
  /// The handle that the last `Add` gave.
  size_t Last() const { return last_; }
  void Delete(size_t handle);
  /// Null for a handle that is free.
  const MetafileObject* Find(size_t handle) const;

 private:
  std::vector<std::optional<MetafileObject>> objects_;
  std::priority_queue<size_t, std::vector<size_t>, std::greater<>> free_;
  size_t last_ = 0;
};

/// A mapping mode of a Windows metafile, and what it sets beside itself so that the picture's box
/// is what is seen of it.
struct WmfMode {
  MapMode mode = MapMode::anisotropic;
  std::optional<PointD> windowOrg, windowExt, viewportExt;
};

/// What the record of a mapping mode does; nothing for one that is left out.
std::optional<WmfMode> WmfModeOf(uint16_t number, const WmfPicture& picture);

/// Whether records of this kind make an object and give it the lowest handle that is free.
bool MakesObject(WmfFunction function);

/// Plays the records of a Windows metafile onto a drawing context, one at a time.
class WmfPlayer {
 public:
  /// `context` stays alive as long as the player; `fileBytes` bounds what bitmaps may cost.
  WmfPlayer(DeviceContext& context, const WmfPicture& picture, uint64_t fileBytes);

  /// False for a kind of record that is not known. Throws an Error when the record is damaged; the
  /// context may be used on.
  bool Play(const WmfRecord& record);

  const WmfObjects& Objects() const { return objects_; }
  const WmfPicture& Picture() const { return picture_; }
  /// Pixels of our device for those of the device that the file's viewport counts in: a length, and
  /// where a viewport begins.
  PointD ViewportScaled(PointD recorded) const;
  PointD ViewportPlace(PointD recorded) const;

 private:
  // Each answers whether the record is one of its family.
  bool PlayShape(const WmfRecord& record);
  bool PlayPoints(const WmfRecord& record);
  bool PlayState(const WmfRecord& record);
  bool PlayMapping(const WmfRecord& record);
  bool PlayObject(const WmfRecord& record);
  bool PlayPalette(const WmfRecord& record);
  bool PlayRegion(const WmfRecord& record);
  bool PlayBitmap(const WmfRecord& record);
  bool PlayText(const WmfRecord& record);

  /// Reads an object of a record; one that cannot be drawn with takes its handle all the same.
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
  /// The first viewport that the file sets, which is taken for the whole picture.
  std::optional<PointD> firstViewport_;
};

}  // namespace rasterkit::detail
