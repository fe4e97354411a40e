#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <rasterkit/codecs/tiff/tiff_pages.h>
#include <rasterkit/pictures/pending_save.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/atomic_file.h>

#include "tests/runtime/files/replaced_calls.h"
#include "tests/support/same_pixels.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

namespace rasterkit {
namespace {

using test::GradientRaster;
using test::ReadFile;
using test::TempFolder;

Picture PictureOf(Raster rows) {
  return Picture::Of(std::make_unique<TBitmap>(std::move(rows)));
}

std::string Sample(const char* name) {
  return std::string(RASTERKIT_SAMPLES "/") + name;
}

std::string CopyTo(const TempFolder& folder, const char* name) {
  return folder.Write(name, ReadFile(Sample(name)));
}

std::vector<uint8_t> BytesOf(const std::string& file) {
  const std::string bytes = ReadFile(file);
  return {bytes.begin(), bytes.end()};
}

/// Losses as "kind: what", sorted.
std::vector<std::string> LossesIn(const Report& report) {
  std::vector<std::string> losses;
  for (const Loss& loss : report.losses) {
    losses.push_back(std::string(LossKindName(loss.kind)) + ": " + loss.what);
  }
  std::sort(losses.begin(), losses.end());
  return losses;
}

TEST(PictureOpening, MakesTheOrientationTheFirstStep) {
  const Raster upright =
      std::move(*[] { return Picture::Open(Sample("orientation-1.jpg")).Bitmap(); }())
          .TakeContent();
  for (int orientation = 1; orientation <= 8; ++orientation) {
    SCOPED_TRACE(orientation);
    const std::string name = "orientation-" + std::to_string(orientation) + ".jpg";
    const Picture picture = Picture::Open(Sample(name.c_str()));
    EXPECT_EQ(picture.Width(), upright.Width());
    EXPECT_EQ(picture.Height(), upright.Height());
    EXPECT_EQ(picture.Steps().empty(), orientation == 1);
    EXPECT_EQ(picture.SourceType(), PictureType::jpeg);
    const TempFolder folder;
    picture.Save(folder / "out.jpg");
    const Picture written = Picture::Open(folder / "out.jpg");
    EXPECT_TRUE(written.Steps().empty());
    EXPECT_EQ(written.Width(), upright.Width());
  }
}

TEST(PictureOpening, RefusesWhatItCannotRead) {
  const TempFolder folder;
  const auto errorOf = [](const std::string& file) -> std::string {
    try {
      Picture::Open(file);
    } catch (const Error& error) {
      EXPECT_EQ(error.File(), file);
      return error.Reason();
    }
    return "no error";
  };
  EXPECT_THROW(Picture::Open(folder / "none.png"), FileError);
  EXPECT_THROW(Picture::Open(folder.Path().string()), FileError);
  EXPECT_THROW(Picture::Open(folder.Write("text.png", "a text and no picture")), FormatError);
  EXPECT_THROW(Picture::Open(folder.Write("empty.png", "")), FormatError);
  const std::string pdf = folder.Write("a.pdf", "%PDF-1.4\n");
  EXPECT_THROW(Picture::Open(pdf), UnsupportedError);
  EXPECT_NE(errorOf(pdf).find("a PDF file has pages"), std::string::npos);
  EXPECT_THROW(Picture::Of(std::unique_ptr<TBitmap>()), FormatError);
  EXPECT_THROW(Picture::Of(std::make_unique<TBitmap>()), FormatError);
}

TEST(PictureOpening, ReadsBytesAndPipesAsItReadsFiles) {
  const Picture file = Picture::Open(Sample("orientation-6.jpg"));
  const Picture bytes = Picture::Open(BytesOf(Sample("orientation-6.jpg")));
  EXPECT_TRUE(test::SamePixels(*file.Bitmap(), *bytes.Bitmap()));
  EXPECT_EQ(file.GetMetadata(), bytes.GetMetadata());
  EXPECT_EQ(bytes.SourceFile(), "");
  const TempFolder folder;
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  std::thread writer(
      [&] { std::ofstream(pipe, std::ios::binary) << ReadFile(Sample("orientation-6.jpg")); });
  const Picture piped = Picture::Open(pipe);
  writer.join();
  EXPECT_TRUE(test::SamePixels(*file.Bitmap(), *piped.Bitmap()));
  EXPECT_TRUE(test::SamePixels(*file.Bitmap(), *piped.Bitmap()));
}

TEST(PictureSave, OverItsOwnNameStartsFromTheOldPixelsEachTime) {
  const TempFolder folder;
  for (const char* name : {"orientation-6.jpg", "plan-colored.bmp", "upright.png", "terrain.tif"}) {
    SCOPED_TRACE(name);
    const std::string file = CopyTo(folder, name);
    Picture picture = Picture::Open(file);
    const int width = picture.Width(), height = picture.Height();
    picture.Turn(1);
    picture.Save(file);
    const std::string once = ReadFile(file);
    picture.Save(file);
    EXPECT_TRUE(ReadFile(file) == once);
    const Picture written = Picture::Open(file);
    EXPECT_EQ(written.Width(), height);
    EXPECT_EQ(written.Height(), width);
    EXPECT_TRUE(written.Steps().empty());
  }
}

TEST(PictureSave, FailsIfTheOpenFileWasChanged) {
  const TempFolder folder;
  const std::string file = CopyTo(folder, "plan-colored.bmp");
  Picture picture = Picture::Open(file);
  std::ofstream(file, std::ios::app) << "more";
  for (const auto& call : std::vector<std::function<void()>>{
           [&] { picture.Save(folder / "out.png"); }, [&] { picture.Bitmap(); },
           [&] { Picture(picture).Turn(1).Save(folder / "out.bmp"); }}) {
    try {
      call();
      ADD_FAILURE() << "no error";
    } catch (const FileError& error) {
      EXPECT_EQ(error.File(), file);
      EXPECT_EQ(error.Reason(), "the file was changed after it was opened");
    }
  }
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"plan-colored.bmp"}));
}

