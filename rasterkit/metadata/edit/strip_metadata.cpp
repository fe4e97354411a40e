#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

#include <rasterkit/metadata/edit/exif_editor.h>
#include <rasterkit/metadata/edit/metadata_items.h>
#include <rasterkit/metadata/edit/strip_metadata.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/exif_tags_of_tiff.h>
#include <rasterkit/metadata/foreign_blocks.h>
#include <rasterkit/metadata/image_resources.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/errors.h>

namespace rasterkit::detail {
namespace {

using Id = ExifDirectoryId;

/// The copy of a maker note in files of converters.
constexpr uint16_t kPrivateNote = 50740;

bool IsOfColors(const OtherBlock& chunk) {
  constexpr std::array kKinds = {PngKind("sRGB"), PngKind("gAMA"), PngKind("cHRM"),
                                 PngKind("cICP"), PngKind("mDCV"), PngKind("cLLI")};
  return std::find(kKinds.begin(), kKinds.end(), chunk.kind) != kKinds.end();
}

/// Without these numbers the samples could not be read: inks, the range of the samples, opacity.
bool IsOfSamples(const TagValue& tag) {
  constexpr std::array<uint16_t, 6> kTags = {332, 333, 334, 336, 338, 339};
  return std::find(kTags.begin(), kTags.end(), tag.tag) != kTags.end();
}

/// The orientation that a block states; nothing if the picture is upright.
std::optional<int> TurnedBy(const std::vector<uint8_t>& exif) {
  if (exif.empty()) return std::nullopt;
  const auto orientation = OrientationOf(ExifBlock(exif));
  return orientation == 1 ? std::nullopt : orientation;
}

/// What a block states of the resolution without a unit of length. A TIFF file must state some.
std::vector<TagValue> AspectIn(const Metadata& metadata, const EditedPicture& picture) {
  const bool isStated = metadata.resolution.IsKnown() || metadata.exif.empty();
  if (isStated || picture.format != EditedPicture::Format::tiff) return {};
  const ExifBlock block(metadata.exif);
  std::vector<TagValue> tags;
  for (const uint16_t tag : {exif::kResolutionX, exif::kResolutionY, exif::kResolutionUnit}) {
    if (auto value = block.Get(Id::main, tag)) tags.push_back(std::move(*value));
  }
  return tags;
}

/// Makes a damaged block anew without its maker note.
std::vector<uint8_t> Rebuilt(const ExifBlock& damaged, Changes& changes) {
  TiffDirectories tags = TagsOfExif(damaged.Bytes());
  std::erase_if(tags.exif, [](const TagValue& tag) { return tag.tag == exif::kMakerNote; });
  changes.Note("the damaged EXIF block was made anew of the tags that can be read");
  if (damaged.HasThumbnail()) {
    changes.Lose(LossKind::thumbnail, "the thumbnail", "the EXIF block is damaged");
  }
  return ExifOfTags(tags.main, tags.exif, tags.gps, tags.interop, tags.isBigEndian);
}

}  // namespace

void StripAll(Metadata& metadata, bool dropsProfile, const EditedPicture& picture) {
  Metadata kept;
  kept.resolution = metadata.resolution;
  kept.hasJfif = metadata.hasJfif;
  const std::optional<int> orientation = picture.isTurned ? std::nullopt : TurnedBy(metadata.exif);
  const std::vector<TagValue> aspect = AspectIn(metadata, picture);
  if (!dropsProfile) {
    kept.profile = metadata.profile;
    std::copy_if(metadata.pngChunks.begin(), metadata.pngChunks.end(),
                 std::back_inserter(kept.pngChunks), IsOfColors);
  }
  std::copy_if(metadata.tiffTags.begin(), metadata.tiffTags.end(),
               std::back_inserter(kept.tiffTags), IsOfSamples);
  metadata = std::move(kept);
  if (!orientation && aspect.empty()) return;
  ExifEditor editor(metadata, picture);
  for (const TagValue& value : aspect) editor.Set(Id::main, value);
  if (orientation) {
    editor.Block().SetWords(Id::main, exif::kOrientation,
                            std::array{static_cast<uint16_t>(*orientation)});
  }
  editor.Finish();
}

void StripThumbnails(Metadata& metadata) {
  if (!metadata.exif.empty()) {
    ExifBlock exif(std::exchange(metadata.exif, {}));
    if (!exif.IsDamaged()) {
      exif.RemoveThumbnail();
    } else if (!exif.EraseThumbnail()) {
      throw FormatError("EXIF: the thumbnail's directory reaches beyond the section");
    }
    metadata.exif = exif.TakeBytes();
  }
  ImageResources resources(metadata.photoshop);
  const bool hadThumbnail = resources.Remove(image_resource::kThumbnail);
  if (resources.Remove(image_resource::kOldThumbnail) || hadThumbnail) {
    metadata.photoshop = resources.Bytes();
  }
  for (std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    XmpPacket packet(*text);
    if (packet.Remove(xmp_name::kXmp, "Thumbnails")) *text = packet.Text();
  }
}

void StripMakerNote(Metadata& metadata, Changes& changes) {
  std::erase_if(metadata.tiffTags, [](const TagValue& tag) { return tag.tag == kPrivateNote; });
  for (std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    XmpPacket packet(*text);
    if (packet.Remove(xmp_name::kExif, "MakerNote")) *text = packet.Text();
  }
  RemoveItems(metadata, {"makernote"});
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::exchange(metadata.exif, {}));
  if (exif.IsDamaged()) {
    metadata.exif = Rebuilt(exif, changes);
    return;
  }
  if (exif.Has(Id::exif, exif::kMakerNote)) {
    exif.Remove(Id::exif, exif::kMakerNote);
    exif.EraseUnused();
  }
  metadata.exif = exif.TakeBytes();
}

}  // namespace rasterkit::detail
