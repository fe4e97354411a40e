#include <algorithm>
#include <functional>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// Compressed pixels that are copied are looked at first: damage is said, other faults are none.
namespace rasterkit {
namespace {

using test::TempFolder;
using testing::IsEmpty;
using testing::Not;

Picture Colors() {
  std::mt19937 random(1);
  return Picture::Of(
      std::make_unique<TBitmap>(test::FewColorsRaster(pf24bit, 150, 100, 200, random)));
}

std::vector<std::string> DamageIn(const Report& report) {
  std::vector<std::string> found;
  for (const Loss& loss : report.losses) {
    EXPECT_EQ(loss.kind, LossKind::damage) << loss.what;
    EXPECT_FALSE(loss.why.empty());
    found.push_back(loss.what);
  }
  return found;
}

uint32_t Checksum(const std::string& bytes) {
  uint32_t sum = ~uint32_t{0};
  for (const char byte : bytes) {
    sum ^= static_cast<uint8_t>(byte);
    for (int bit = 0; bit < 8; ++bit) sum = sum >> 1 ^ (sum % 2 != 0 ? 0xEDB88320 : 0);
  }
  return ~sum;
}

std::string Word(size_t number) {
  std::string word(4, '\0');
  for (size_t i = 0; i < 4; ++i) word[i] = static_cast<char>(number >> (24 - 8 * i) & 255);
  return word;
}

/// A PNG file with one chunk of pixels whose data end after half of them; each chunk is whole.
std::string WithoutLastRows(const std::string& png) {
  const size_t at = png.find("IDAT");
  const size_t end = png.find("IEND") - 4;
  const std::string data = png.substr(at + 4, (end - 4 - at - 4) / 2);
  return png.substr(0, at - 4) + Word(data.size()) + "IDAT" + data + Word(Checksum("IDAT" + data)) +
         png.substr(end);
}

/// Clears bytes in the middle of the scan.
std::string WithClearedScan(std::string jpeg) {
  const size_t at = jpeg.find("\xFF\xDA");
  std::fill_n(jpeg.begin() + static_cast<ptrdiff_t>(at + (jpeg.size() - at) / 2), 60, '\0');
  return jpeg;
}

/// The data of a scan end early, but the end marker is there.
std::string WithShortScan(std::string jpeg) {
  const size_t at = jpeg.find("\xFF\xDA");
  jpeg.resize(at + (jpeg.size() - at) / 2);
  return jpeg + "\xFF\xD9";
}

/// Other bytes in the middle of the strips, which lie behind the header.
std::string WithWrongStrip(std::string tiff) {
  std::fill_n(tiff.begin() + 400, 30, '\x55');
  return tiff;
}

struct Case {
  const char* name;
  std::function<std::string(std::string)> damage;
};

SaveOptions Packed() {
  SaveOptions options;
  options.compression = TiffCompression::deflate;
  return options;
}

TEST(DamagedCopy, Should_SayWhatIsDamaged) {
  detail::SetWorkerProgram(RASTERKIT_WORKER);
  const Case cases[] = {{"a.png", WithoutLastRows},
                        {"a.jpg", WithClearedScan},
                        {"a.jpg", WithShortScan},
                        {"a.tif", WithWrongStrip}};
  for (const auto& [name, damage] : cases) {
    const TempFolder folder;
    Colors().Save(folder / name, std::string(name) == "a.tif" ? Packed() : SaveOptions());
    const std::string whole = test::ReadFile(folder / name);
    // Whole pixels are copied without a word.
    const Report sound = Picture::Open(folder / name).Save(folder / ("w-" + std::string(name)));
    EXPECT_TRUE(sound.isCopied) << name;
    EXPECT_THAT(sound.losses, IsEmpty()) << name;
    EXPECT_THAT(sound.warnings, IsEmpty()) << name;

    const std::string bytes = damage(whole);
    ASSERT_NE(bytes, whole);
    const std::string file = folder.Write("cut-" + std::string(name), bytes);
    std::vector<std::string> said;
    for (const Isolation isolation : {Isolation::none, Isolation::process}) {
      SCOPED_TRACE(name + std::string(isolation == Isolation::none ? " here" : " in a worker"));
      OpenOptions options;
      options.isolation = isolation;
      const Picture picture = Picture::Open(file, options);
      const std::string target = folder / ("o-" + std::string(name));
      const Report report = picture.Save(target);
      EXPECT_TRUE(report.isCopied);
      EXPECT_THAT(DamageIn(report), Not(IsEmpty()));
      EXPECT_THAT(report.warnings, Not(IsEmpty()));
      if (isolation == Isolation::none) said = DamageIn(report);
      EXPECT_EQ(DamageIn(report), said);
      // What was damaged stays as it was.
      const Report again = Picture::Open(target).Save(folder / ("p-" + std::string(name)));
      EXPECT_EQ(DamageIn(again), said);
    }
  }
}

TEST(DamagedCopy, Should_NameTheInput_When_ItCannotBeDecoded) {
  const TempFolder folder;
  Colors().Save(folder / "a.png");
  std::string bytes = test::ReadFile(folder / "a.png");
  bytes[bytes.find("IEND") - 5] ^= 1;  // the checksum of the pixels
  const std::string file = folder.Write("flip.png", bytes);
  try {
    Picture::Open(file).Save(folder / "o.png");
    ADD_FAILURE() << "was copied";
  } catch (const FormatError& error) {
    EXPECT_EQ(error.File(), file);
  }
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.png", "flip.png"}));
}

/// A fault of the file that leaves every pixel whole is a warning, no loss.
TEST(DamagedCopy, OtherFaults_Should_BeNoLoss) {
  const TempFolder folder;
  SaveOptions full;
  full.chromaX = full.chromaY = 1;
  Colors().Save(folder / "a.jpg", full);
  std::string bytes = test::ReadFile(folder / "a.jpg");
  // Bytes between two segments of the header.
  bytes.insert(bytes.find("\xFF\xDB"), "abc");
  const std::string jpeg = folder.Write("stray.jpg", bytes);
  for (const char* name : {"o.jpg", "o.png"}) {
    const Report report = Picture::Open(jpeg).Save(folder / name);
    EXPECT_THAT(report.losses, IsEmpty()) << name;
    EXPECT_THAT(report.warnings, Not(IsEmpty())) << name;
  }
}

}  // namespace
}  // namespace rasterkit
