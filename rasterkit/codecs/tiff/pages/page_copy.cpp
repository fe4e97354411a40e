#include <algorithm>

#include <fmt/format.h>
#include <tiff.h>

#include <rasterkit/codecs/tiff/pages/page_copy.h>
#include <rasterkit/codecs/tiff/pages/page_directory.h>
#include <rasterkit/codecs/tiff/pages/tag_kinds.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/memory/memory_budget.h>

namespace rasterkit::detail {

namespace {

/// Larger values are written once for all pages that share them.
constexpr uint64_t kMostOwnBytes = 4096;
/// The bits of tag 254 that make a directory part of a page.
constexpr uint32_t kRelative = FILETYPE_REDUCEDIMAGE | FILETYPE_MASK;
bool IsBlockTag(uint16_t tag) {
  return tag == TIFFTAG_STRIPOFFSETS || tag == TIFFTAG_STRIPBYTECOUNTS ||
         tag == TIFFTAG_TILEOFFSETS || tag == TIFFTAG_TILEBYTECOUNTS;
}

/// Metadata that a smaller copy of the page can have of its own.
bool IsMetadataOfCopy(uint16_t tag) {
  return tag == TIFFTAG_EXIFIFD || tag == TIFFTAG_GPSIFD || tag == TIFFTAG_XMLPACKET ||
         tag == TIFFTAG_RICHTIFFIPTC || tag == TIFFTAG_PHOTOSHOP;
}

/// Tiles count where there are both strips and tiles.
bool AreStrayPlaces(const TagDirectory& directory, uint16_t tag) {
  return tag == TIFFTAG_STRIPOFFSETS && directory.Has(TIFFTAG_TILEOFFSETS);
}

/// True for sizes of blocks that the directory does not have.
bool AreStraySizes(const TagDirectory& directory, uint16_t tag) {
  const bool isTiled = directory.Has(TIFFTAG_TILEOFFSETS);
  if (tag == TIFFTAG_TILEBYTECOUNTS) return !isTiled;
  return tag == TIFFTAG_STRIPBYTECOUNTS && (isTiled || !directory.Has(TIFFTAG_STRIPOFFSETS));
}

bool IsWideInteger(uint16_t type) {
  return type == TIFF_LONG8 || type == TIFF_SLONG8 || type == TIFF_IFD8;
}

std::vector<uint64_t> NumbersOf(const TagValue& value) {
  std::vector<uint64_t> numbers;
  const auto unit = static_cast<size_t>(TagUnitBytes(value.type));
  for (size_t at = 0; at + unit <= value.bytes.size(); at += unit) {
    uint64_t number = 0;
    for (size_t i = unit; i-- > 0;) number = number << 8 | value.bytes[at + i];
    numbers.push_back(number);
  }
  return numbers;
}

/// The numbers in the type that the source has, if they fit it; else `wide`.
TagValue InTypeOf(const TagPlace* source, std::span<const uint64_t> numbers, TagValue wide) {
  if (!source) return wide;
  const uint16_t type = source->type;
  const bool isKnown = type == TIFF_SHORT || type == TIFF_LONG || type == TIFF_IFD;
  const uint64_t most = type == TIFF_SHORT ? UINT16_MAX : UINT32_MAX;
  const bool fits = isKnown && std::all_of(numbers.begin(), numbers.end(),
                                           [&](uint64_t number) { return number <= most; });
  if (!fits) return wide;
  TagValue value{wide.tag, type, numbers.size(), {}};
  const int unit = TagTypeBytes(type);
  for (const uint64_t number : numbers) {
    for (int i = 0; i < unit; i++) value.bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
  }
  return value;
}

}  // namespace

TagValue PageCopier::Take(const TagPlace& place) {
  Charge(place.Bytes());
  RequirePictureMemory(place.Bytes(), "TIFF: the value of a tag");
  return reader_.Value(place);
}

/// Places or sizes of blocks; a page with all of its tags keeps the type of the source.
TagValue PageCopier::Numbers(const TagDirectory& directory, uint16_t tag,
                             std::span<const uint64_t> numbers) const {
  TagValue wide = file_->PlacesTag(tag, numbers);
  return writing_ ? wide : InTypeOf(directory.Find(tag), numbers, std::move(wide));
}

void PageCopier::MoveBlocks(const TagDirectory& directory, TagMap& tags) {
  StoredBlocks blocks = BlocksOf(reader_, directory);
  if (blocks.places.empty()) return;
  for (uint64_t& place : blocks.places) place = source_.moved.PlaceOf(place);
  const uint16_t places = blocks.isTiled ? TIFFTAG_TILEOFFSETS : TIFFTAG_STRIPOFFSETS;
  const uint16_t counts = blocks.isTiled ? TIFFTAG_TILEBYTECOUNTS : TIFFTAG_STRIPBYTECOUNTS;
  tags[places] = Numbers(directory, places, blocks.places);
  tags[counts] = Numbers(directory, counts, blocks.counts);
}

void PageCopier::MoveJpeg(const TagDirectory& directory, TagMap& tags, Changes& changes) {
  const bool isOld = IsOldJpeg(directory);
  for (const uint16_t tag :
       {TIFFTAG_JPEGIFOFFSET, TIFFTAG_JPEGQTABLES, TIFFTAG_JPEGDCTABLES, TIFFTAG_JPEGACTABLES}) {
    const auto found = tags.find(tag);
    if (found == tags.end() || (!isOld && tag != TIFFTAG_JPEGIFOFFSET)) continue;
    std::vector<uint64_t> places = NumbersOf(found->second);
    for (uint64_t& place : places) {
      const bool isSet = place != 0;
      place = source_.moved.PlaceOf(place);
      if (isSet && place == 0) {
        changes.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", tag),
                     "it leads beyond the end of the file");
      }
    }
    found->second = Numbers(directory, tag, places);
  }
}

