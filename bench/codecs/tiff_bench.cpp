// TIFF files on a file system in memory, read and written on one thread: 12 megapixels of color, a
// plan of bits, a grid of floats. Peers in the same run are libtiff alone, which exchanges red and
// blue in its strips, and GDAL where it is installed.

#include <cstdio>
#include <cstring>
#include <filesystem>

#include <benchmark/benchmark.h>
#include <tiffio.h>

#include <rasterkit/codecs/tiff/tiff_decoder.h>
#include <rasterkit/codecs/tiff/tiff_encoder.h>
#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/codecs/tiff/tiff_plan.h>
#include <rasterkit/kernels/rows/exchange_red_blue.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "bench/support/bench_pictures.h"

#ifdef RASTERKIT_BENCH_GDAL
#include <cpl_string.h>
#include <gdal.h>
#endif

namespace {

using namespace rasterkit;

constexpr int kGridSize = 4000;

const Raster& Photo() {
  static const Raster raster = bench::PhotoLike(4000, 3000);
  return raster;
}

const Raster& Plan() {
  static const Raster raster = ConvertRaster(bench::PlanLike(4000, 3000), pf24bit);
  return raster;
}

/// Sheet A0 at 300 dots per inch.
const Raster& Bits() {
  static const Raster raster = ConvertRaster(bench::PlanLike(14043, 9933), pf1bit);
  return raster;
}

/// Heights of a soft landscape, as many bytes as floats.
const Raster& Grid() {
  static const Raster raster = [] {
    Raster heights(pf32bit, kGridSize, kGridSize);
    for (int y = 0; y < kGridSize; y++) {
      auto* row = reinterpret_cast<float*>(heights.Row(y));
      for (int x = 0; x < kGridSize; x++)
        row[x] = 100.0f + 0.01f * static_cast<float>((x * 7 ^ y * 3) & 1023);
    }
    return heights;
  }();
  return raster;
}

std::string FileName() {
  return (std::filesystem::exists("/dev/shm") ? "/dev/shm/" : "/tmp/") +
         std::string("rasterkit-bench.tif");
}

void Report(benchmark::State& state, const Raster& raster) {
  state.counters["per_pixel"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * raster.Width() * raster.Height(),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(FileName())) / 1e6;
  std::filesystem::remove(FileName());
}

TiffWriteOptions Packed(TiffCompression compression, int threads = 1) {
  TiffWriteOptions options;
  options.compression = compression;
  options.threads = threads;
  return options;
}

// ---- This library

void Write(const Raster& raster, const TiffWriteOptions& options) {
  AtomicFile file(FileName());
  EncodeTiff(raster, file, options);
  file.Commit();
}

void WriteOwn(benchmark::State& state, const Raster& (*picture)(), TiffCompression compression,
              int threads = 1) {
  const Raster& raster = picture();
  for (auto _ : state) Write(raster, Packed(compression, threads));
  Report(state, raster);
}

void ReadOwn(benchmark::State& state, int threads) {
  for (auto _ : state) {
    TFileStream file(FileName());
    benchmark::DoNotOptimize(DecodeTiff(file, {.threads = threads}).rows.Row(0));
  }
}

/// Bands as a flow uses them: a few megabytes that stay in the cache.
constexpr int kBandRows = 64;

/// The page of `WriteTiff`, written in bands.
void WriteBands(benchmark::State& state) {
  const Raster& raster = Photo();
  const WrittenSize size{raster.Width(), raster.Height()};
  PictureWriting writing;
  writing.form = FormFor(TiffCompression::none, LayoutOf(raster.Clone()));
  for (auto _ : state) {
    AtomicFile file(FileName());
    Pixels band = NewPixels(raster.Clone(), size.width, kBandRows);
    const auto writer = OpenTiffWriter(band, size, writing, file);
    for (int y = 0; y < size.height; y += kBandRows) {
      if (y + kBandRows > size.height) band = NewPixels(band, size.width, size.height - y);
      Raster& rows = std::get<Raster>(band);
      for (int i = 0; i < rows.Height(); i++) {
        std::memcpy(rows.Row(i), raster.Row(y + i), raster.RowBytes());
      }
      writer->Write(band);
    }
    writer->Finish();
    file.Commit();
  }
  Report(state, raster);
}

/// The page in bands that are used again and again.
void ReadBands(benchmark::State& state) {
  const Raster& raster = Photo();
  Write(raster, Packed(TiffCompression::none));
  for (auto _ : state) {
    TFileStream file(FileName());
    const auto reader = OpenTiffRows(file);
    Pixels band = NewPixels(reader->Like(), reader->Width(), kBandRows);
    for (int y = 0; y < reader->Height(); y += kBandRows) {
      const int rows = std::min(kBandRows, reader->Height() - y);
      if (rows < kBandRows) band = NewPixels(band, reader->Width(), rows);
      reader->Read(0, y, band);
      benchmark::DoNotOptimize(std::get<Raster>(band).Row(0));
    }
  }
  Report(state, raster);
}

/// A twelfth of the page out of its middle.
void ReadPart(benchmark::State& state) {
  const Raster& raster = Photo();
  Write(raster, Packed(TiffCompression::none));
  for (auto _ : state) {
    TFileStream file(FileName());
    const auto reader = OpenTiffRows(file);
    Pixels part = NewPixels(reader->Like(), 1000, 1000);
    reader->Read(1500, 1000, part);
    benchmark::DoNotOptimize(std::get<Raster>(part).Row(0));
  }
  Report(state, raster);
}

// ---- libtiff alone

bool IsColor(const Raster& raster) {
  return raster.Format() == pf24bit;
}

/// Strips of the same height, so that the library is what is compared.
void WriteByLibrary(const Raster& raster, const TiffWriteOptions& options) {
  const detail::TiffPlan plan = detail::PlanTiff(raster, options);
  TIFF* tiff = TIFFOpen(FileName().c_str(), "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, plan.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, plan.height);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, plan.bits);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, plan.samples);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, plan.photometric);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, plan.compression);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, plan.rowsPerStrip);
  if (plan.predictor != 1) TIFFSetField(tiff, TIFFTAG_PREDICTOR, plan.predictor);
  std::vector<uint8_t> strip(plan.rowBytes * plan.rowsPerStrip);
  for (uint32_t i = 0; i < plan.Strips(); i++) {
    const uint32_t first = i * plan.rowsPerStrip;
    const uint32_t rows = std::min(plan.rowsPerStrip, plan.height - first);
    for (uint32_t y = 0; y < rows; y++) {
      const uint8_t* row = raster.Row(static_cast<int>(first + y));
      uint8_t* target = strip.data() + y * plan.rowBytes;
      if (IsColor(raster)) {
        kernels::ExchangeRedBlue24(row, plan.width, target);
      } else {
        std::memcpy(target, row, plan.rowBytes);
      }
    }
    TIFFWriteEncodedStrip(tiff, i, strip.data(), static_cast<tmsize_t>(rows * plan.rowBytes));
  }
  TIFFClose(tiff);
}

void WriteLibtiff(benchmark::State& state, const Raster& (*picture)(),
                  TiffCompression compression) {
  const Raster& raster = picture();
  for (auto _ : state) WriteByLibrary(raster, Packed(compression));
  Report(state, raster);
}

/// Into rows of a raster of the same format, which is fresh for each file.
void ReadLibtiff(benchmark::State& state, const Raster& model) {
  for (auto _ : state) {
    Raster raster(model.Format(), model.Width(), model.Height());
    TIFF* tiff = TIFFOpen(FileName().c_str(), "r");
    uint32_t rowsPerStrip = 0;
    TIFFGetField(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
    const size_t rowBytes = raster.RowBytes();
    std::vector<uint8_t> strip(static_cast<size_t>(TIFFStripSize(tiff)));
    for (uint32_t i = 0; i < TIFFNumberOfStrips(tiff); i++) {
      const tmsize_t count = TIFFReadEncodedStrip(tiff, i, strip.data(), -1);
      const auto rows = static_cast<int>(static_cast<size_t>(count) / rowBytes);
      for (int y = 0; y < rows; y++) {
        const uint8_t* row = strip.data() + static_cast<size_t>(y) * rowBytes;
        uint8_t* target = raster.Row(static_cast<int>(i * rowsPerStrip) + y);
        if (IsColor(raster)) {
          kernels::ExchangeRedBlue24(row, static_cast<size_t>(raster.Width()), target);
        } else {
          std::memcpy(target, row, rowBytes);
        }
      }
    }
    TIFFClose(tiff);
    benchmark::DoNotOptimize(raster.Row(0));
  }
}

// ---- GDAL

#ifdef RASTERKIT_BENCH_GDAL

/// Blue, green, red of each pixel; a single band otherwise.
void Transfer(GDALDatasetH dataset, GDALRWFlag flag, const Raster& raster) {
  const bool isColor = IsColor(raster);
  const bool isGrid = raster.Format() == pf32bit;
  int bands[] = {3, 2, 1};
  int band[] = {1};
  const int pixelBytes = isColor ? 3 : isGrid ? 4 : 1;
  const CPLErr result = GDALDatasetRasterIO(
      dataset, flag, 0, 0, raster.Width(), raster.Height(), const_cast<uint8_t*>(raster.Row(0)),
      raster.Width(), raster.Height(), isGrid ? GDT_Float32 : GDT_Byte, isColor ? 3 : 1,
      isColor ? bands : band, pixelBytes, static_cast<int>(raster.Stride()), 1);
  if (result != CE_None) std::abort();
}

void WriteGdal(benchmark::State& state, const Raster& (*picture)(), const char* compression,
               const char* threads = "1") {
  GDALAllRegister();
  const Raster& raster = picture();
  const GDALDriverH driver = GDALGetDriverByName("GTiff");
  char** options = CSLSetNameValue(nullptr, "COMPRESS", compression);
  options = CSLSetNameValue(options, "INTERLEAVE", "PIXEL");
  options = CSLSetNameValue(options, "PHOTOMETRIC", "RGB");
  options = CSLSetNameValue(options, "NUM_THREADS", threads);
  if (std::strcmp(compression, "NONE") != 0) options = CSLSetNameValue(options, "PREDICTOR", "2");
  for (auto _ : state) {
    const GDALDatasetH dataset = GDALCreate(driver, FileName().c_str(), raster.Width(),
                                            raster.Height(), 3, GDT_Byte, options);
    Transfer(dataset, GF_Write, raster);
    GDALClose(dataset);
  }
  CSLDestroy(options);
  Report(state, raster);
}

/// Bits arrive as a byte each, which is what the peer has for them.
void ReadGdal(benchmark::State& state, const Raster& model) {
  GDALAllRegister();
  const TPixelFormat format = model.Format() == pf1bit ? pf8bit : model.Format();
  for (auto _ : state) {
    const Raster raster(format, model.Width(), model.Height());
    const GDALDatasetH dataset = GDALOpen(FileName().c_str(), GA_ReadOnly);
    Transfer(dataset, GF_Read, raster);
    GDALClose(dataset);
    benchmark::DoNotOptimize(raster.Row(0));
  }
}

#endif

// ---- Files to read

/// What the encoder writes of the picture.
void WritePicture(const Raster& raster, TiffCompression compression) {
  Write(raster, Packed(compression));
}

/// Floats have no encoder here.
void WriteGrid(const Raster& raster, TiffCompression) {
  TIFF* tiff = TIFFOpen(FileName().c_str(), "w");
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, raster.Width());
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, raster.Height());
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 32);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_IEEEFP);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 16);
  for (int y = 0; y < raster.Height(); y++)
    TIFFWriteScanline(tiff, const_cast<uint8_t*>(raster.Row(y)), static_cast<uint32_t>(y));
  TIFFClose(tiff);
}

