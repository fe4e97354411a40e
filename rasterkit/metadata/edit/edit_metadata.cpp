#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include <fmt/format.h>

#include <rasterkit/metadata/edit/edit_metadata.h>
#include <rasterkit/metadata/edit/exif_editor.h>
#include <rasterkit/metadata/edit/exif_tag_table.h>
#include <rasterkit/metadata/edit/iptc_records.h>
#include <rasterkit/metadata/edit/position_edit.h>
#include <rasterkit/metadata/edit/strip_metadata.h>
#include <rasterkit/metadata/edit/strip_position.h>
#include <rasterkit/metadata/edit/tag_names.h>
#include <rasterkit/metadata/edit/xmp_setting.h>
#include <rasterkit/metadata/exif_places.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/jpeg_names.h>
#include <rasterkit/metadata/jpeg_segments.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

using namespace detail;
using Id = ExifDirectoryId;

/// An EXIF block that states a resolution states the new one.
void SetResolutionOf(Metadata& metadata, const Resolution& resolution) {
  metadata.resolution = resolution;
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::exchange(metadata.exif, {}));
  if (!exif.IsDamaged() && exif.Has(Id::main, exif::kResolutionX)) {
    SetResolution(exif, resolution);
  }
  metadata.exif = exif.TakeBytes();
}

// --- Copies --------------------------------------------------------------------------------------

std::optional<int> Orientation(const std::vector<uint8_t>& exif) {
  return exif.empty() ? std::nullopt : OrientationOf(ExifBlock(exif));
}

/// The copied block describes this picture: its resolution, and its orientation if that is wanted.
void FitExif(Metadata& metadata, const std::vector<uint8_t>& old, bool keepsOrientation) {
  ExifBlock exif(std::exchange(metadata.exif, {}));
  if (!exif.IsDamaged()) {
    const bool statesResolution = exif.Has(Id::main, exif::kResolutionX);
    if (statesResolution && metadata.resolution.IsKnown()) {
      SetResolution(exif, metadata.resolution);
    }
    constexpr uint16_t kWord = 3;
    const auto stated = exif.Get(Id::main, exif::kOrientation);
    const bool isWord = stated && stated->type == kWord && stated->count == 1;
    const auto orientation = static_cast<uint16_t>(Orientation(old).value_or(1));
    if (keepsOrientation && isWord) {
      exif.SetWords(Id::main, exif::kOrientation, std::array{orientation});
    }
  }
  metadata.exif = exif.TakeBytes();
}

/// Segments of these kinds describe the photograph, in forms that only some programs know.
bool DescribesPhoto(const OtherBlock& segment, const MetadataCopy& copy) {
  constexpr uint32_t kApp1 = 0xE1, kApp2 = 0xE2, kApp12 = 0xEC, kApp13 = 0xED;
  if (segment.kind == kApp13) return copy.takesIptc;
  return copy.takesExif &&
         (segment.kind == kApp1 || segment.kind == kApp2 || segment.kind == kApp12);
}

void CopySegments(std::vector<OtherBlock>& segments, const std::vector<OtherBlock>& from,
                  const MetadataCopy& copy) {
  const auto describes = [&](const OtherBlock& segment) { return DescribesPhoto(segment, copy); };
  std::erase_if(segments, describes);
  std::copy_if(from.begin(), from.end(), std::back_inserter(segments), describes);
}

void Copy(Metadata& metadata, const MetadataCopy& copy) {
  const Metadata& from = *copy.from;
  if (copy.takesExif) {
    const std::vector<uint8_t> old = std::exchange(metadata.exif, from.exif);
    if (!metadata.exif.empty()) FitExif(metadata, old, copy.keepsOrientation);
  }
  if (copy.takesXmp) {
    metadata.xmp = from.xmp;
    metadata.extendedXmp = from.extendedXmp;
  }
  if (copy.takesIptc) {
    metadata.iptc = from.iptc;
    metadata.photoshop = from.photoshop;
  }
  CopySegments(metadata.jpegSegments, from.jpegSegments, copy);
  if (copy.takesComments) {
    metadata.comments = from.comments;
    metadata.texts = from.texts;
  }
  if (copy.takesProfile && !metadata.profile) metadata.profile = from.profile;
}

// --- Removed -------------------------------------------------------------------------------------

