#include <algorithm>
#include <optional>
#include <utility>

#include <rasterkit/codecs/jpeg/copied_head.h>
#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/metadata/exif_block.h>
#include <rasterkit/metadata/exif_resolution.h>
#include <rasterkit/metadata/jpeg_assembly.h>

namespace rasterkit::detail {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace jpeg_coding;
using namespace jpeg_marker;

constexpr size_t kUnitAt = 7, kDensityAt = 8, kThumbnailAt = 12, kPlainBytes = 14;

bool IsJfif(const JpegSegment& segment) {
  return BlockOf(segment) == JpegBlock::jfif;
}

/// The header of the source with the densities of the made one.
std::vector<uint8_t> NewJfif(const JpegSegment& source, Bytes made, bool keepsResolution,
                             const CopiedHead& options) {
  std::vector<uint8_t> payload(source.payload.begin(), source.payload.end());
  if (payload.size() < kPlainBytes) payload.assign(made.begin(), made.end());
  if (!keepsResolution) {
    std::copy(made.begin() + kUnitAt, made.begin() + kThumbnailAt, payload.begin() + kUnitAt);
  } else if (options.exchangesAxes && payload[kUnitAt] == 0) {
    std::rotate(payload.begin() + kDensityAt, payload.begin() + kDensityAt + 2,
                payload.begin() + kThumbnailAt);
  }
  if (options.dropsThumbnails) {
    payload.resize(kPlainBytes);
    payload[kThumbnailAt] = payload[kThumbnailAt + 1] = 0;
  }
  return payload;
}

bool IsSameProfile(const ColorProfile& a, const ColorProfile& b) {
  return a == b || (a && b && *a == *b);
}

/// Blocks in the order in which new ones are added.
enum class Group { jfif, exif, xmp, profile, resources, others, comments, none };

Group GroupOf(const JpegSegment& segment) {
  switch (BlockOf(segment)) {
    case JpegBlock::jfif:
    case JpegBlock::jfxx:
      return Group::jfif;
    case JpegBlock::exif:
      return Group::exif;
    case JpegBlock::xmp:
    case JpegBlock::extendedXmp:
      return Group::xmp;
    case JpegBlock::profile:
      return Group::profile;
    case JpegBlock::photoshop:
      return Group::resources;
    case JpegBlock::comment:
      return Group::comments;
    case JpegBlock::mpf:
      return Group::none;
    default:
      return IsCodingSegment(segment) ? Group::none : Group::others;
  }
}

Resolution StatedByExif(const Metadata& metadata) {
  return metadata.exif.empty() ? Resolution{} : ResolutionOf(ExifBlock(metadata.exif));
}

/// Puts the head together: each block of the source at its place, as it was if it did not change.
class HeadCopier {
 public:
  HeadCopier(const JpegParts& parts, const Metadata& source, const Metadata& metadata,
             const CopiedHead& options)
      : parts_(parts), source_(source), metadata_(metadata), options_(options) {
    const auto jfif = std::find_if(parts.head.begin(), parts.head.end(), IsJfif);
    jfif_ = jfif == parts.head.end() ? nullptr : &*jfif;
    keepsResolution_ = metadata.resolution == source.resolution && StatesStillTheSame();
  }

  void Append(std::vector<uint8_t>& bytes, Changes& changes) {
    Assemble(changes);
    for (const JpegSegment& part : parts_.head) Place(part);
    for (NewJpegSegment& segment : made_) Insert(std::move(segment));
    for (const auto& [group, segment] : pieces_) {
      AppendSegment(bytes, segment.marker, segment.payload);
    }
  }

 private:
  /// True if the resolution stays where the source states it.
  bool StatesStillTheSame() const {
    const auto header = jfif_ == nullptr ? std::nullopt : ReadJfif(*jfif_);
    if (header && header->unit != 0) return true;
    const Resolution stated = StatedByExif(metadata_);
    // A new EXIF block may state what a block of resources states.
    if (stated.IsKnown() && stated == metadata_.resolution) return true;
    return stated == StatedByExif(source_) && metadata_.photoshop == source_.photoshop;
  }

  bool IsKept(Group group) const {
    switch (group) {
      case Group::exif:
        // The resolution goes there if the file has no header for it.
        return metadata_.exif == source_.exif && !options_.dropsThumbnails &&
               (jfif_ != nullptr || keepsResolution_);
      case Group::xmp:
        return metadata_.xmp == source_.xmp && metadata_.extendedXmp == source_.extendedXmp &&
               !options_.dropsThumbnails;
      case Group::profile:
        return IsSameProfile(metadata_.profile, source_.profile) && !options_.dropsThumbnails;
      case Group::resources:
        return metadata_.iptc == source_.iptc && metadata_.photoshop == source_.photoshop;
      case Group::comments:
        return metadata_.comments == source_.comments && metadata_.texts.empty();
      default:
        return false;
    }
  }

