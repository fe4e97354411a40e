// Writes the metadata of any file and reads them back unchanged. The thumbnail is part of the
// section's bytes and can be removed.

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/runtime/errors.h>

#include "fuzz/require.h"

namespace {

using rasterkit::PSection;
using rasterkit::TImageData;

/// The start of a JPEG file without metadata; a section reader needs no more.
constexpr uint8_t kPlainJpeg[] = {0xFF, 0xD8, 0xFF, 0xDB, 0, 3, 1, 0xFF, 0xDA, 0, 3, 1, 0xFF, 0xD9};

/// Returns false if an invalid GPS position ended the reading.
bool Read(TImageData& image, rasterkit::TStream& stream) {
  try {
    image.ReadJpegSections(stream);
    return true;
  } catch (const rasterkit::ConversionError&) {
    return false;
  }
}

std::vector<uint8_t> Saved(const TImageData& image) {
  rasterkit::TMemoryStream target;
  const int32_t count = image.SaveExif(target);
  Require(target.Size() == static_cast<uint64_t>(count) + 2);
  return target.TakeBytes();
}

std::vector<uint8_t> Written(const TImageData& image, std::span<const uint8_t> jpeg,
                             bool withoutHeader) {
  rasterkit::TSpanStream source(jpeg);
  rasterkit::TMemoryStream target;
  image.WriteImageToStream(source, target, withoutHeader);
  return target.TakeBytes();
}

void RequireSame(PSection written, PSection read) {
  Require((written == nullptr) == (read == nullptr));
  if (written == nullptr) return;
  Require(written->DType == read->DType && written->Size == read->Size);
  Require(written->Data == read->Data);
}

/// Without EXIF, IPTC and comment a reader stops at the fifth section.
int32_t OthersThatAreFound(const TImageData& image) {
  return image.HasMetaData() ? image.OthersCount : std::min(image.OthersCount, 3);
}

void RequireSameValues(const TImageData& written, const TImageData& read) {
  Require((written.ExifData == nullptr) == (read.ExifData == nullptr));
  Require((written.GPSData == nullptr) == (read.GPSData == nullptr));
  Require(written.ErrStr == read.ErrStr);
  if (!written.ExifData) return;
  Require(written.ExifData->Rotation == read.ExifData->Rotation);
  Require(written.ExifData->FTagCount == read.ExifData->FTagCount);
  Require(written.ExtractThumbnailBuffer() == read.ExtractThumbnailBuffer());
}

void RequireReadBack(const TImageData& image, bool isReadWhole) {
  rasterkit::TMemoryStream file(Written(image, kPlainJpeg, false));
  TImageData again;
  const bool isAgainReadWhole = Read(again, file);
  RequireSame(image.ExifSegment, again.ExifSegment);
  Require(isAgainReadWhole == isReadWhole);
  if (!isReadWhole) return;
  RequireSame(image.IPTCSegment, again.IPTCSegment);
  RequireSame(image.CommentSegment, again.CommentSegment);
  if (image.ExifSegment == nullptr && image.HeaderSegment != nullptr) {
    RequireSame(image.HeaderSegment, again.HeaderSegment);
  }
  Require(again.OthersCount == OthersThatAreFound(image));
  for (int32_t i = 1; i <= again.OthersCount; ++i) {
    const auto place = static_cast<size_t>(i);
    RequireSame(image.OtherSegments[place], again.OtherSegments[place]);
  }
  RequireSameValues(image, again);
  if (again.OthersCount == image.OthersCount) Require(Saved(again) == Saved(image));
}

/// The picture data are the end of the file, regardless of what the file holds.
void RequireEndOfFile(const TImageData& image, std::span<const uint8_t> jpeg) {
  const std::vector<uint8_t> rest = Written(image, jpeg, true);
  Require(rest.size() <= jpeg.size());
  Require(
      std::equal(rest.begin(), rest.end(), jpeg.end() - static_cast<std::ptrdiff_t>(rest.size())));
  std::vector<uint8_t> whole = Saved(image);
  whole.insert(whole.end(), rest.begin(), rest.end());
  Require(Written(image, jpeg, false) == whole);
}

void CutThumbnail(TImageData& image) {
  const std::string thumbnail = image.ExtractThumbnailBuffer();
  Require(thumbnail.empty() || image.ExifBuff.find(thumbnail) != std::string::npos);
  const std::string before = image.ExifSegment != nullptr ? image.ExifSegment->Data : "";
  image.RemoveThumbnail();
  if (image.ExifSegment == nullptr) return;
  const std::string& data = image.ExifSegment->Data;
  const bool hasThumbnail = image.ExifData->HasThumbnail();
  Require((data.size() < before.size()) == hasThumbnail);
  Require(data.size() == static_cast<size_t>(image.ExifSegment->Size));
  Require(before.compare(2, data.size() - 2, data, 2) == 0);
  rasterkit::TMemoryStream file(Written(image, kPlainJpeg, false));
  TImageData again;
  Read(again, file);
  RequireSame(image.ExifSegment, again.ExifSegment);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  TImageData image;
  rasterkit::TSpanStream stream({data, size});
  const bool isReadWhole = Read(image, stream);
  RequireReadBack(image, isReadWhole);
  RequireEndOfFile(image, {data, size});
  CutThumbnail(image);
  return 0;
}