TEST(PictureSave, ReadsTheOpenFileWhenItsNameIsGone) {
  const TempFolder folder;
  const std::string file = CopyTo(folder, "upright.png");
  const Picture picture = Picture::Open(file);
  const auto before = Picture::Open(Sample("upright.png")).Bitmap();
  std::filesystem::remove(file);
  EXPECT_TRUE(test::SamePixels(*before, *picture.Bitmap()));
}

TEST(PictureSave, CopiesCompressedPixelsOfItsOwnKind) {
  const TempFolder folder;
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"orientation-1.jpg", "a.jpg"}, {"upright.png", "a.png"}, {"terrain.tif", "a.tif"}};
  for (const auto& [name, target] : cases) {
    SCOPED_TRACE(name);
    const Picture picture = Picture::Open(Sample(name));
    const Report report = picture.Save(folder / target);
    EXPECT_TRUE(report.isCopied);
    EXPECT_TRUE(report.losses.empty());
    EXPECT_TRUE(test::SamePixels(*picture.Bitmap(), *Picture::Open(folder / target).Bitmap()));
    SaveOptions options;
    options.quality = 70;
    EXPECT_FALSE(picture.Save(folder / target, options).isCopied);
    EXPECT_FALSE(Picture(picture).Turn(2).Save(folder / target).isCopied);
    MetadataEdit edit;
    edit.stripAll = true;
    const Report stripped = Picture(picture).Edit(edit).Save(folder / target);
    EXPECT_TRUE(stripped.isCopied);
    EXPECT_TRUE(stripped.losses.empty());
    EXPECT_TRUE(Picture::Open(folder / target).GetMetadata().exif.empty());
  }
}

/// The bytes from the first scan on.
std::string ScansOf(const std::string& jpeg) {
  const std::string bytes = ReadFile(jpeg);
  return bytes.substr(bytes.find("\xFF\xDA"));
}

TEST(PictureSave, CopiesTheScansOfAJpegFileByteForByte) {
  const TempFolder folder;
  MetadataEdit edit;
  edit.stripAll = true;
  Picture::Open(Sample("orientation-1.jpg")).Edit(edit).Save(folder / "a.jpg");
  // No thousands of bytes in a message.
  EXPECT_TRUE(ScansOf(folder / "a.jpg") == ScansOf(Sample("orientation-1.jpg")));
  EXPECT_FALSE(ReadFile(folder / "a.jpg") == ReadFile(Sample("orientation-1.jpg")));
}