  /// Makes the segments of what changed.
  void Assemble(Changes& changes) {
    Metadata changed = metadata_;
    // What did not change keeps its bytes: no resolution is added, no digest is made true.
    if (keepsResolution_) changed.resolution = {};
    if (IsKept(Group::exif)) changed.exif.clear();
    if (IsKept(Group::xmp)) {
      changed.xmp.clear();
      changed.extendedXmp.clear();
    }
    if (IsKept(Group::profile)) changed.profile = nullptr;
    if (IsKept(Group::resources)) {
      changed.iptc.clear();
      changed.photoshop.clear();
    }
    if (IsKept(Group::comments)) changed.comments.clear();
    made_ = AssembleJpegSegments(changed, jfif_ != nullptr, changes);
    if (jfif_ == nullptr) return;
    pieces_.emplace_back(Group::jfif, NewJpegSegment{kApp0, NewJfif(*jfif_, made_.front().payload,
                                                                    keepsResolution_, options_)});
    made_.erase(made_.begin());
  }

  static Group GroupOfMade(const NewJpegSegment& segment) {
    return GroupOf(JpegSegment{segment.marker, 0, segment.payload});
  }

  /// Places a segment of the source, or what was made instead.
  void Place(const JpegSegment& part) {
    const Group group = GroupOf(part);
    if (group == Group::none || &part == jfif_) return;
    if (group == Group::jfif) {
      // The extensions must follow the header.
      const auto behind = std::find_if(pieces_.begin(), pieces_.end(), [](const auto& piece) {
        return piece.first != Group::jfif;
      });
      if (options_.dropsThumbnails || BlockOf(part) != JpegBlock::jfxx) return;
      pieces_.insert(behind, {group, Copied(part)});
    } else if (group == Group::others) {
      const auto same = std::find_if(made_.begin(), made_.end(), [&](const auto& segment) {
        return segment.marker == part.marker &&
               std::equal(segment.payload.begin(), segment.payload.end(), part.payload.begin(),
                          part.payload.end());
      });
      if (same == made_.end()) return;
      made_.erase(same);
      pieces_.emplace_back(group, Copied(part));
    } else if (IsKept(group)) {
      pieces_.emplace_back(group, Copied(part));
    } else {
      for (auto segment = made_.begin(); segment != made_.end();) {
        if (GroupOfMade(*segment) != group) {
          ++segment;
          continue;
        }
        pieces_.emplace_back(group, std::move(*segment));
        segment = made_.erase(segment);
      }
    }
  }

  /// Inserts what the source has no place for.
  void Insert(NewJpegSegment segment) {
    const Group group = GroupOfMade(segment);
    const auto later = std::find_if(pieces_.begin(), pieces_.end(),
                                    [&](const auto& piece) { return piece.first > group; });
    pieces_.insert(later, {group, std::move(segment)});
  }

  static NewJpegSegment Copied(const JpegSegment& part) {
    return {part.marker, {part.payload.begin(), part.payload.end()}};
  }

  const JpegParts& parts_;
  const Metadata& source_;
  const Metadata& metadata_;
  const CopiedHead& options_;
  const JpegSegment* jfif_ = nullptr;
  bool keepsResolution_ = false;
  /// What changed, without what is placed.
  std::vector<NewJpegSegment> made_;
  std::vector<std::pair<Group, NewJpegSegment>> pieces_;
};

}  // namespace

bool IsCodingSegment(const JpegSegment& part) {
  if (part.marker == kApp14) return IsAdobeSegment(part.payload);
  return !IsApplication(part.marker) && part.marker != kComment;
}

void AppendSegment(std::vector<uint8_t>& bytes, uint8_t marker, Bytes payload) {
  const std::vector<uint8_t> segment =
      BytesOf(NewJpegSegment{marker, {payload.begin(), payload.end()}});
  bytes.insert(bytes.end(), segment.begin(), segment.end());
}

void AppendMetadata(std::vector<uint8_t>& bytes, const JpegParts& parts, const Metadata& source,
                    const Metadata& metadata, const CopiedHead& options, Changes& changes) {
  HeadCopier(parts, source, metadata, options).Append(bytes, changes);
}

}  // namespace rasterkit::detail
