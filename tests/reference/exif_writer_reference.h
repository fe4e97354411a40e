#pragma once

#include <cstdint>
#include <string>

#include <rasterkit/jpegexif/image_data.h>

/// Writing of EXIF sections straight from its rules, on strings whose positions count from 1.
namespace rasterkit::reference {

/// `count` bytes from `position`, fewer where the text ends.
inline std::string Copy(const std::string& text, int64_t position, int64_t count) {
  std::string part;
  for (int64_t p = position; p < position + count; ++p) {
    if (p >= 1 && p <= static_cast<int64_t>(text.size())) part += text[static_cast<size_t>(p - 1)];
  }
  return part;
}

/// Where `part` begins in the text; 0 when it does not occur.
inline int64_t Pos(const std::string& part, const std::string& text) {
  for (int64_t p = 1; p <= static_cast<int64_t>(text.size()); ++p) {
    if (Copy(text, p, static_cast<int64_t>(part.size())) == part) return p;
  }
  return 0;
}

inline std::string SectionBytes(const TSection& section) {
  return std::string("\xFF") + static_cast<char>(section.DType) + section.Data;
}

inline std::string SaveExif(const TImageData& image) {
  std::string bytes = "\xFF\xD8";
  if (image.ExifSegment != nullptr) {
    bytes += SectionBytes(*image.ExifSegment);
  } else if (image.HeaderSegment != nullptr) {
    bytes += SectionBytes(*image.HeaderSegment);
  } else {
    bytes += "\xFF\xE0";
    bytes += std::string("\x00\x10", 2);
    bytes += std::string("JFIF\0", 5);
    bytes += "\x01\x02";
    bytes += "\x01";
    bytes += "\x01\x2C";
    bytes += "\x01\x2C";
    bytes += std::string("\0\0", 2);
  }
  if (image.IPTCSegment != nullptr) bytes += SectionBytes(*image.IPTCSegment);
  if (image.CommentSegment != nullptr) bytes += SectionBytes(*image.CommentSegment);
  for (int n = 1; n <= image.OthersCount; ++n) {
    bytes += SectionBytes(*image.OtherSegments.at(static_cast<size_t>(n)));
  }
  return bytes;
}

/// Position, from 0, of the picture data in a JPEG file.
inline int64_t PictureDataPlace(const std::string& jpeg) {
  const auto byteAt = [&jpeg](int64_t place) {
    const std::string byte = Copy(jpeg, place + 1, 1);
    return byte.empty() ? 0 : static_cast<int>(static_cast<uint8_t>(byte[0]));
  };
  const auto lengthAt = [&](int64_t place) { return byteAt(place + 2) * 256 + byteAt(place + 3); };
  int64_t place = 2;
  if (byteAt(place + 1) == 0xE0) place = 2 + lengthAt(place) + 2;
  while (std::string("\xE1\xE2\xEC\xED\xEE\xFE").find(static_cast<char>(byteAt(place + 1))) !=
         std::string::npos) {
    place += lengthAt(place) + 2;
  }
  return place;
}

inline std::string WriteImageToStream(const TImageData& image, const std::string& jpeg,
                                      bool withoutHeader) {
  const std::string rest =
      Copy(jpeg, PictureDataPlace(jpeg) + 1, static_cast<int64_t>(jpeg.size()));
  return withoutHeader ? rest : SaveExif(image) + rest;
}

inline std::string ExtractThumbnailBuffer(const TImageData& image) {
  if (!image.ExifData || image.ExifData->ThumbStart < 22 || image.ExifData->ThumbLength < 257) {
    return "";
  }
  const std::string area =
      Copy(image.ExifBuff, image.ExifData->ThumbStart, image.ExifData->ThumbLength);
  int64_t start = Pos("\xFF\xD8\xFF\xDB", area);
  if (start == 0) start = Pos("\xFF\xD8\xFF\xC4", area);
  if (start == 0) return "";
  const std::string picture = Copy(area, start, static_cast<int64_t>(area.size()));
  const int64_t end = Pos("\xFF\xD9", picture);
  return end == 0 ? picture : Copy(picture, 1, end + 2);
}

}  // namespace rasterkit::reference