enum class Reader { own, libtiff, gdal };

void Read(benchmark::State& state, Reader reader, const Raster& (*picture)(),
          TiffCompression compression, int threads = 1) {
  const Raster& raster = picture();
  if (picture == Grid) {
    WriteGrid(raster, compression);
  } else {
    WritePicture(raster, compression);
  }
  if (reader == Reader::own) ReadOwn(state, threads);
  if (reader == Reader::libtiff) ReadLibtiff(state, raster);
#ifdef RASTERKIT_BENCH_GDAL
  if (reader == Reader::gdal) ReadGdal(state, raster);
#endif
  Report(state, raster);
}

constexpr auto kNone = TiffCompression::none;
constexpr auto kLzw = TiffCompression::lzw;
constexpr auto kDeflate = TiffCompression::deflate;
constexpr auto kG4 = TiffCompression::group4;

#define RASTERKIT_BENCH(function, name, ...) \
  BENCHMARK_CAPTURE(function, name, __VA_ARGS__)->Unit(benchmark::kMillisecond)->UseRealTime()

#ifdef RASTERKIT_BENCH_GDAL
#define RASTERKIT_BENCH_PEER(function, name, ...) RASTERKIT_BENCH(function, name, __VA_ARGS__)
#else
#define RASTERKIT_BENCH_PEER(function, name, ...) static_assert(true)
#endif