TEST(PictureSave, CarriesSmallerCopiesAndMasksOfATiffPage) {
  const TempFolder folder;
  Raster mask(pf1bit, 40, 20);
  for (int y = 0; y < 20; ++y) {
    std::fill_n(mask.Row(y), mask.Stride(), static_cast<uint8_t>(y < 5 ? 0xFF : 0));
  }
  mask.ClearPadding();
  constexpr uint32_t kSmaller = 1, kMask = 4;
  std::vector<TiffExtraPage> extras;
  extras.push_back({GradientRaster(pf24bit, 20, 10), TiffForm{}, kSmaller});
  TiffForm maskForm;
  maskForm.photometric = 4;
  extras.push_back({std::move(mask), maskForm, kMask});
  TMemoryStream stream;
  WriteTiff(GradientRaster(pf24bit, 40, 20), {}, extras, stream);
  const std::string file = folder.Write("a.tif", stream.Bytes());

  Picture picture = Picture::Open(file);
  EXPECT_EQ(picture.Pages(), 1);
  const Report copied = picture.Save(folder / "copied.tif");
  EXPECT_TRUE(copied.isCopied);
  EXPECT_TRUE(copied.losses.empty());
  TFileStream copy(folder / "copied.tif");
  EXPECT_EQ(ReadTiffExtraPages(copy).size(), 2u);

  picture.Turn(1).Crop(CropStep{0, 0, 10, 40});
  const Report report = picture.Save(folder / "turned.tif");
  EXPECT_TRUE(report.losses.empty());
  EXPECT_EQ(LossesIn(picture.Plan(folder / "turned.tif")), LossesIn(report));
  TFileStream turned(folder / "turned.tif");
  const auto pages = ReadTiffExtraPages(turned);
  ASSERT_EQ(pages.size(), 2u);
  // Half of 10 x 40 pixels.
  EXPECT_EQ(pages[0].width, 5);
  EXPECT_EQ(pages[0].height, 20);
  EXPECT_EQ(pages[1].width, 10);
  EXPECT_EQ(pages[1].height, 40);
  turned.SetPosition(0);
  const Raster turnedMask = std::get<Raster>(DecodeTiffExtraPage(turned, 1));
  // The upper rows are the left columns after a turn counter-clockwise.
  EXPECT_NE(turnedMask.PixelColor(4, 30), turnedMask.PixelColor(5, 30));
  EXPECT_EQ(turnedMask.PixelColor(0, 0), turnedMask.PixelColor(4, 39));

  const Report png = picture.Save(folder / "turned.png");
  ASSERT_EQ(png.losses.size(), 1u);
  EXPECT_EQ(png.losses[0].kind, LossKind::alpha);
}

TEST(PictureSave, DoesWhatThePlanSaid) {
  const TempFolder folder;
  const std::vector<std::function<void(Picture&)>> changes = {
      [](Picture&) {},
      [](Picture& picture) { picture.Turn(1); },
      [](Picture& picture) { picture.Rotate(10); },
      [](Picture& picture) { picture.Resize(20, 30); },
      [](Picture& picture) {
        picture.Crop(CropStep{1, 1, 20, 20});
      },
      [](Picture& picture) { picture.Change(MakeGray{}); },
      [](Picture& picture) { picture.Change(SetBits{24}); }};
  for (const char* name : {"orientation-6.jpg", "upright.png", "plan.png", "plan-colored.bmp",
                           "terrain.tif", "gray.jpg"}) {
    for (size_t i = 0; i < changes.size(); ++i) {
      for (const char* target : {"a.jpg", "a.png", "a.tif", "a.bmp"}) {
        SCOPED_TRACE(std::string(name) + ", change " + std::to_string(i) + ", " + target);
        Picture picture = Picture::Open(Sample(name));
        changes[i](picture);
        const Report plan = picture.Plan(folder / target);
        const Report done = picture.Save(folder / target);
        EXPECT_EQ(LossesIn(plan), LossesIn(done));
        EXPECT_EQ(plan.sideFiles, done.sideFiles);
        EXPECT_EQ(plan.type, done.type);
        EXPECT_EQ(plan.isCopied, done.isCopied);
        EXPECT_EQ(plan.width, done.width);
        EXPECT_EQ(plan.height, done.height);
        EXPECT_EQ(plan.layout.bits, done.layout.bits);
        EXPECT_EQ(plan.layout.bands, done.layout.bands);
        EXPECT_GE(plan.bytes, done.bytes);
        EXPECT_GE(plan.memory, done.memory);
        EXPECT_EQ(done.bytes, std::filesystem::file_size(folder / target));
        const Picture written = Picture::Open(folder / target);
        EXPECT_EQ(written.Width(), done.width);
        EXPECT_EQ(written.Height(), done.height);
      }
    }
  }
}

