#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <rasterkit/bitmaptools/files/graphic_files.h>
#include <rasterkit/codecs/decode_frame.h>
#include <rasterkit/pictures/load_bitmap.h>
#include <rasterkit/pictures/reading/convert_metafile.h>
#include <rasterkit/pictures/reading/load_graphic_isolated.h>
#include <rasterkit/pictures/reading/picture_fields.h>
#include <rasterkit/pictures/reading/picture_file.h>
#include <rasterkit/runtime/error_class.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/limits.h>
#include <rasterkit/runtime/worker/worker_memory.h>
#include <rasterkit/runtime/worker/worker_program.h>

#include "tests/support/corpus.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// What a worker process reads equals what this process reads, in every property.
namespace rasterkit {
namespace {

using detail::FieldWriter;
using test::TempFolder;

class IsolatedReading : public testing::Test {
 protected:
  IsolatedReading() { detail::SetWorkerProgram(RASTERKIT_WORKER); }
};

std::string ErrorOf(const std::function<void()>& reading) {
  try {
    reading();
    return {};
  } catch (const std::exception& error) {
    return ErrorClassName(error) + ": " + error.what();
  }
}

std::vector<uint8_t> RowsOf(const Raster& raster) {
  const auto rows = detail::RowsOf(raster);
  return {rows.begin(), rows.end()};
}

/// All that reading a file gives. The fields hold every fact; see picture_fields_test.cpp.
struct Result {
  std::vector<uint8_t> fields, rows;
  std::string error;

