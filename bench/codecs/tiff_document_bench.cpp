// One page out of a document of 200 pages, file to file on a file system in memory; processor time.
// The peer is tiffcp, which decodes and encodes the page.

#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <rasterkit/codecs/tiff/tiff_document.h>
#include <rasterkit/raster/convert.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "bench/support/bench_pictures.h"

namespace {

using namespace rasterkit;

constexpr int kPages = 200, kPage = 137;

/// Removed at the end.
class Folder {
 public:
  Folder() {
    const std::filesystem::path memory("/dev/shm");
    path_ = std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path();
    path_ /= "rasterkit-bench-" + std::to_string(getpid());
    std::filesystem::create_directories(path_);
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

std::string FileName(const std::string& name) {
  static const Folder folder;
  return (folder.Path() / name).string();
}

/// 200 gray scans of a letter at 100 dots per inch.
const std::string& Document() {
  static const std::string name = [] {
    Raster scan = ConvertRaster(bench::PhotoLike(850, 1100), pf8bit);
    scan.palette = GrayPalette(256);
    const Pixels pixels(std::move(scan));
    PictureWriting writing;
    writing.form = FormFor(TiffCompression::standard, LayoutOf(pixels));
    const std::string file = FileName("document.tif");
    AtomicFile target(file);
    TiffDocumentWriter writer(target, false, false);
    for (int page = 0; page < kPages; page++) writer.AddPage(pixels, writing);
    writer.Finish();
    target.Commit();
    return file;
  }();
  return name;
}

double ProcessorSeconds(int who) {
  rusage usage{};
  getrusage(who, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void CopyOnePage(benchmark::State& state) {
  const std::string target = FileName("page.tif");
  Document();
  for (auto _ : state) {
    const double before = ProcessorSeconds(RUSAGE_SELF);
    TFileStream stream(Document());
    const TiffDocumentReader source(stream);
    AtomicFile file(target);
    TiffDocumentWriter writer(file, source.IsBigTiff(), source.IsBigEndian());
    writer.CopyPage(source, kPage);
    writer.Finish();
    file.Commit();
    state.SetIterationTime(ProcessorSeconds(RUSAGE_SELF) - before);
  }
}
BENCHMARK(CopyOnePage)->UseManualTime()->Unit(benchmark::kMillisecond);

void CountPages(benchmark::State& state) {
  Document();
  for (auto _ : state) {
    TFileStream stream(Document());
    benchmark::DoNotOptimize(CountTiffPages(stream));
  }
}
BENCHMARK(CountPages)->Unit(benchmark::kMicrosecond);

/// With the start of the program, which takes about a millisecond.
void CopyOnePageByTiffcp(benchmark::State& state) {
  const std::string command = "tiffcp '" + Document() + "'," + std::to_string(kPage - 1) + " '" +
                              FileName("peer.tif") + "'";
  for (auto _ : state) {
    const double before = ProcessorSeconds(RUSAGE_CHILDREN);
    if (std::system(command.c_str()) != 0) {
      state.SkipWithError("tiffcp is not installed");
      break;
    }
    state.SetIterationTime(ProcessorSeconds(RUSAGE_CHILDREN) - before);
  }
}
BENCHMARK(CopyOnePageByTiffcp)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