TEST(PictureSave, WritesTheSameBytesWithAnyNumberOfThreads) {
  const TempFolder folder;
  for (const char* target : {"a.jpg", "a.png", "a.tif", "a.bmp"}) {
    std::string first;
    for (const int threads : {1, 2, 7, 0}) {
      SCOPED_TRACE(std::string(target) + ", " + std::to_string(threads));
      Picture picture = Picture::Open(Sample("orientation-6.jpg"));
      picture.Rotate(17.3).Resize(301, 203).Change(AdjustColors{10, 10, 0, 0, 0, 0});
      rasterkit::Run run;
      run.threads = threads;
      picture.Save(folder / target, {}, run);
      if (first.empty()) first = ReadFile(folder / target);
      EXPECT_TRUE(ReadFile(folder / target) == first);
    }
  }
}

TEST(PictureSave, ToAStreamNeedsAType) {
  TMemoryStream stream;
  Picture::Open(Sample("upright.png")).Save(stream);
  EXPECT_EQ(Picture::Open(stream.TakeBytes()).SourceType(), PictureType::png);
  const Picture rows = PictureOf(GradientRaster(pf24bit, 5, 4));
  EXPECT_THROW(rows.Save(stream), UnsupportedError);
  SaveOptions options;
  options.type = PictureType::bmp;
  TMemoryStream bmp;
  const Report report = rows.Save(bmp, options);
  EXPECT_EQ(report.bytes, bmp.Size());
  options.type = PictureType::gif;
  EXPECT_THROW(rows.Save(bmp, options), UnsupportedError);
}

TEST(PictureSave, RefusesNamesWithoutAWritableType) {
  const TempFolder folder;
  const Picture rows = PictureOf(GradientRaster(pf24bit, 5, 4));
  for (const char* name : {"a", "a.xyz", "a.gif", "a.pdf", "a.emf"}) {
    SCOPED_TRACE(name);
    EXPECT_THROW(rows.Save(folder / name), UnsupportedError);
    EXPECT_THROW(rows.Plan(folder / name), UnsupportedError);
  }
  EXPECT_THROW(rows.Save(folder / "none/a.png"), FileError);
  EXPECT_TRUE(folder.Names().empty());
}

TEST(PictureSave, KeepsAnExistingFileIfItMayNotReplaceIt) {
  const TempFolder folder;
  folder.Write("a.png", "old");
  SaveOptions options;
  options.mayReplace = false;
  const Picture rows = PictureOf(GradientRaster(pf24bit, 5, 4));
  EXPECT_THROW(rows.Save(folder / "a.png", options), FileExistsError);
  EXPECT_EQ(ReadFile(folder / "a.png"), "old");
  EXPECT_EQ(folder.Names().size(), 1u);
}

TEST(PictureSave, IsNotWrittenStraightIntoItsOwnSource) {
  const TempFolder folder;
  const std::string file = CopyTo(folder, "plan-colored.bmp");
  const std::string before = ReadFile(file);
  const Picture picture = Picture::Open(file);
  const int handle = open(file.c_str(), O_RDWR);
  ASSERT_GE(handle, 0);
  SaveOptions options;
  options.type = PictureType::bmp;
  // Such a name leads to the open file itself.
  EXPECT_THROW(picture.Save("/dev/fd/" + std::to_string(handle), options), FileError);
  close(handle);
  EXPECT_TRUE(ReadFile(file) == before);
}

TEST(PendingSaves, HaveTheirNamesAfterTheCommitAlone) {
  const TempFolder folder;
  const Picture rows = PictureOf(GradientRaster(pf24bit, 5, 4));
  folder.Write("a.png", "old");
  {
    const PendingSave dropped(rows, folder / "a.png");
    EXPECT_EQ(dropped.Report().width, 5);
  }
  EXPECT_EQ(ReadFile(folder / "a.png"), "old");
  EXPECT_EQ(folder.Names().size(), 1u);
  PendingSave first(rows, folder / "a.png"), second(rows, folder / "b.png");
  SaveOptions once;
  once.mayReplace = false;
  PendingSave late(rows, folder / "c.png", once);
  folder.Write("c.png", "another program's");
  PendingSave* const all[] = {&first, &second, &late};
  const auto errors = PendingSave::CommitAll(all);
  ASSERT_EQ(errors.size(), 3u);
  EXPECT_FALSE(errors[0]);
  EXPECT_FALSE(errors[1]);
  EXPECT_THROW(std::rethrow_exception(errors[2]), FileExistsError);
  EXPECT_EQ(folder.Names(), (std::vector<std::string>{"a.png", "b.png", "c.png"}));
  EXPECT_EQ(ReadFile(folder / "c.png"), "another program's");
  EXPECT_TRUE(ReadFile(folder / "a.png") == ReadFile(folder / "b.png"));
  EXPECT_THROW(first.Commit(), FileError);
}