void RemoveExifTag(Metadata& metadata, const ExifTagFact& fact) {
  if (metadata.exif.empty()) return;
  ExifBlock exif(std::exchange(metadata.exif, {}));
  if (fact.form == ExifForm::fixed && fact.tag != exif::kMakerNote) {
    throw RangeError(std::string(fact.name) +
                     ": it says how the picture is stored and cannot be removed");
  }
  if (exif.IsDamaged()) {
    throw FormatError(
        "EXIF: the block is damaged and cannot be changed; it can be removed as a whole");
  }
  exif.Remove(fact.directory, fact.tag);
  const auto dropEmpty = [&](Id directory, Id parent, uint16_t pointer) {
    if (exif.All(directory).empty()) exif.Remove(parent, pointer);
  };
  dropEmpty(Id::interop, Id::exif, exif::kInteropPointer);
  dropEmpty(Id::exif, Id::main, exif::kExifPointer);
  dropEmpty(Id::gps, Id::main, exif::kGpsPointer);
  if (!exif.IsEmpty()) metadata.exif = exif.TakeBytes();
}

void RemoveIptc(Metadata& metadata, const IptcFact& fact) {
  IptcRecords records(metadata.iptc);
  if (records.Remove(fact.dataSet)) metadata.iptc = records.Bytes();
}

void RemoveNamed(Metadata& metadata, const NamedTag& tag) {
  if (tag.exif != nullptr) RemoveExifTag(metadata, *tag.exif);
  if (tag.iptc != nullptr) RemoveIptc(metadata, *tag.iptc);
  if (tag.xmp == nullptr) return;
  RemoveXmp(metadata.xmp, *tag.xmp);
  if (!metadata.extendedXmp.empty()) RemoveXmp(metadata.extendedXmp, *tag.xmp);
}

void RemoveGroup(Metadata& metadata, TagGroup group, const EditedPicture& picture,
                 Changes& changes) {
  switch (group) {
    case TagGroup::exif:
      metadata.exif.clear();
      return;
    case TagGroup::gps:
      StripPosition(metadata, changes);
      return;
    case TagGroup::xmp:
      metadata.xmp.clear();
      metadata.extendedXmp.clear();
      return;
    case TagGroup::iptc:
      metadata.iptc.clear();
      return;
    case TagGroup::comment:
      metadata.comments.clear();
      metadata.texts.clear();
      return;
    case TagGroup::makerNote:
      StripMakerNote(metadata, changes);
      return;
    case TagGroup::thumbnail:
      StripThumbnails(metadata);
      return;
    case TagGroup::all:
      StripAll(metadata, false, picture);
      return;
  }
}

// --- Set -----------------------------------------------------------------------------------------

/// Values of one property, in the order of the settings.
using Lists = std::vector<std::pair<NamedTag, std::vector<std::string>>>;

bool IsSame(const NamedTag& a, const NamedTag& b) {
  return a.exif == b.exif && a.iptc == b.iptc && a.xmp == b.xmp;
}

bool TakesSeveral(const NamedTag& tag) {
  if (tag.iptc != nullptr) return tag.iptc->isList;
  return tag.xmp != nullptr &&
         (tag.xmp->form == XmpForm::list || tag.xmp->form == XmpForm::orderedList);
}

Lists Gather(const std::vector<TagSetting>& settings) {
  Lists lists;
  for (const TagSetting& setting : settings) {
    const NamedTag tag = FindTag(setting.tag);
    const auto known = std::find_if(lists.begin(), lists.end(),
                                    [&](const auto& list) { return IsSame(list.first, tag); });
    if (known == lists.end()) {
      lists.push_back({tag, {setting.value}});
    } else if (TakesSeveral(tag)) {
      known->second.push_back(setting.value);
    } else {
      known->second = {setting.value};
    }
  }
  return lists;
}

/// A packet that states the same property of TIFF or EXIF would contradict the new value.
void RemoveMirror(Metadata& metadata, const ExifTagFact& fact) {
  for (std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    XmpPacket packet(*text);
    const bool isOfTiff = packet.Remove(xmp_name::kTiff, fact.name);
    if (packet.Remove(xmp_name::kExif, fact.name) || isOfTiff) *text = packet.Text();
  }
}

void SetOrientationInXmp(Metadata& metadata, const std::string& value) {
  for (std::string* text : {&metadata.xmp, &metadata.extendedXmp}) {
    if (text->empty()) continue;
    XmpPacket packet(*text);
    if (packet.Set(xmp_name::kTiff, "Orientation", value)) *text = packet.Text();
  }
}