void PageCopier::CopyValue(const TagPlace& place, Structure& copy) {
  const bool isShared = !writing_ && place.Bytes() > kMostOwnBytes && !IsWideInteger(place.type);
  if (!isShared) {
    copy.tags[place.tag] = Take(place);
    return;
  }
  const auto [known, isNew] = source_.values.try_emplace({place.at, place.count, place.type}, 0);
  if (isNew) known->second = file_->AppendValue(Take(place)).at;
  copy.stored[place.tag] = {place.type, place.count, known->second};
}

void PageCopier::MissDamaged(const TagDirectory& directory, Changes& changes) {
  constexpr const char* kWhy = "it reaches beyond the end of the file or has an unknown type";
  constexpr size_t kMostNamed = 8;
  const size_t count = directory.damaged.size(), named = std::min(count, kMostNamed);
  for (size_t i = 0; i < named; i++) {
    changes.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", directory.damaged[i]), kWhy);
  }
  if (count > named) {
    changes.Lose(LossKind::otherBlock, fmt::format("{} further TIFF tags", count - named), kWhy);
  }
}

/// True for a value of bytes that are numbers in the order of the source.
bool PageCopier::IsBoundToOrder(uint16_t tag, Changes& changes) const {
  if (reader_.IsBigEndian() == file_->IsBigEndian()) return false;
  if (tag == EXIFTAG_MAKERNOTE) {
    changes.Note("TIFF: the maker note keeps its bytes in a file of the other order of bytes");
  }
  if (tag != kLayersTag) return false;
  changes.Lose(LossKind::hiddenPictures, "layers", "they are in the other order of bytes");
  return true;
}

PageCopier::Structure PageCopier::Copy(const TagDirectory& directory, Changes& changes) {
  Structure copy;
  const bool isMain = IsMain(directory);
  for (const TagPlace& place : directory.tags) {
    if (place.tag == TIFFTAG_FREEOFFSETS || place.tag == TIFFTAG_FREEBYTECOUNTS) continue;
    // It could state what was to be removed.
    if (!isMain && writing_ && writing_->dropsHidden && IsMetadataOfCopy(place.tag)) continue;
    if (isMain && IsWrittenAnew(place)) continue;
    if (IsBoundToOrder(place.tag, changes)) continue;
    if (LeadsToDirectory(place.tag, place.type)) {
      TagValue pointers = CopyBelow(place, changes);
      if (pointers.count > 0 || (!writing_ && place.count == 0)) {
        copy.tags[place.tag] = std::move(pointers);
      }
    } else if (AreStrayPlaces(directory, place.tag)) {
      changes.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", place.tag),
                   "the directory has both strips and tiles");
    } else if (!IsBlockTag(place.tag) || AreStraySizes(directory, place.tag)) {
      CopyValue(place, copy);
    }
  }
  MoveBlocks(directory, copy.tags);
  MoveJpeg(directory, copy.tags, changes);
  if (!writing_) MissDamaged(directory, changes);
  return copy;
}

/// Directories below a page are those that tag 330 lists; a link from one to a next one leaves
/// them.
void PageCopier::MissNext(uint64_t at, Changes& changes) const {
  const uint64_t next = reader_.Next(at);
  if (next == 0 || !chain_ || chain_->Contains(next) || collected_.contains(next)) return;
  const auto directory = reader_.Directory(next);
  if (!directory || !directory->Has(TIFFTAG_IMAGEWIDTH)) return;
  changes.Lose(LossKind::hiddenPictures, "the picture after one of tag 330",
               "only those that the tag lists are copied");
}

TagValue PageCopier::CopyBelow(const TagPlace& pointer, Changes& changes) {
  std::vector<uint64_t> places;
  bool isComplete = true;
  for (const uint64_t at : reader_.Integers(pointer)) {
    const auto written = CopyDirectory(at, changes);
    if (written) places.push_back(written->at);
    if (written && pointer.tag == TIFFTAG_SUBIFD) MissNext(at, changes);
    isComplete = isComplete && (written || at == 0);
  }
  if (!isComplete) {
    changes.Lose(LossKind::otherBlock, fmt::format("TIFF tag {}", pointer.tag),
                 "a directory that it leads to cannot be read, or leads back to it");
  }
  TagValue pointers = file_->PointersTag(pointer.tag, places);
  return writing_ ? pointers : InTypeOf(&pointer, places, std::move(pointers));
}

