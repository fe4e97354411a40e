#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/memory/memory_share.h>

#include "tests/support/corpus.h"
#include "tests/support/full_run.h"
#include "tests/support/temp_folder.h"
#include "tests/support/test_pictures.h"

/// Pictures that pass through their steps in bands: no result depends on how they are divided.
namespace rasterkit {
namespace {

using test::GradientRaster;
using test::TempFolder;

/// What a call gave: bytes and report, or its error.
struct Outcome {
  std::string bytes;
  std::string report;
};

std::string TextOf(const Report& report) {
  std::string text =
      fmt::format("{} x {}, {} bits, copied {}, moved {}\n", report.width, report.height,
                  report.layout.BitsPerPixel(), report.isCopied, report.isMoved);
  for (const Loss& loss : report.losses) {
    text += fmt::format("lost {}: {} ({})\n", LossKindName(loss.kind), loss.what, loss.why);
  }
  for (const std::string& note : report.notes) text += "note " + note + '\n';
  for (const std::string& warning : report.warnings) text += "warning " + warning + '\n';
  return text;
}

Outcome Saved(const Picture& picture, PictureType type, const Run& run) {
  SaveOptions options;
  options.type = type;
  // Fewer bytes to compare.
  options.onlyThisPage = true;
  TMemoryStream stream;
  try {
    const Report report = picture.Save(stream, options, run);
    const auto bytes = stream.Bytes();
    return {std::string(bytes.begin(), bytes.end()), TextOf(report)};
  } catch (const Error& error) {
    // What was written before the error does not count.
    return {{}, fmt::format("error {}", error.what())};
  }
}

/// All rows at once.
constexpr int kWhole = 1 << 20;

struct Division {
  int rows, threads;
};
constexpr Division kDivisions[] = {{1, 1}, {7, 2}, {64, 7}, {0, 1}, {0, 7}, {1, 7}, {7, 1}};

Run RunOf(const Division& division) {
  Run run;
  run.threads = division.threads;
  run.bandRows = division.rows;
  return run;
}

void ExpectSameInBands(const Picture& picture, PictureType type) {
  SCOPED_TRACE(fmt::format("as {}", PictureTypeName(type)));
  const Outcome whole = Saved(picture, type, RunOf({kWhole, 1}));
  for (const Division& division : kDivisions) {
    SCOPED_TRACE(fmt::format("{} rows, {} threads", division.rows, division.threads));
    const Outcome bands = Saved(picture, type, RunOf(division));
    EXPECT_EQ(bands.report, whole.report);
    ASSERT_TRUE(bands.bytes == whole.bytes);
  }
}

using Change = std::function<void(Picture& picture)>;

struct NamedChange {
  const char* name;
  Change change;
};

const std::vector<NamedChange>& NamedChanges() {
  static const std::vector<NamedChange> kChanges = {
      {"none", [](Picture&) {}},
      {"turn", [](Picture& picture) { picture.Turn(1); }},
      {"half turn", [](Picture& picture) { picture.Turn(2); }},
      {"left right", [](Picture& picture) { picture.Mirror(MirrorAxis::leftRight); }},
      {"top bottom", [](Picture& picture) { picture.Mirror(MirrorAxis::topBottom); }},
      {"crop",
       [](Picture& picture) {
         const int width = picture.Width(), height = picture.Height();
         picture.Crop({width / 3, height / 4, (width + 2) / 3, (height + 1) / 2});
       }},
      {"2 degrees", [](Picture& picture) { picture.Rotate(2); }},
      {"30 degrees", [](Picture& picture) { picture.Rotate(30); }},
      {"smaller",
       [](Picture& picture) {
         picture.Resize((picture.Width() + 2) / 3, (picture.Height() + 3) / 4);
       }},
      {"larger",
       [](Picture& picture) {
         if (picture.Width() < 2000) picture.Resize(picture.Width() * 2, picture.Height() + 9);
       }},
      {"gray", [](Picture& picture) { picture.Change(MakeGray{}); }},
      {"mono", [](Picture& picture) { picture.Change(MakeMono{}); }},
      {"sharper",
       [](Picture& picture) {
         AdjustColors adjust;
         adjust.sharpen = 40;
         adjust.brightness = 10;
         picture.Change(adjust);
       }},
      {"key color", [](Picture& picture) { picture.Change(ReplaceKeyColor{}); }},
      {"8 bits", [](Picture& picture) { picture.Change(SetBits{8}); }},
      {"several",
       [](Picture& picture) {
         picture.Turn(1).Resize((picture.Width() + 1) / 2, (picture.Height() + 1) / 2);
         picture.Rotate(-3).Mirror(MirrorAxis::topBottom).Change(MakeGray{});
       }},
  };
  return kChanges;
}

constexpr PictureType kTypes[] = {PictureType::png, PictureType::tiff, PictureType::bmp,
                                  PictureType::jpeg};

/// Large pictures take most of the time and show no more than small ones.
bool IsSmall(const Picture& picture) {
  constexpr int64_t kMostPixels = 1 << 20;
  return int64_t{picture.Width()} * picture.Height() <= kMostPixels;
}

TEST(PictureFlow, GivesTheSameFilesInBands_Of_CorpusFiles) {
  if (test::CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS is not set";
  const int step = test::IsFullRun() ? 1 : 5;
  int number = 0, used = 0;
  for (const test::CorpusEntry& entry : test::CorpusEntries()) {
    const std::string path = entry.at("path");
    if (path.starts_with("pdf/") || path.starts_with("heif/") || number++ % step != 0) continue;
    SCOPED_TRACE(path);
    std::optional<Picture> picture;
    try {
      picture.emplace(Picture::Open((test::CorpusFolder() / path).string()));
    } catch (const Error&) {
      continue;
    }
    if (!IsSmall(*picture)) continue;
    ++used;
    const auto& changes = NamedChanges();
    for (size_t i = 0; i < 2; ++i) {
      const auto place = static_cast<size_t>(used) * 2 + i;
      const NamedChange& change = changes[place % changes.size()];
      SCOPED_TRACE(change.name);
      Picture changed = *picture;
      try {
        change.change(changed);
      } catch (const Error&) {
        continue;
      }
      ExpectSameInBands(changed, kTypes[place % std::size(kTypes)]);
    }
  }
  EXPECT_GT(used, 40);
}

/// Pictures of each kind of rows, and of numbers.
std::vector<Picture> Kinds() {
  std::vector<Picture> pictures;
  for (const TPixelFormat format : {pf1bit, pf4bit, pf8bit, pf15bit, pf16bit, pf24bit, pf32bit}) {
    pictures.push_back(Picture::Of(std::make_unique<TBitmap>(GradientRaster(format, 61, 150))));
  }
  Raster alpha = GradientRaster(pf32bit, 33, 90);
  alpha.alphaFormat = afDefined;
  pictures.push_back(Picture::Of(std::make_unique<TBitmap>(std::move(alpha))));
  Raster marked = GradientRaster(pf24bit, 47, 80);
  marked.transparentColor = marked.PixelColor(0, 79);
  auto bitmap = std::make_unique<TBitmap>(std::move(marked));
  bitmap->SetTransparent(true);
  pictures.push_back(Picture::Of(std::move(bitmap)));
  for (const NumberType type : {NumberType::uint16, NumberType::int16, NumberType::float32}) {
    PixelLayout layout;
    layout.type = type;
    layout.bits = 8 * BytesOf(type);
    layout.bands = 1;
    layout.model = ColorModel::gray;
    Samples numbers(layout, 40, 77);
    for (int y = 0; y < numbers.Height(); ++y) {
      std::fill_n(numbers.Row(y), numbers.Stride(), static_cast<uint8_t>(y));
    }
    pictures.push_back(Picture::Of(std::move(numbers)));
  }
  PixelLayout tenBits;
  tenBits.type = NumberType::uint16;
  tenBits.bits = 10;
  tenBits.bands = 3;
  tenBits.model = ColorModel::rgb;
  Samples colors(tenBits, 21, 70);
  for (int y = 0; y < colors.Height(); ++y) {
    auto* row = reinterpret_cast<uint16_t*>(colors.Row(y));
    for (int i = 0; i < colors.Width() * 3; ++i)
      row[i] = static_cast<uint16_t>((i * 31 + y) & 1023);
  }
  pictures.push_back(Picture::Of(std::move(colors)));
  return pictures;
}

TEST(PictureFlow, GivesTheSameFilesInBands_Of_EachKindOfPixels) {
  for (const Picture& picture : Kinds()) {
    SCOPED_TRACE(fmt::format("{} bits", picture.Layout().BitsPerPixel()));
    for (const PictureType type : kTypes) {
      ExpectSameInBands(picture, type);
      ExpectSameInBands(Picture(picture).Crop({3, 5, 17, 40}), type);
    }
  }
}

TEST(PictureFlow, GivesTheSameFilesInBands_Of_EachStep) {
  const Picture picture = Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 123, 211)));
  for (const NamedChange& change : NamedChanges()) {
    SCOPED_TRACE(change.name);
    Picture changed = picture;
    change.change(changed);
    ExpectSameInBands(changed, PictureType::tiff);
  }
}