void SetExif(Metadata& metadata, const Lists& lists, const EditedPicture& picture) {
  const auto isExif = [](const auto& list) { return list.first.exif != nullptr; };
  if (std::none_of(lists.begin(), lists.end(), isExif)) return;
  ExifEditor editor(metadata, picture);
  for (const auto& [tag, values] : lists) {
    if (tag.exif == nullptr) continue;
    editor.Set(*tag.exif, values.front());
  }
  editor.Finish();
  for (const auto& [tag, values] : lists) {
    if (tag.exif == nullptr) continue;
    const bool isOrientation =
        tag.exif->directory == Id::main && tag.exif->tag == exif::kOrientation;
    if (isOrientation) {
      SetOrientationInXmp(metadata, Trim(values.front()));
    } else {
      RemoveMirror(metadata, *tag.exif);
    }
  }
}

void SetIptc(Metadata& metadata, const IptcFact& fact, const std::vector<std::string>& values) {
  std::vector<std::string> texts;
  for (const std::string& value : values) texts.push_back(ReadIptcValue(fact, value));
  IptcRecords records(metadata.iptc);
  if (records.IsDamaged()) {
    throw FormatError("IPTC: the records are damaged and cannot be changed");
  }
  records.Set(fact.dataSet, texts);
  metadata.iptc = records.Bytes();
}

void SetXmpOf(Metadata& metadata, const XmpFact& fact, const std::vector<std::string>& values) {
  std::vector<std::string> texts;
  for (const std::string& value : values) texts.push_back(ReadXmpValue(fact, value));
  if (!metadata.extendedXmp.empty()) RemoveXmp(metadata.extendedXmp, fact);
  SetXmp(metadata.xmp, fact, texts);
}

void SetTags(Metadata& metadata, const std::vector<TagSetting>& settings,
             const EditedPicture& picture) {
  const Lists lists = Gather(settings);
  SetExif(metadata, lists, picture);
  for (const auto& [tag, values] : lists) {
    if (tag.iptc != nullptr) SetIptc(metadata, *tag.iptc, values);
    if (tag.xmp != nullptr) SetXmpOf(metadata, *tag.xmp, values);
  }
}

/// An edit that a JPEG file cannot hold would cost the whole block.
void CheckRoom(const Metadata& metadata, const MetadataEdit& edit, const EditedPicture& picture) {
  const bool adds = edit.copy || !edit.set.empty() || edit.gps || edit.date;
  const size_t most = kMostJpegPayload - kExifName.size();
  if (!adds || picture.format != EditedPicture::Format::jpeg || metadata.exif.size() <= most) {
    return;
  }
  ExifBlock exif(metadata.exif);
  exif.ShrinkTo(most);
  if (exif.Bytes().size() <= most) return;
  throw RangeError(fmt::format("EXIF: the block would have {} bytes, and a JPEG file holds {}",
                               exif.Bytes().size(), most));
}

/// Cameras can write coordinates into their notes, in forms that only they know.
void NoteMakerNote(const Metadata& metadata, Changes& changes) {
  if (metadata.exif.empty() || !ExifBlock(metadata.exif).Has(Id::exif, exif::kMakerNote)) return;
  changes.Note("the maker note stays; some cameras write positions there in a form of their own");
}

bool IsOfHidden(const std::string& name) {
  const auto group = FindTagGroup(name);
  return group == TagGroup::gps || group == TagGroup::makerNote || group == TagGroup::thumbnail ||
         group == TagGroup::all;
}

}  // namespace

bool RemovesHidden(const MetadataEdit& edit) {
  return edit.stripAll || edit.stripGps || edit.stripThumbnail || edit.stripMakerNote ||
         std::any_of(edit.remove.begin(), edit.remove.end(), IsOfHidden);
}

void EditMetadata(Metadata& metadata, const MetadataEdit& edit, const EditedPicture& picture,
                  Changes& changes) {
  if (edit.resolution) SetResolutionOf(metadata, *edit.resolution);
  if (edit.stripAll) StripAll(metadata, edit.stripProfile, picture);
  if (edit.stripProfile) metadata.profile = nullptr;
  if (edit.copy && edit.copy->from) Copy(metadata, *edit.copy);
  if (edit.stripMakerNote) StripMakerNote(metadata, changes);
  if (edit.stripThumbnail) StripThumbnails(metadata);
  if (edit.stripGps) {
    StripPosition(metadata, changes);
    NoteMakerNote(metadata, changes);
  }
  for (const std::string& name : edit.remove) {
    if (const auto group = FindTagGroup(name)) {
      RemoveGroup(metadata, *group, picture, changes);
    } else {
      RemoveNamed(metadata, FindTag(name));
    }
  }
  SetTags(metadata, edit.set, picture);
  if (edit.gps) SetPosition(metadata, *edit.gps, picture);
  if (edit.date) SetDate(metadata, *edit.date, picture);
  CheckRoom(metadata, edit, picture);
}

}  // namespace rasterkit
