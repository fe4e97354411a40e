// The orientation of a 4 MB photo by file name, beside libexif. The file is in the system's cache.

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <rasterkit/codecs/jpeg/jpeg_encoder.h>
#include <rasterkit/jpegexif/photo_queries.h>
#include <rasterkit/jpegexif/raw_orientation.h>

#include "tests/support/exif_builder.h"

#ifdef RASTERKIT_BENCH_LIBEXIF
#include <libexif/exif-data.h>
#endif

namespace {

using namespace rasterkit;

constexpr size_t kPhotoBytes = 4'000'000;

/// What a camera writes in front of its picture: a directory of its own tags, a position, and a
/// thumbnail.
std::string CameraExif() {
  const test::TiffWriter writer(test::ByteOrder::intel);
  std::vector<test::TiffEntry> entries = {writer.Ascii(271, "A camera maker"),
                                          writer.Ascii(272, "A camera model"),
                                          writer.Short(274, 6),
                                          writer.Rationals(282, {{300, 1}}),
                                          writer.Rationals(283, {{300, 1}}),
                                          writer.Short(296, 2),
                                          writer.Ascii(305, "Firmware 1.0"),
                                          writer.Ascii(306, "2019:07:04 13:05:09"),
                                          writer.Bytes(37500, std::string(4000, 'm'), 7),
                                          writer.GpsPointer()};
  const std::string tiff = writer.Tiff(
      entries, {writer.Ascii(1, "N"), writer.Rationals(2, {{51, 1}, {25, 2}, {0, 1}}),
                writer.Ascii(3, "E"), writer.Rationals(4, {{10, 1}, {11, 1}, {12, 1}})});
  return test::ExifSection(tiff + std::string(8000, 't'));
}

/// Noise, which no encoder makes small, until the file is large enough.
std::vector<uint8_t> NoisePhoto() {
  std::mt19937 random(1);
  for (int height = 1000;; height += 200) {
    Raster raster(pf24bit, 2000, height);
    for (int y = 0; y < height; ++y) {
      for (size_t i = 0; i < raster.RowBytes(); ++i)
        raster.Row(y)[i] = static_cast<uint8_t>(random());
    }
    std::vector<uint8_t> jpeg = EncodeJpeg(raster, 85);
    if (jpeg.size() >= kPhotoBytes) return jpeg;
  }
}

class Photo {
 public:
  Photo()
      : name_((std::filesystem::temp_directory_path() /
               ("exif_bench_" + std::to_string(getpid()) + ".jpg"))
                  .string()) {
    const std::vector<uint8_t> jpeg = NoisePhoto();
    const std::string exif = CameraExif();
    std::ofstream file(name_, std::ios::binary);
    file.write(reinterpret_cast<const char*>(jpeg.data()), 2);
    file.write(exif.data(), static_cast<std::streamsize>(exif.size()));
    file.write(reinterpret_cast<const char*>(jpeg.data()) + 2,
               static_cast<std::streamsize>(jpeg.size() - 2));
  }
  ~Photo() { std::filesystem::remove(name_); }
  const std::string& Name() const { return name_; }

 private:
  std::string name_;
};

const std::string& PhotoName() {
  static const Photo photo;
  return photo.Name();
}

void Orientation_Rasterkit(benchmark::State& state) {
  const std::string& name = PhotoName();
  for (auto _ : state) {
    int rotation = 0;
    if (!GetJpgRotation(name, rotation) || rotation != 270) state.SkipWithError("wrong rotation");
    benchmark::DoNotOptimize(rotation);
  }
}
BENCHMARK(Orientation_Rasterkit)->Unit(benchmark::kMicrosecond);

void Orientation_RasterkitRaw(benchmark::State& state) {
  const std::string& name = PhotoName();
  for (auto _ : state) {
    const auto orientation = ReadRawOrientation(name);
    if (orientation != 6) state.SkipWithError("wrong orientation");
    benchmark::DoNotOptimize(orientation);
  }
}
BENCHMARK(Orientation_RasterkitRaw)->Unit(benchmark::kMicrosecond);

#ifdef RASTERKIT_BENCH_LIBEXIF
void Orientation_Libexif(benchmark::State& state) {
  const std::string& name = PhotoName();
  for (auto _ : state) {
    ExifData* data = exif_data_new_from_file(name.c_str());
    ExifEntry* entry = exif_content_get_entry(data->ifd[EXIF_IFD_0], EXIF_TAG_ORIENTATION);
    const int orientation = exif_get_short(entry->data, exif_data_get_byte_order(data));
    if (orientation != 6) state.SkipWithError("wrong orientation");
    benchmark::DoNotOptimize(orientation);
    exif_data_unref(data);
  }
}
BENCHMARK(Orientation_Libexif)->Unit(benchmark::kMicrosecond);
#endif

}  // namespace
