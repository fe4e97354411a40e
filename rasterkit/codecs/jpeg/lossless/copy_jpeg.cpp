#include <rasterkit/codecs/jpeg/copied_head.h>
#include <rasterkit/codecs/jpeg/jpeg_hidden.h>
#include <rasterkit/codecs/jpeg/jpeg_picture.h>
#include <rasterkit/codecs/jpeg/lossless/move_jpeg.h>
#include <rasterkit/runtime/limits.h>

namespace rasterkit {
namespace {

using Bytes = std::span<const uint8_t>;
using namespace detail;
using namespace jpeg_marker;

void SetNumber(std::vector<uint8_t>& payload, size_t at, bool isBig, uint32_t value) {
  for (size_t i = 0; i < 4; i++) {
    payload[at + i] = static_cast<uint8_t>(value >> 8 * (isBig ? 3 - i : i));
  }
}

bool IsSameProfile(const ColorProfile& a, const ColorProfile& b) {
  return a == b || (a && b && *a == *b);
}

bool IsSame(const Metadata& a, Metadata b) {
  if (!IsSameProfile(a.profile, b.profile)) return false;
  b.profile = a.profile;
  return a == b;
}

/// Writes a file with its coded pixels and other metadata.
class Copier {
 public:
  Copier(Bytes file, const PictureWriting& writing) : file_(file), writing_(writing) {
    parts_ = ReadJpegHead(file);
    ReadJpegScans(file, parts_);
  }

  WrittenPicture Copy(const PictureHeader& header, TStream& stream) {
    WrittenPicture written;
    written.form = header.form;
    written.layout = header.layout;
    if (!writing_.dropsHidden && IsSame(writing_.metadata, header.metadata)) {
      stream.Write(file_);
      return written;
    }
    head_ = {kStart, kImageStart};
    AppendMetadata(head_, parts_, header.metadata, writing_.metadata,
                   {.dropsThumbnails = writing_.dropsHidden}, written.changes);
    AddIndex();
    for (const JpegSegment& part : parts_.head) {
      if (IsCodingSegment(part)) AppendSegment(head_, part.marker, part.payload);
    }
    stream.Write(head_);
    const size_t end = writing_.dropsHidden ? parts_.end : file_.size();
    stream.Write(file_.subspan(ScansAt(), end - ScansAt()));
    return written;
  }

 private:
  /// Place after the header of the first scan.
  size_t ScansAt() const {
    const JpegSegment& scan = parts_.head.back();
    return PlaceOf(scan, file_) + scan.payload.size();
  }

  /// Adds the index of further pictures, whose places move with the size of the head.
  void AddIndex() {
    const JpegIndex index = ReadJpegIndex(file_, parts_);
    if (writing_.dropsHidden || index.pictures.empty()) return;
    const Bytes source = parts_.head[index.part].payload;
    std::vector<uint8_t> payload(source.begin(), source.end());
    constexpr size_t kMarkerBytes = 4;
    const size_t start =
        head_.size() + kMarkerBytes + (index.start - PlaceOf(parts_.head[index.part], file_));
    size_t coding = 0;
    for (const JpegSegment& part : parts_.head) {
      if (IsCodingSegment(part)) coding += kMarkerBytes + part.payload.size();
    }
    const size_t scansAt = head_.size() + kMarkerBytes + payload.size() + coding;
    const auto moved = static_cast<int64_t>(scansAt) - static_cast<int64_t>(ScansAt());
    for (const JpegIndexPicture& picture : index.pictures) {
      if (picture.offset == 0) {
        const int64_t bytes = int64_t{picture.bytes} + moved;
        if (bytes > 0) {
          SetNumber(payload, picture.bytesAt, index.isBigEndian, static_cast<uint32_t>(bytes));
        }
        continue;
      }
      const int64_t at = static_cast<int64_t>(index.start) + picture.offset;
      const int64_t offset = at + moved - static_cast<int64_t>(start);
      if (at < static_cast<int64_t>(parts_.end) || offset <= 0) continue;
      SetNumber(payload, picture.offsetAt, index.isBigEndian, static_cast<uint32_t>(offset));
    }
    AppendSegment(head_, kApp2, payload);
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
  if (writing.move) return MoveJpeg(file, header, writing, stream);
  return Copier(file, writing).Copy(header, stream);
}

}  // namespace rasterkit