  bool operator==(const Result&) const = default;
};

Result ReadingOf(const std::string& file, Isolation isolation, PictureReading reading = {}) {
  reading.isolation = isolation;
  LoadedFrame picture;
  Result result;
  result.error = ErrorOf([&] { ReadPicture(picture, file, reading); });
  FieldWriter fields;
  detail::WritePicture(fields, picture);
  result.fields = fields.Take();
  result.rows = RowsOf(picture.frame.rows);
  return result;
}

Result FrameOf(const std::string& file, Isolation isolation) {
  FrameOptions options;
  options.isolation = isolation;
  ImagingFrame frame;
  CodecReport report;
  Result result;
  result.error = ErrorOf([&] { frame = DecodeFrame(file, options, &report); });
  FieldWriter fields;
  detail::WriteFrame(fields, frame);
  detail::WriteReport(fields, report);
  result.fields = fields.Take();
  result.rows = RowsOf(frame.rows);
  return result;
}

Result BitmapOf(const std::string& file, Isolation isolation) {
  std::unique_ptr<TBitmap> bitmap;
  CodecReport report;
  Result result;
  result.error = ErrorOf([&] { bitmap = LoadBitmap(file, isolation, &report); });
  FieldWriter fields;
  detail::WriteReport(fields, report);
  if (bitmap) {
    detail::WriteRaster(fields, bitmap->Content());
    fields.Bool(bitmap->Transparent());
    fields.I32(bitmap->TransparentColor());
    result.rows = RowsOf(bitmap->Content());
  }
  result.fields = fields.Take();
  return result;
}

void ExpectSame(const Result& here, const Result& isolated, const std::string& what) {
  EXPECT_EQ(isolated.error, here.error) << what;
  EXPECT_TRUE(isolated.fields == here.fields) << what << ": other facts";
  EXPECT_TRUE(isolated.rows == here.rows) << what << ": other pixels";
}

void ExpectSameReading(const std::string& file, const PictureReading& reading = {}) {
  const Result here = ReadingOf(file, Isolation::none, reading);
  ExpectSame(here, ReadingOf(file, Isolation::process, reading), file);
}

void ExpectSame(const std::string& file) {
  ExpectSameReading(file);
  ExpectSame(FrameOf(file, Isolation::none), FrameOf(file, Isolation::process), file + " (frame)");
}

std::vector<std::string> FilesBelow(const std::filesystem::path& folder) {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

/// Pictures of every format, damaged ones among them, and files that are no pictures.
std::vector<std::string> SampleFiles() {
  std::vector<std::string> files = FilesBelow(RASTERKIT_SAMPLES);
  for (const char* format : {"bmp", "emf", "gif", "jpeg", "png", "tiff", "webp", "wmf"}) {
    const auto seeds = FilesBelow(std::filesystem::path(RASTERKIT_SEEDS) / format);
    files.insert(files.end(), seeds.begin(), seeds.end());
  }
  return files;
}

std::string Sample(const std::string& name) {
  return std::string(RASTERKIT_SAMPLES) + "/" + name;
}

TEST_F(IsolatedReading, Samples_Should_BeReadTheSame) {
  for (const std::string& file : SampleFiles()) ExpectSame(file);
}

TEST_F(IsolatedReading, Corpus_Should_BeReadTheSame) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  int files = 0;
  for (const std::string& file : FilesBelow(test::CorpusFolder())) {
    ExpectSame(file);
    ++files;
  }
  EXPECT_GT(files, 100);
}

TEST_F(IsolatedReading, Bitmap_Should_BeLoadedTheSame) {
  for (const std::string& file : SampleFiles()) {
    ExpectSame(BitmapOf(file, Isolation::none), BitmapOf(file, Isolation::process), file);
  }
}

TEST_F(IsolatedReading, Metafile_Should_BeDrawnTheSame_AtAnySize) {
  PictureReading reading;
  reading.drawing.size = {123, 0};
  reading.drawing.background = RGB(10, 20, 30);
  for (const char* format : {"emf", "wmf"}) {
    for (const std::string& file : FilesBelow(std::filesystem::path(RASTERKIT_SEEDS) / format)) {
      ExpectSameReading(file, reading);
    }
  }
}

TEST_F(IsolatedReading, Metafile_Should_BeConvertedTheSame) {
  for (const char* format : {"emf", "wmf", "png"}) {
    for (const std::string& file : FilesBelow(std::filesystem::path(RASTERKIT_SEEDS) / format)) {
      for (const bool toEnhanced : {false, true}) {
        Result results[2];
        for (const Isolation isolation : {Isolation::none, Isolation::process}) {
          TFileStream stream(file);
          ConvertedMetafile converted;
          Result& result = results[isolation == Isolation::process ? 1 : 0];
          result.error = ErrorOf([&] {
            converted = ConvertMetafile(stream, toEnhanced, isolation);
            if (converted.error) std::rethrow_exception(converted.error);
          });
          converted.error = nullptr;
          FieldWriter fields;
          detail::WriteConvertedMetafile(fields, converted);
          result.fields = fields.Take();
          result.rows = converted.bytes;
        }
        ExpectSame(results[0], results[1], file);
      }
    }
  }
}

TEST_F(IsolatedReading, FactsAlone_Should_BeTheSame) {
  PictureReading reading;
  reading.withPixels = false;
  for (const std::string& file : SampleFiles()) ExpectSameReading(file, reading);
}

/// Pixels and facts that are longer than one piece of memory come in several.
TEST_F(IsolatedReading, LargePicture_Should_BeReadTheSame) {
  std::vector<uint8_t> profile(detail::kMostWorkerMemoryBytes * 2 + 12345);
  for (size_t i = 0; i < profile.size(); ++i) profile[i] = static_cast<uint8_t>(i * 7 + i / 999);
  constexpr std::string_view kColors = "RGB ", kSignature = "acsp";
  std::copy(kColors.begin(), kColors.end(), profile.begin() + 16);
  std::copy(kSignature.begin(), kSignature.end(), profile.begin() + 36);
  TBitmap bitmap = test::GradientBitmap(pf24bit, 3001, 3999);
  bitmap.SetProfile(std::make_shared<const std::vector<uint8_t>>(std::move(profile)));
  const TempFolder folder;
  bitmap.SaveToFile(folder / "large.bmp");
  const Result isolated = ReadingOf(folder / "large.bmp", Isolation::process);
  EXPECT_GT(isolated.rows.size(), 2 * detail::kMostWorkerMemoryBytes);
  EXPECT_GT(isolated.fields.size(), 2 * detail::kMostWorkerMemoryBytes);
  ExpectSame(ReadingOf(folder / "large.bmp", Isolation::none), isolated, "large.bmp");
}

TEST_F(IsolatedReading, Threads_Should_WorkInTheWorker) {
  PictureReading reading;
  reading.threads = 4;
  ExpectSameReading(Sample("terrain.tif"), reading);
}

TEST_F(IsolatedReading, Graphic_Should_HaveTheSameClassAndPixels) {
  for (const std::string& file : SampleFiles()) {
    std::unique_ptr<TGraphic> here = LoadGraphic(file);
    if (!here || here->Rows() == nullptr) continue;
    const auto isolated = LoadGraphicIsolated(file);
    ASSERT_TRUE(isolated) << file;
    const TGraphic& a = *here;
    const TGraphic& b = *isolated;
    EXPECT_EQ(typeid(b), typeid(a)) << file;
    EXPECT_EQ(b.Transparent(), a.Transparent()) << file;
    EXPECT_EQ(b.TransparentMode(), a.TransparentMode()) << file;
    EXPECT_EQ(b.TransparentColor(), a.TransparentColor()) << file;
    EXPECT_EQ(b.Modified(), a.Modified()) << file;
    FieldWriter fieldsHere, fieldsIsolated;
    detail::WriteRaster(fieldsHere, *a.Rows());
    detail::WriteRaster(fieldsIsolated, *b.Rows());
    EXPECT_EQ(fieldsIsolated.Take(), fieldsHere.Take()) << file;
    EXPECT_TRUE(RowsOf(*b.Rows()) == RowsOf(*a.Rows())) << file;
  }
}

TEST_F(IsolatedReading, FilesThatAreNoPictures_Should_GiveTheSameErrors) {
  const TempFolder folder;
  ExpectSame(folder.Write("empty.png", std::string_view()));
  ExpectSame(folder.Write("text.png", std::string_view("this is no picture")));
  ExpectSame(folder.Write("cut.jpg", test::ReadFile(Sample("upright.png")).substr(0, 100)));
  ExpectSame(folder.Write("plan.pdf", std::string_view("%PDF-1.4\n")));
  ExpectSame(folder / "missing.png");
  ExpectSame(folder.Path().string());
  EXPECT_NE(ReadingOf(folder / "missing.png", Isolation::process).error.find("missing.png"),
            std::string::npos);
}

TEST_F(IsolatedReading, Stream_Should_BeReadFromItsPosition) {
  const std::string picture = test::ReadFile(Sample("plan.png"));
  const std::string bytes = "before" + picture;
  TMemoryStream stream(std::vector<uint8_t>(bytes.begin(), bytes.end()));
  stream.SetPosition(6);
  FrameOptions options;
  options.isolation = Isolation::process;
  const ImagingFrame isolated = DecodeFrame(stream, options);
  stream.SetPosition(6);
  const ImagingFrame here = DecodeFrame(stream);
  EXPECT_EQ(isolated.format, here.format);
  EXPECT_EQ(RowsOf(isolated.rows), RowsOf(here.rows));
}

/// Writes a file into a pipe that a reader opens.
class PipeWriter {
 public:
  PipeWriter(const std::string& pipe, const std::string& content)
      : thread_([pipe, content] { std::ofstream(pipe, std::ios::binary) << content; }) {}
  ~PipeWriter() { thread_.join(); }