TEST(PictureFlow, GivesTheSameBitmapsNumbersAndRowsInBands) {
  class Sink : public RowSink {
   public:
    void Take(const Raster& rows, int top) override {
      EXPECT_EQ(top, next);
      next += rows.Height();
      for (int y = 0; y < rows.Height(); ++y) {
        bytes.append(reinterpret_cast<const char*>(rows.Row(y)), rows.Stride());
      }
    }
    std::string bytes;
    int next = 0;
  };
  for (const Picture& kind : Kinds()) {
    SCOPED_TRACE(fmt::format("{} bits", kind.Layout().BitsPerPixel()));
    Picture picture = kind;
    picture.Crop({1, 2, 20, 60});
    Sink whole;
    picture.Rows(whole, RunOf({kWhole, 1}));
    EXPECT_EQ(whole.next, picture.Height());
    for (const Division& division : kDivisions) {
      Sink bands;
      picture.Rows(bands, RunOf(division));
      EXPECT_TRUE(bands.bytes == whole.bytes);
      const auto bitmap = picture.Bitmap(RunOf(division));
      Sink ofBitmap;
      ofBitmap.Take(bitmap->Content(), 0);
      EXPECT_TRUE(ofBitmap.bytes == whole.bytes);
    }
    if (kind.Layout().bits == 5 || kind.Layout().bits == 6) continue;
    const Samples numbers = picture.Numbers(RunOf({kWhole, 1}));
    const Samples inBands = picture.Numbers(RunOf({7, 2}));
    for (int y = 0; y < numbers.Height(); ++y) {
      EXPECT_TRUE(std::equal(numbers.Row(y), numbers.Row(y) + numbers.Stride(), inBands.Row(y)));
    }
  }
}

