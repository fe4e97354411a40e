#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <vector>

/// JPEG 2000 files for tests: codestreams that OpenJPEG writes without loss, in boxes made here.
namespace rasterkit::test {

using ByteList = std::vector<uint8_t>;

struct PlaneOfJp2 {
  int bits = 8;
  bool isSigned = false;
  int stepX = 1, stepY = 1;
};

struct CodestreamOfJp2 {
  /// On the reference grid.
  int left = 0, top = 0, width = 37, height = 29;
  /// 0 for one tile.
  int tileWidth = 0, tileHeight = 0;
  int levels = 2;
  bool mixesColors = false;
  std::vector<PlaneOfJp2> planes = {{}, {}, {}};
  /// The sample of a plane at its own place, counted from its first one.
  std::function<int(int plane, int x, int y)> sample;
  std::string_view comment = "Created by the tests";
};

/// A number that differs from sample to sample, within the range of a plane.
int PatternOfJp2(const PlaneOfJp2& plane, int number, int x, int y);

ByteList EncodeCodestream(const CodestreamOfJp2& picture);

ByteList Join(std::initializer_list<ByteList> parts);
ByteList BigEndian16(int number);
ByteList BigEndian32(uint32_t number);
ByteList BoxOfJp2(std::string_view type, const ByteList& content);
/// `uuid` has 32 hexadecimal digits.
ByteList UuidBox(std::string_view uuid, const ByteList& content);
/// A `colr` box with the number of a color space.
ByteList ColorBox(uint32_t colorSpace);
ByteList ProfileBox(const ByteList& profile);
/// A `cdef` box: channel, type, color.
ByteList DefinitionBox(const std::vector<std::array<int, 3>>& channels);
/// A file: signature, file type, header boxes, `others`, codestream.
ByteList FileOfJp2(const ByteList& codestream, const ByteList& headerBoxes,
                   const ByteList& others = {});

inline constexpr std::string_view kGeoTiffUuid = "b14bf8bd083d4b43a5ae8cd7d5a6ce03";
inline constexpr std::string_view kXmpUuid = "be7acfcb97a942e89c71999491e3afac";
inline constexpr std::string_view kExifUuid = "4a706754696666457869662d3e4a5032";
inline constexpr std::string_view kIptcUuid = "33c7a4d2b81d4723a0baf1a3e097ad38";

}  // namespace rasterkit::test