 private:
  std::thread thread_;
};

TEST_F(IsolatedReading, Pipe_Should_BeReadTheSame) {
  const TempFolder folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const char* name : {"plan.png", "terrain.tif", "orientation-6.jpg", "plan-colored.bmp"}) {
    const std::string content = test::ReadFile(Sample(name));
    Result results[2];
    for (const Isolation isolation : {Isolation::none, Isolation::process}) {
      const PipeWriter writer(pipe, content);
      results[isolation == Isolation::process ? 1 : 0] = ReadingOf(pipe, isolation);
    }
    ExpectSame(results[0], results[1], name);
    EXPECT_EQ(results[1].error, "");
  }
}

TEST_F(IsolatedReading, Limits_Should_CountInTheWorker) {
  Limits limits;
  limits.pictureBytes = 1000;
  const LimitsScope scope(limits);
  const Result isolated = ReadingOf(Sample("upright.png"), Isolation::process);
  EXPECT_EQ(isolated.error, ReadingOf(Sample("upright.png"), Isolation::none).error);
  EXPECT_EQ(isolated.error.find("LimitError"), 0u) << isolated.error;
}

/// More readers than workers may run: the others wait.
TEST_F(IsolatedReading, ManyThreads_Should_AllGetTheirPicture) {
  constexpr int kThreads = 12, kRounds = 4;
  const Result here = ReadingOf(Sample("plan.png"), Isolation::none);
  std::atomic<int> same = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] {
      for (int round = 0; round < kRounds; ++round) {
        if (ReadingOf(Sample("plan.png"), Isolation::process) == here) ++same;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(same, kThreads * kRounds);
}

size_t OpenFiles() {
  size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    ++count;
  }
  return count;
}

TEST_F(IsolatedReading, Nothing_Should_StayOpen) {
  ReadingOf(Sample("plan.png"), Isolation::process);
  const size_t before = OpenFiles();
  for (int i = 0; i < 5; ++i) {
    ReadingOf(Sample("plan.png"), Isolation::process);
    ReadingOf(Sample("missing.png"), Isolation::process);
  }
  EXPECT_EQ(OpenFiles(), before);
}

}  // namespace
}  // namespace rasterkit
