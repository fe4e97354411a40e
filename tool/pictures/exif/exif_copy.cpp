#include "tool/pictures/exif/exif_copy.h"

#include <array>
#include <deque>

#include <fmt/core.h>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/raw_orientation.h>
#include <rasterkit/runtime/errors.h>

#include "tool/pictures/exif/exif_thumbnail.h"
#include "tool/pictures/exif/jpeg_header.h"

namespace rasterkit::tool {
namespace {

using Bytes = std::span<const uint8_t>;

bool Is(const JpegSegment& segment, MetadataKind kind) {
  return SegmentKind(segment) == kind;
}

bool IsMetadata(const JpegSegment& segment) {
  switch (segment.marker) {
    case kMarkerApp0:
    case kMarkerApp1:
    case kMarkerApp2:
    case kMarkerApp12:
    case kMarkerApp13:
    case kMarkerApp14:
    case kMarkerCom:
      return true;
    default:
      return false;
  }
}

/// True if decoders read three components as red, green and blue instead of YCbCr: never with a
/// JFIF header; else according to the Adobe marker; else according to the component names.
bool IsStoredAsRgb(const JpegHeader& header, bool hasJfif) {
  constexpr size_t kTransformPlace = 11;
  if (hasJfif || header.components != 3) return false;
  const JpegSegment* adobe = header.Find(MetadataKind::adobe);
  if (adobe != nullptr && adobe->payload.size() > kTransformPlace) {
    return adobe->payload[kTransformPlace] == 0;
  }
  return header.componentNames == "RGB";
}

int Orientation(Bytes jpeg) {
  TSpanStream stream(jpeg);
  return ReadRawOrientation(stream).value_or(1);
}

/// Chooses the sections to write, and writes them.
class Copy {
 public:
  Copy(Bytes photo, Bytes picture, const CopyOptions& options)
      : photo_(ReadJpegHeader(photo)),
        picture_(ReadJpegHeader(picture)),
        pictureBytes_(picture),
        options_(options),
        photoOrientation_(Orientation(photo)),
        pictureOrientation_(Orientation(picture)) {
    if (!picture_.isComplete) throw FormatError("JPEG: the header does not lead to picture data");
  }

  CopiedMetadata Run() {
    for (const JpegSegment& segment : photo_.segments) TakeFromPhoto(segment);
    for (const JpegSegment& segment : picture_.segments) TakeFromPicture(segment);
    WarnOfTurn();
    TMemoryStream target;
    WriteSaved(target);
    WritePicture(target);
    return {target.TakeBytes(), std::move(warnings_)};
  }

 private:
  PSection Keep(const JpegSegment& segment, std::string data) {
    TSection& section = sections_.emplace_back();
    section.DType = segment.marker;
    section.Size = static_cast<int32_t>(data.size());
    section.Data = std::move(data);
    return &section;
  }

  /// The first section of a kind goes to the library's slot for it; sections without a slot follow
  /// after those.
  void TakeFromPhoto(const JpegSegment& segment) {
    const bool isOfPixels =
        Is(segment, MetadataKind::adobe) ||
        (Is(segment, MetadataKind::profile) && picture_.Find(MetadataKind::profile) != nullptr);
    if (isOfPixels || Is(segment, MetadataKind::mpf) || !IsMetadata(segment)) return;
    if (segment.marker == kMarkerApp0) {
      if (Is(segment, MetadataKind::jfif)) {
        saved_.HeaderSegment = Keep(segment, SectionBytes(segment));
      }
    } else if (Is(segment, MetadataKind::exif) && saved_.ExifSegment == nullptr) {
      saved_.ExifSegment = Keep(segment, ExifFor(SectionBytes(segment)));
    } else if (segment.marker == kMarkerApp13 && saved_.IPTCSegment == nullptr) {
      saved_.IPTCSegment = Keep(segment, SectionBytes(segment));
    } else if (segment.marker == kMarkerCom && saved_.CommentSegment == nullptr) {
      saved_.CommentSegment = Keep(segment, SectionBytes(segment));
    } else {
      behind_.push_back(segment);
    }
  }

