#include <cmath>
#include <cstdio>
#include <map>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include <rasterkit/jpegexif/image_data.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/jpegexif/raw_orientation.h>

#include "tests/support/corpus.h"

namespace rasterkit {
namespace {

struct Exception {
  std::optional<int> orientation;
  const char* reason;
};

/// Files whose stated orientation is not the one that their EXIF main directory holds.
const std::map<std::string, Exception> kOrientationExceptions = {
    {"exif/exiforient__Landscape_0.jpg",
     {std::nullopt, "the file holds 0, which is no orientation"}},
    {"exif/exifsample__Canon_DIGITAL_IXUS_400.jpg", {std::nullopt, "stated by XMP only"}},
    {"exif/exifsample__image01088.jpg", {std::nullopt, "stated by XMP only"}},
    {"exif/exifsample__image01137.jpg", {std::nullopt, "stated by XMP only"}},
    {"exif/me__Nikon_D5000.jpg", {std::nullopt, "stated by the thumbnail's directory only"}},
    {"wrongext/cimg___DSC6099_is_webp.jpg", {std::nullopt, "a WebP file is no JPEG"}},
};

/// Files in which XMP comes first, so that the photo query sees no EXIF data.
const std::map<std::string, const char*> kXmpFirst = {
    {"exif/exifsample__image01088.jpg", "XMP only"},
    {"exif/exifsample__image01137.jpg", "XMP only"},
    {"exif/exifsample__image01551.jpg", "XMP only"},
    {"exif/exifsample__no_exif.jpg", "EXIF behind XMP"},
    {"exif/imagemeta__metadata_demo_iim_and_xmp_only.jpg", "XMP only"},
    {"exif/me__Issue_600_1_.jpg", "XMP only"},
    {"jpeg/tm__cmyk-sample-no-icc.jpg", "XMP only"},
};

/// Files with a GPS directory for which the index states no position.
const std::map<std::string, const char*> kUnstatedPositions = {
    {"exif/exifr__broken1.jpg", "coordinates without a direction, all 0/0"},
    {"exif/me__Leica_T_Typ_701_.jpg", "coordinates without a direction, all 0/0"},
    {"exif/me__Nikon_D5000.jpg", "seconds are 0/0, so that other readers give none"},
};

int RotationOf(int orientation) {
  return orientation == 3 ? 180 : orientation == 6 ? 270 : orientation == 8 ? 90 : 0;
}

class ExifCorpus : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (test::CorpusFolder().empty()) GTEST_SKIP() << "no corpus";
    entries_ = test::CorpusEntries(GetParam());
    ASSERT_FALSE(entries_.empty());
  }
  static std::string NameOf(test::CorpusEntry& entry) {
    return (test::CorpusFolder() / entry["path"]).string();
  }

  std::vector<test::CorpusEntry> entries_;
};
INSTANTIATE_TEST_SUITE_P(Folders, ExifCorpus, ::testing::Values("exif", "jpeg", "wrongext"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(ExifCorpus, RawOrientation_Should_BeTheStatedOne) {
  for (test::CorpusEntry& entry : entries_) {
    const std::string& stated = entry["orientation"];
    std::optional<int> expected;
    if (!stated.empty()) expected = std::stoi(stated);
    const auto exception = kOrientationExceptions.find(entry["path"]);
    if (exception != kOrientationExceptions.end()) expected = exception->second.orientation;
    if (entry["path"].find("_is_tiff") != std::string::npos) expected = std::nullopt;
    EXPECT_EQ(ReadRawOrientation(NameOf(entry)), expected) << entry["path"];
  }
}

TEST_P(ExifCorpus, Query_Should_AnswerForTheStatedOrientation) {
  for (test::CorpusEntry& entry : entries_) {
    const std::optional<int> raw = ReadRawOrientation(NameOf(entry));
    const bool isHidden = kXmpFirst.count(entry["path"]) > 0;
    const int expected = isHidden ? 0 : RotationOf(raw.value_or(0));
    int rotation = -1;
    EXPECT_EQ(GetJpgRotation(NameOf(entry), rotation), expected != 0) << entry["path"];
    EXPECT_EQ(rotation, expected) << entry["path"];
  }
}

TEST_P(ExifCorpus, ErrorText_Should_OnlyBeSet_When_XmpComesFirst) {
  for (test::CorpusEntry& entry : entries_) {
    TImageData image;
    image.ReadJpegFile(NameOf(entry));
    const char* expected = kXmpFirst.count(entry["path"]) > 0 ? "Incorrect Exif header" : "";
    EXPECT_EQ(image.ErrStr, expected) << entry["path"];
  }
}

TEST_P(ExifCorpus, Position_Should_BeTheStatedOne) {
  constexpr double kTolerance = 1e-9;
  for (test::CorpusEntry& entry : entries_) {
    TImageData image;
    image.ReadJpegFile(NameOf(entry));
    double latitude = 0, longitude = 0;
    const bool isStated = std::sscanf(entry["gps"].c_str(), "%lf,%lf", &latitude, &longitude) == 2;
    const bool isUnstated = kUnstatedPositions.count(entry["path"]) > 0;
    ASSERT_EQ(image.GPSData != nullptr, isStated || isUnstated) << entry["path"];
    if (!isStated) continue;
    EXPECT_NEAR(image.GPSData->Latitude.Koord(), latitude, kTolerance) << entry["path"];
    EXPECT_NEAR(image.GPSData->Longitude.Koord(), longitude, kTolerance) << entry["path"];
  }
}

}  // namespace
}  // namespace rasterkit
