#include <algorithm>
#include <string_view>

#include <rasterkit/codecs/jpeg/jpeg_form.h>
#include <rasterkit/codecs/jpeg/jpeg_hidden.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/write_jpeg_metadata.h>
#include <rasterkit/codecs/rows/byte_marks.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace detail;
using namespace detail::jpeg_marker;
using std::string_view_literals::operator""sv;

bool IsJfif(const JpegPart& part) {
  return part.marker == kApp0 && StartsWith(part.payload, "JFIF\0"sv);
}

bool IsJfxx(const JpegPart& part) {
  return part.marker == kApp0 && StartsWith(part.payload, "JFXX\0"sv);
}

/// True for what belongs to the coded pixels: tables, frame, scan, the Adobe segment.
bool IsCoding(const JpegPart& part) {
  if (part.marker == kApp14) return IsAdobeSegment(part.payload);
  return !IsApplication(part.marker) && part.marker != kComment;
}

void SetNumber(std::vector<uint8_t>& payload, size_t at, bool isBig, uint32_t value) {
  for (size_t i = 0; i < 4; i++) {
    payload[at + i] = static_cast<uint8_t>(value >> 8 * (isBig ? 3 - i : i));
  }
}

/// Writes a file with its coded pixels and other metadata.
class Copier {
 public:
  Copier(Bytes file, const PictureWriting& writing) : file_(file), writing_(writing) {
    parts_ = ReadJpegHead(file);
    ReadJpegScans(file, parts_);
    if (parts_.isCut) throw FormatError("JPEG: the file is cut off and cannot be copied");
  }

  WrittenPicture Copy(const PictureHeader& header, TStream& stream) {
    WrittenPicture written;
    head_ = {kStart, kImageStart};
    AddMetadata(written.changes);
    AddIndex();
    for (const JpegPart& part : parts_.head) {
      if (IsCoding(part)) AppendSegment(part.marker, part.payload, head_);
    }
    stream.Write(head_);
    const size_t end = writing_.dropsHidden ? parts_.end : file_.size();
    stream.Write(file_.subspan(ScansAt(), end - ScansAt()));
    written.form = header.form;
    written.layout = header.layout;
    return written;
  }

 private:
  /// Place behind the header of the first scan.
  size_t ScansAt() const {
    const JpegPart& scan = parts_.head.back();
    return scan.payloadAt + scan.payload.size();
  }

  void AddMetadata(Changes& changes) {
    JpegMetadataWish wish;
    const auto jfif = std::find_if(parts_.head.begin(), parts_.head.end(), IsJfif);
    wish.writesJfif = jfif != parts_.head.end();
    if (wish.writesJfif && !writing_.dropsHidden) wish.jfif = jfif->payload;
    const std::vector<uint8_t> segments = JpegMetadataSegments(writing_.metadata, wish, changes);
    if (writing_.dropsHidden) {
      head_.insert(head_.end(), segments.begin(), segments.end());
      return;
    }
    // Extensions of the JFIF header follow it at once.
    const size_t jfifBytes = wish.writesJfif ? 4 + wish.jfif.size() : 0;
    const auto middle = segments.begin() + static_cast<std::ptrdiff_t>(jfifBytes);
    head_.insert(head_.end(), segments.begin(), middle);
    for (const JpegPart& part : parts_.head) {
      if (IsJfxx(part)) AppendSegment(part.marker, part.payload, head_);
    }
    head_.insert(head_.end(), middle, segments.end());
  }

  /// Adds the index of further pictures, whose places move with the size of the head.
  void AddIndex() {
    const JpegIndex index = ReadJpegIndex(parts_);
    if (writing_.dropsHidden || index.pictures.empty()) return;
    const Bytes source = parts_.head[index.part].payload;
    std::vector<uint8_t> payload(source.begin(), source.end());
    constexpr size_t kMarkerBytes = 4;
    const size_t start =
        head_.size() + kMarkerBytes + (index.start - parts_.head[index.part].payloadAt);
    size_t coding = 0;
    for (const JpegPart& part : parts_.head) {
      if (IsCoding(part)) coding += kMarkerBytes + part.payload.size();
    }
    const size_t scansAt = head_.size() + kMarkerBytes + payload.size() + coding;
    const auto moved = static_cast<int64_t>(scansAt) - static_cast<int64_t>(ScansAt());
    for (const JpegIndexPicture& picture : index.pictures) {
      if (picture.offset == 0) {
        const int64_t bytes = int64_t{picture.bytes} + moved;
        if (bytes > 0)
          SetNumber(payload, picture.bytesAt, index.isBigEndian, static_cast<uint32_t>(bytes));
        continue;
      }
      const int64_t at = static_cast<int64_t>(index.start) + picture.offset;
      const int64_t offset = at + moved - static_cast<int64_t>(start);
      if (at < static_cast<int64_t>(parts_.end) || offset <= 0) continue;
      SetNumber(payload, picture.offsetAt, index.isBigEndian, static_cast<uint32_t>(offset));
    }
    AppendSegment(kApp2, payload, head_);
  }

  const Bytes file_;
  const PictureWriting& writing_;
  JpegParts parts_;
  std::vector<uint8_t> head_;
};

}  // namespace

WrittenPicture CopyJpeg(Bytes file, const PictureWriting& writing, TStream& stream) {
  const LimitsScope limits;
  const PictureHeader header = ReadJpegHeader(file);
  return Copier(file, writing).Copy(header, stream);
}

}  // namespace rasterkit