  void TakeFromPicture(const JpegSegment& segment) {
    if (Is(segment, MetadataKind::adobe) || Is(segment, MetadataKind::profile)) {
      behind_.push_back(segment);
    }
    if (Is(segment, MetadataKind::jfif) && saved_.HeaderSegment == nullptr) {
      saved_.HeaderSegment = Keep(segment, SectionBytes(segment));
    }
  }

  /// The EXIF section of the photo with the requested changes.
  std::string ExifFor(std::string section) {
    if (options_.stripThumbnail) section = WithoutThumbnail(ExifBlock(std::move(section)));
    orientation_ = photoOrientation_;
    if (!options_.keepOrientation) return section;
    const ExifBlock block(section);
    const ExifDirectory* main = block.Find("main");
    const ExifEntry* entry = main != nullptr ? main->Find(kTagOrientation) : nullptr;
    constexpr uint16_t kWord = 3;
    if (entry == nullptr || entry->type != kWord) return section;
    block.Order().WriteInt16(section, pictureOrientation_, entry->valuePos);
    orientation_ = pictureOrientation_;
    return section;
  }

  void WarnOfTurn() {
    if (orientation_ == pictureOrientation_) return;
    const char* remedy = options_.keepOrientation ? "the photo has no orientation tag"
                                                  : "--keep-orientation keeps it";
    warnings_.push_back(fmt::format(
        "the orientation is now {} and was {}; viewers will turn the picture differently ({})",
        orientation_, pictureOrientation_, remedy));
  }

  void WriteSaved(TMemoryStream& target) {
    saved_.SaveExif(target);
    const JpegSegment* jfif = picture_.Find(MetadataKind::jfif);
    const bool isRgb = IsStoredAsRgb(picture_, jfif != nullptr);
    const bool hasHeader = saved_.ExifSegment == nullptr;
    if (IsStoredAsRgb(picture_, hasHeader) != isRgb) {
      // The JFIF header decides how colors are read: it is written if and only if the picture had
      // it.
      if (hasHeader) DropHeader(target);
      if (jfif != nullptr) behind_.push_back(*jfif);
    }
    for (const JpegSegment& segment : behind_) {
      const std::string bytes = SectionBytes(segment);
      target.Write(std::array<uint8_t, 2>{0xFF, segment.marker});
      target.Write({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
    }
  }

  static void DropHeader(TMemoryStream& target) {
    std::vector<uint8_t> bytes = target.TakeBytes();
    const size_t length = static_cast<size_t>(bytes[4]) << 8 | bytes[5];
    bytes.erase(bytes.begin() + 2, bytes.begin() + static_cast<std::ptrdiff_t>(4 + length));
    target.Write(bytes);
  }

  /// The file of the picture without metadata and without stray bytes between sections.
  void WritePicture(TStream& target) {
    TMemoryStream plain;
    plain.Write(pictureBytes_.first(2));
    for (const JpegSegment& segment : picture_.segments) {
      if (!IsMetadata(segment)) plain.Write(pictureBytes_.subspan(segment.place, segment.Size()));
    }
    plain.Write(pictureBytes_.subspan(picture_.scanPlace));
    saved_.WriteImageToStream(plain, target, true);
  }

  const JpegHeader photo_, picture_;
  const Bytes pictureBytes_;
  const CopyOptions& options_;
  const int photoOrientation_, pictureOrientation_;
  /// The orientation that the written file states.
  int orientation_ = 1;
  TImageData saved_;
  /// A deque: the library gets pointers to its items.
  std::deque<TSection> sections_;
  std::vector<JpegSegment> behind_;
  std::vector<std::string> warnings_;
};

}  // namespace

CopiedMetadata CopyMetadata(Bytes photo, Bytes picture, const CopyOptions& options) {
  return Copy(photo, picture, options).Run();
}

}  // namespace rasterkit::tool