void WriteBytes(const std::string& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TEST(PictureFlow, ABrokenFileGivesTheSameAtEveryBandHeight) {
  const TempFolder folder;
  const Picture picture = Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 200, 300)));
  for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp"}) {
    SCOPED_TRACE(name);
    picture.Save(folder / name);
    const std::string bytes = test::ReadFile(folder / name);
    for (const size_t part : {4u, 2u}) {
      WriteBytes(folder / "cut", bytes.substr(0, bytes.size() - bytes.size() / part));
      std::optional<Picture> cut;
      try {
        cut.emplace(Picture::Open(folder / "cut"));
      } catch (const Error&) {
        continue;
      }
      ExpectSameInBands(*cut, PictureType::tiff);
      ExpectSameInBands(Picture(*cut).Change(MakeGray{}), PictureType::png);
      ExpectSameInBands(Picture(*cut).Turn(1), PictureType::bmp);
    }
  }
}

/// The most bytes of pixels that a call held beside those that were there before.
uint64_t MostHeld(const std::function<void(const Run&)>& call) {
  const uint64_t before = ProcessPictureBytes();
  uint64_t most = before;
  Run run;
  run.threads = 1;
  run.progress = [&](double) { most = std::max(most, ProcessPictureBytes()); };
  call(run);
  return most - before;
}

/// A file without quantization tables, whose header is sound: no row of it can be decoded.
TEST(PictureFlow, ABrokenFileIsWorseThanAChangeThatDoesNotFit) {
  TMemoryStream stream;
  SaveOptions options;
  options.type = PictureType::jpeg;
  Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, 60, 40))).Save(stream, options);
  const std::vector<uint8_t> sound = stream.TakeBytes();
  std::vector<uint8_t> broken = sound;
  for (size_t at = 2; broken.at(at + 1) != 0xDA;
       at += 2u + broken[at + 2] * 256u + broken[at + 3]) {
    if (broken[at + 1] == 0xDB) broken[at + 1] = 0xEF;
  }
  for (const ColorChange& change :
       {ColorChange(SwapOpacity()), ColorChange(SetPaletteEntries{{{0, 0x0000FF}}, {}})}) {
    const auto save = [&](const std::vector<uint8_t>& file) {
      TMemoryStream target;
      Picture::Open(file).Change(change).Save(target, options);
    };
    EXPECT_THROW(save(sound), RangeError);
    EXPECT_THROW(save(broken), FormatError);
  }
}

TEST(PictureFlow, HoldsBandsAndNotThePicture) {
  const TempFolder folder;
  constexpr int kWidth = 3000, kHeight = 8000;
  constexpr uint64_t kPicture = uint64_t{kWidth} * kHeight * 3, kBands = uint64_t{24} << 20;
  SaveOptions plain;
  plain.compression = TiffCompression::none;
  Picture::Of(std::make_unique<TBitmap>(GradientRaster(pf24bit, kWidth, kHeight)))
      .Save(folder / "a.tif", plain);
  const Picture picture = Picture::Open(folder / "a.tif");
  const auto save = [&](const Picture& changed, const SaveOptions& options) {
    return MostHeld(
        [&](const rasterkit::Run& run) { changed.Save(folder / "b.tif", options, run); });
  };
  SaveOptions packed;
  packed.compression = TiffCompression::lzw;
  ASSERT_GT(kPicture, 2 * kBands);
  EXPECT_LT(save(picture, {}), kBands) << "copied";
  EXPECT_LT(save(picture, packed), kBands) << "packed";
  EXPECT_LT(save(Picture(picture).Change(MakeGray{}), {}), kBands) << "gray";
  EXPECT_LT(save(Picture(picture).Crop({10, 20, 500, 7000}), {}), kBands) << "crop";
  EXPECT_LT(save(Picture(picture).Resize(1000, 2000), {}), kBands) << "smaller";
}

}  // namespace
}  // namespace rasterkit