/// A page stays a page, and what belongs to one stays a smaller copy or a mask, where a damaged
/// directory or another place in the chain would change that.
void PageCopier::KeepKind(uint32_t relative, TagMap& tags, Changes& changes) const {
  const auto found = tags.find(TIFFTAG_SUBFILETYPE);
  const auto old = tags.find(TIFFTAG_OSUBFILETYPE);
  uint64_t stated = 0;
  if (found != tags.end()) {
    const bool isKnown = found->second.type == TIFF_SHORT || found->second.type == TIFF_LONG;
    const std::vector<uint64_t> numbers = NumbersOf(found->second);
    if (isKnown && numbers.size() == 1) stated = numbers[0];
  } else if (old != tags.end()) {
    const std::vector<uint64_t> numbers = NumbersOf(old->second);
    if (numbers.size() == 1 && numbers[0] == OFILETYPE_REDUCEDIMAGE) stated = FILETYPE_REDUCEDIMAGE;
  }
  if ((stated & kRelative) == relative) return;
  const auto kind = static_cast<uint32_t>(relative == 0 ? FILETYPE_PAGE : relative);
  tags[TIFFTAG_SUBFILETYPE] = LongTag(TIFFTAG_SUBFILETYPE, kind);
  changes.Note(fmt::format("TIFF: the type of a directory (tag 254) is {}", kind));
}

/// Each directory is copied once; a circle ends where it closes.
std::optional<TagFileWriter::Written> PageCopier::CopyDirectory(uint64_t at, Changes& changes) {
  if (!collected_.contains(at)) return std::nullopt;
  const auto [copied, isNew] = copied_.try_emplace(at);
  if (!isNew) return copied->second.at == 0 ? std::nullopt : std::optional(copied->second);
  RequireTime();
  const auto directory = reader_.Directory(at);
  if (!directory) return std::nullopt;
  Structure copy = Copy(*directory, changes);
  if (isFollowing_.contains(at)) {
    KeepKind(kRelative & reader_.SubfileType(at), copy.tags, changes);
  }
  // A directory of tags that cannot be copied.
  if (copy.tags.empty() && copy.stored.empty()) return std::nullopt;
  return copied_[at] = file_->WriteDirectory(copy.tags, copy.stored, changes);
}

void PageCopier::AddMetadata(Structure& main, Changes& changes) {
  const Resolution& wanted = writing_->metadata.resolution;
  if (!wanted.IsKnown() || wanted == ResolutionOfPage(reader_, first_)) {
    // Whatever the unit is; without one the numbers are the aspect ratio of a pixel.
    for (const uint16_t tag : {TIFFTAG_XRESOLUTION, TIFFTAG_YRESOLUTION, TIFFTAG_RESOLUTIONUNIT}) {
      const TagPlace* place = first_.Find(tag);
      if (place) main.tags[tag] = Take(*place);
    }
  }
  std::erase_if(tags_.main,
                [&](const TagValue& value) { return IsBoundToOrder(value.tag, changes); });
  AddPageTags(tags_, *file_, main.tags, changes);
  // Inches are the unit of a file that states none.
  const bool hasNoUnit = first_.Has(TIFFTAG_XRESOLUTION) && !first_.Has(TIFFTAG_RESOLUTIONUNIT);
  if (hasNoUnit && wanted == ResolutionOfPage(reader_, first_)) {
    main.tags.erase(TIFFTAG_RESOLUTIONUNIT);
  }
  // A picture without the tag is upright.
  const auto orientation = main.tags.find(TIFFTAG_ORIENTATION);
  if (!first_.Has(TIFFTAG_ORIENTATION) && orientation != main.tags.end() &&
      NumbersOf(orientation->second) == std::vector<uint64_t>{ORIENTATION_TOPLEFT}) {
    main.tags.erase(orientation);
  }
}

uint64_t PageCopier::Write(TagFileWriter& file, uint64_t linkAt, Changes& changes) {
  file_ = &file;
  file.RequireRoom(source_.moved.Total());
  source_.moved.Copy(reader_, file);
  changes.losses.insert(changes.losses.end(), changes_.losses.begin(), changes_.losses.end());
  changes.notes.insert(changes.notes.end(), changes_.notes.begin(), changes_.notes.end());
  copied_.try_emplace(first_.at);
  Structure main = Copy(first_, changes);
  if (writing_) AddMetadata(main, changes);
  // The first directory of a file is always a page.
  if (linkAt != file.FirstLinkAt()) KeepKind(0, main.tags, changes);
  if (pageNumber_) main.tags[pageNumber_->tag] = *pageNumber_;
  const TagFileWriter::Written page = file.WriteDirectory(main.tags, main.stored, changes);
  file.Link(linkAt, page.at);
  linkAt = page.linkAt;
  for (const uint64_t at : following_) {
    if (const auto written = CopyDirectory(at, changes)) {
      file.Link(linkAt, written->at);
      linkAt = written->linkAt;
    } else if (!writing_) {
      changes.Lose(LossKind::hiddenPictures, "a smaller copy or mask",
                   "its directory cannot be read");
    }
  }
  return linkAt;
}

}  // namespace rasterkit::detail