RASTERKIT_BENCH(WriteOwn, photo_plain, Photo, kNone);
BENCHMARK(WriteBands)->Unit(benchmark::kMillisecond)->UseRealTime();
RASTERKIT_BENCH(WriteLibtiff, photo_plain, Photo, kNone);
RASTERKIT_BENCH_PEER(WriteGdal, photo_plain, Photo, "NONE");
RASTERKIT_BENCH(WriteOwn, photo_lzw, Photo, kLzw);
RASTERKIT_BENCH(WriteLibtiff, photo_lzw, Photo, kLzw);
RASTERKIT_BENCH_PEER(WriteGdal, photo_lzw, Photo, "LZW");
RASTERKIT_BENCH(WriteOwn, photo_deflate, Photo, kDeflate);
RASTERKIT_BENCH(WriteLibtiff, photo_deflate, Photo, kDeflate);
RASTERKIT_BENCH_PEER(WriteGdal, photo_deflate, Photo, "DEFLATE");
RASTERKIT_BENCH(WriteOwn, plan_lzw, Plan, kLzw);
RASTERKIT_BENCH(WriteLibtiff, plan_lzw, Plan, kLzw);
RASTERKIT_BENCH_PEER(WriteGdal, plan_lzw, Plan, "LZW");
RASTERKIT_BENCH(WriteOwn, plan_deflate, Plan, kDeflate);
RASTERKIT_BENCH_PEER(WriteGdal, plan_deflate, Plan, "DEFLATE");
RASTERKIT_BENCH(WriteOwn, photo_lzw_2_threads, Photo, kLzw, 2);
RASTERKIT_BENCH_PEER(WriteGdal, photo_lzw_2_threads, Photo, "LZW", "2");
RASTERKIT_BENCH(WriteOwn, bits_g4, Bits, kG4);
RASTERKIT_BENCH(WriteLibtiff, bits_g4, Bits, kG4);

