#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/jpegexif/image_data.h>

#include "tests/support/exif_builder.h"

namespace rasterkit::test {

/// Feeds EXIF data to a new TImageData as if a photo held it.
class ExifFixture : public ::testing::Test {
 protected:
  /// `content` is what follows the length bytes of the section.
  bool ReadSection(const std::string& content) {
    image_ = std::make_unique<TImageData>();
    const std::string file = JpegOf({JpegSection(0xE1, content)});
    TSpanStream stream({reinterpret_cast<const uint8_t*>(file.data()), file.size()});
    return image_->ReadJpegSections(stream);
  }
  bool ReadTiff(const std::string& tiff) { return ReadSection(ExifContent(tiff)); }

  const TExifData& Exif() const { return *image_->ExifData; }
  const TGPSData& Gps() const { return *image_->GPSData; }
  const TTagEntry& Entry(size_t row) const { return Exif().FTagArray.at(row); }

  std::unique_ptr<TImageData> image_ = std::make_unique<TImageData>();
};

/// The tests of the fixture in both byte orders.
class ExifInBothOrders : public ExifFixture, public ::testing::WithParamInterface<ByteOrder> {
 protected:
  TiffWriter writer_{GetParam()};
};

inline std::string OrderName(const ::testing::TestParamInfo<ByteOrder>& info) {
  return info.param == ByteOrder::intel ? "Intel" : "Motorola";
}

}  // namespace rasterkit::test