/// The disk fails once, at the first wait after a file got this name.
void FailSyncAfter(const std::string& name) {
  static detail::FileCalls base;
  static std::string watched;
  static bool isThere, hasFailed;
  base = detail::Calls();
  watched = name;
  isThere = hasFailed = false;
  detail::Calls().renameAt = [](int folder, const char* old, const char* to, unsigned flags) {
    const int result = base.renameAt(folder, old, to, flags);
    isThere = isThere || (result == 0 && watched == to);
    return result;
  };
  detail::Calls().linkAt = [](int from, const char* old, int folder, const char* to, int flags) {
    const int result = base.linkAt(from, old, folder, to, flags);
    isThere = isThere || (result == 0 && watched == to);
    return result;
  };
  detail::Calls().syncAll = [](int handle) {
    if (!isThere || hasFailed) return base.syncAll(handle);
    hasFailed = true;
    errno = EIO;
    return -1;
  };
}

TEST(PendingSaves, SayThatAFileHasItsNameAlthoughTheDiskFailed) {
  const std::string numbers = "2\n0\n0\n-2\n1001\n1999\n";
  for (const std::string name : {"a.png", "a.pgw"}) {
    SCOPED_TRACE(name);
    const TempFolder folder;
    PictureOf(GradientRaster(pf24bit, 40, 30)).Save(folder / "a.png");
    folder.Write("a.pgw", numbers);
    Picture part = Picture::Open(folder / "a.png");
    part.Crop({3, 2, 10, 10});
    SaveOptions options;
    options.mayReplace = options.keepsBackup = true;
    PendingSave save(part, folder / "a.png", options);
    const test::CallsGuard guard;
    FailSyncAfter(name);
    try {
      save.Commit();
      ADD_FAILURE() << "the disk did not fail";
    } catch (const UnsyncedError& error) {
      EXPECT_EQ(error.File(), folder / name);
      EXPECT_NE(error.Reason().find("the new file has its name"), std::string::npos);
    }
    EXPECT_EQ(save.Report().backups,
              (std::vector<std::string>{folder / "a.png~", folder / "a.pgw~"}));
    EXPECT_EQ(Picture::Open(folder / "a.png").Width(), 10);
    EXPECT_EQ(ReadFile(folder / "a.pgw"), "2\n0\n0\n-2\n1007\n1995\n");
    EXPECT_EQ(ReadFile(folder / "a.pgw~"), numbers);
  }
}

TEST(PictureNumbers, AreTheSamplesAsTheyAre) {
  const Samples numbers = Picture::Open(Sample("terrain.tif")).Numbers();
  EXPECT_EQ(numbers.Layout().type, NumberType::float32);
  EXPECT_EQ(numbers.Layout().bands, 1);
  Raster rows = GradientRaster(pf24bit, 5, 4);
  const uint8_t blue = rows.Row(1)[3], green = rows.Row(1)[4], red = rows.Row(1)[5];
  const Samples colors = PictureOf(std::move(rows)).Numbers();
  EXPECT_EQ(colors.Row(1)[3], red);
  EXPECT_EQ(colors.Row(1)[4], green);
  EXPECT_EQ(colors.Row(1)[5], blue);
}

TEST(PictureRows, ComeFromTopToBottom) {
  class Sink : public RowSink {
   public:
    void Take(const Raster& rows, int top) override {
      EXPECT_EQ(top, next);
      next = top + rows.Height();
    }
    int next = 0;
  };
  Sink sink;
  Picture::Open(Sample("upright.png")).Rows(sink);
  EXPECT_EQ(sink.next, Picture::Open(Sample("upright.png")).Height());
}

}  // namespace
}  // namespace rasterkit