RASTERKIT_BENCH(Read, photo_plain, Reader::own, Photo, kNone);
BENCHMARK(ReadBands)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ReadPart)->Unit(benchmark::kMillisecond)->UseRealTime();
RASTERKIT_BENCH(Read, photo_plain_libtiff, Reader::libtiff, Photo, kNone);
RASTERKIT_BENCH_PEER(Read, photo_plain_gdal, Reader::gdal, Photo, kNone);
RASTERKIT_BENCH(Read, photo_lzw, Reader::own, Photo, kLzw);
RASTERKIT_BENCH(Read, photo_lzw_libtiff, Reader::libtiff, Photo, kLzw);
RASTERKIT_BENCH_PEER(Read, photo_lzw_gdal, Reader::gdal, Photo, kLzw);
RASTERKIT_BENCH(Read, photo_deflate, Reader::own, Photo, kDeflate);
RASTERKIT_BENCH(Read, photo_deflate_libtiff, Reader::libtiff, Photo, kDeflate);
RASTERKIT_BENCH_PEER(Read, photo_deflate_gdal, Reader::gdal, Photo, kDeflate);
RASTERKIT_BENCH(Read, photo_lzw_2_threads, Reader::own, Photo, kLzw, 2);
RASTERKIT_BENCH(Read, bits_g4, Reader::own, Bits, kG4);
RASTERKIT_BENCH(Read, bits_g4_libtiff, Reader::libtiff, Bits, kG4);
RASTERKIT_BENCH_PEER(Read, bits_g4_gdal, Reader::gdal, Bits, kG4);
RASTERKIT_BENCH(Read, grid, Reader::own, Grid, kNone);
RASTERKIT_BENCH(Read, grid_libtiff, Reader::libtiff, Grid, kNone);
RASTERKIT_BENCH_PEER(Read, grid_gdal, Reader::gdal, Grid, kNone);

}  // namespace
