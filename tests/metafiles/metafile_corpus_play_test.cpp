// Draws the metafiles of the corpus at their own size; skipped if it is missing.

#include <cstdlib>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <rasterkit/metafiles/read_metafile_facts.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/stream.h>

#include "tests/support/corpus.h"
#include "tests/support/played_metafile.h"

namespace rasterkit::test {
namespace {

/// The share of pixels that are not white, recorded after inspecting each picture.
const std::map<std::string, double> kPaintedShares = {
    {"emf/docx4j__freehand_picture_saveas.emf", 0.488},
    {"emf/docx4j__freehand_ppt_saveas.emf", 0.041},
    {"emf/docx4j__gradient.emf", 0.025},
    {"emf/libemf2svg__bad_corrupted_2014-12-02-215358.emf", 0.681},
    {"emf/libemf2svg__bad_corrupted_2014-12-02-215400.emf", 0.270},
    {"emf/libemf2svg__bad_corrupted_2014-12-02-215425.emf", 0.382},
    {"emf/libemf2svg__bad_corrupted_2014-12-07-160856.emf", 0.989},
    {"emf/libemf2svg__bad_corrupted_2014-12-13-105759.emf", 0.406},
    {"emf/libemf2svg__bad_corrupted_2014-12-13-133727.emf", 0.826},
    {"emf/libemf2svg__bad_corrupted_2016-02-02-210039.emf", 0.403},
    {"emf/libemf2svg__test-010.emf", 0.943},
    {"emf/libemf2svg__test-012.emf", 0.959},
    {"emf/libemf2svg__test-052.emf", 0.439},
    {"emf/libemf2svg__test-057.emf", 0.465},
    {"emf/libemf2svg__test-073.emf", 0.381},
    {"emf/libemf2svg__test-079.emf", 0.391},
    {"emf/libemf2svg__test-091.emf", 0.837},
    {"emf/libemf2svg__test-112.emf", 0.493},
    {"emf/libemf2svg__test-134.emf", 0.743},
    {"emf/libemf2svg__test-149.emf", 0.524},
    {"emf/libgdiplus__test.emf", 0.634},
    {"emf/poi__63327.emf", 0.069},
    {"emf/poi__SimpleEMF_windows.emf", 0.310},
    {"emf/poi__nested_wmf.emf", 0.046},
    {"emf/poi__wrench.emf", 0.356},
    {"emf/tika__testEMF.emf", 0.065},
    {"emf/tika__testEMF_iconOnlyLongFilename.emf", 0.262},
    {"emf/tika__testEMF_zero_coords.emf", 1.000},
    {"wmf/docx4j__freehand_picture_saveas.wmf", 0.487},
    {"wmf/docx4j__freehand_ppt_saveas.wmf", 0.041},
    {"wmf/libgdiplus__test.wmf", 0.462},
    {"wmf/libwmf__2doorvan.wmf", 0.678},
    {"wmf/libwmf__cell.wmf", 0.026},
    {"wmf/libwmf__p0000001.wmf", 0.095},
    {"wmf/libwmf__p0000016.wmf", 0.147},
    {"wmf/libwmf__sample.wmf", 0.222},
    {"wmf/libwmf__sample2.wmf", 0.390},
    {"wmf/libwmf__text.wmf", 0.117},
    {"wmf/poi__61338.wmf", 0.038},
    {"wmf/poi__64716_image1.wmf", 0.118},
    {"wmf/poi__64716_image2.wmf", 0.148},
    {"wmf/poi__64716_image3.wmf", 0.085},
    {"wmf/runtimeass__gdiwmfboundariesbug.wmf", 0.161},
    {"wmf/wmf2svg__symbol-font-tables.wmf", 0.220},
    {"wmf/xmlgraphic__black_shapes.wmf", 0.344},
    {"wmf/xmlgraphic__imageWMF.wmf", 0.099},
    {"wmf/xmlgraphic__negApmText1.wmf", 0.090},
    {"wmf/xmlgraphic__negApmText2.wmf", 0.097},
    {"wrongext/tika__testEMF_iconOnlyLongFilename_is_emf.wmf", 0.262},
    {"wrongext/wmf2svg__symbol-font-tables_is_wmf.emf", 0.220},
};

/// Damaged files and their warnings.
const std::map<std::string, std::vector<std::string>> kDamaged = {
    {"emf/libemf2svg__bad_corrupted_2014-12-02-215358.emf",
     {"metafile: an offset lies outside its record"}},
    {"emf/libemf2svg__bad_corrupted_2014-12-02-215425.emf",
     {"metafile: a record is too short for its fields"}},
    {"emf/libemf2svg__bad_corrupted_2014-12-07-160856.emf", {"PNG: "}},
    {"emf/libemf2svg__bad_corrupted_2014-12-13-105759.emf",
     {"PNG: ", "metafile: a record is too short for its fields"}},
    {"emf/libemf2svg__bad_corrupted_2014-12-13-133727.emf",
     {"EMF: an object has an invalid handle"}},
    {"wmf/poi__61338.wmf", {"WMF: the data end inside a record"}},
};

/// Files drawn by EMF+ records only.
const std::set<std::string> kRefused = {
    "emf/libemf2svg__bad_corrupted_2014-12-07-163010.emf",
    "emf/libemf2svg__test-038.emf",
};

/// Files whose EMF conversion does not draw exactly the same pixels, and the largest mean
/// difference of all channels. EMF states the far edges of outlined boxes (and the size of outlined
/// curves with them) and the space between letters in whole units. Measured: 0.011, 0.071, 0.077. A
/// line that is moved by a pixel through the whole picture makes more than 1.
const std::map<std::string, double> kRecordedDifferences = {
    {"wmf/libwmf__2doorvan.wmf", 0.03},
    {"wmf/libwmf__cell.wmf", 0.15},
    {"wmf/libwmf__text.wmf", 0.15},
};

struct CorpusMetafile {
  std::string path;
  std::vector<uint8_t> bytes;
  MetafileFacts facts;
  /// The size of the picture in pixels, limited.
  int width = 0, height = 0;
};

std::vector<CorpusMetafile> CorpusMetafiles() {
  constexpr double kMostPixels = 1100;
  std::vector<CorpusMetafile> files;
  for (const std::string folder : {"emf", "wmf", "wrongext"}) {
    for (const CorpusEntry& entry : CorpusEntries(folder)) {
      CorpusMetafile file;
      file.path = entry.at("path");
      const bool isMetafile = folder != "wrongext" || file.path.ends_with("_is_emf.wmf") ||
                              file.path.ends_with("_is_wmf.emf");
      if (!isMetafile) continue;
      TFileStream stream((CorpusFolder() / file.path).string());
      file.bytes = stream.ReadToEnd();
      file.facts = ReadMetafileFacts(file.bytes);
      const double scale =
          std::min(1.0, kMostPixels / std::max(file.facts.width, file.facts.height));
      file.width = std::max(1, static_cast<int>(file.facts.width * scale));
      file.height = std::max(1, static_cast<int>(file.facts.height * scale));
      files.push_back(std::move(file));
    }
  }
  return files;
}

TEST(MetafileCorpus, Should_DrawEveryFile) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  size_t drawn = 0;
  for (const CorpusMetafile& file : CorpusMetafiles()) {
    SCOPED_TRACE(file.path);
    EXPECT_EQ(file.facts.isEmfPlusOnly, kRefused.contains(file.path));
    if (file.facts.isEmfPlusOnly) {
      EXPECT_THROW(PlayedMetafile(file.bytes, file.width, file.height), UnsupportedError);
      continue;
    }
    const PlayedMetafile played(file.bytes, file.width, file.height);
    ++drawn;
    // Fonts differ among systems, and small pictures consist mostly of edges.
    const auto wanted = kPaintedShares.find(file.path);
    ASSERT_NE(wanted, kPaintedShares.end());
    const double share = static_cast<double>(played.Painted()) / file.width / file.height;
    EXPECT_GT(share, 0.7 * wanted->second);
    EXPECT_LT(share, 1.6 * wanted->second);
    EXPECT_TRUE(played.report.isComplete);
    const auto damaged = kDamaged.find(file.path);
    if (damaged == kDamaged.end()) {
      EXPECT_THAT(played.report.warnings, testing::IsEmpty());
      EXPECT_EQ(played.report.skipped, 0u);
      continue;
    }
    ASSERT_EQ(played.report.warnings.size(), damaged->second.size());
    for (size_t i = 0; i < damaged->second.size(); ++i) {
      EXPECT_THAT(played.report.warnings[i], testing::StartsWith(damaged->second[i]));
    }
  }
  EXPECT_EQ(drawn, kPaintedShares.size());
}

/// Returns the mean difference of all channels, 0 to 255.
double Difference(const Raster& a, const Raster& b) {
  double sum = 0;
  for (int y = 0; y < a.Height(); ++y) {
    for (int x = 0; x < 4 * a.Width(); ++x) sum += std::abs(a.Row(y)[x] - b.Row(y)[x]);
  }
  return sum / a.Height() / a.Width() / 3;
}

TEST(MetafileCorpus, Should_DrawTheSame_When_WindowsMetafilesBecomeEnhancedOnes) {
  if (CorpusFolder().empty()) GTEST_SKIP() << "RASTERKIT_CORPUS names no folder";
  int recorded = 0;
  for (const CorpusMetafile& file : CorpusMetafiles()) {
    if (file.facts.kind == MetafileKind::emf) continue;
    SCOPED_TRACE(file.path);
    ++recorded;
    const std::vector<uint8_t> emf = EmfOf(file.bytes);
    const MetafileFacts facts = ReadMetafileFacts(emf);
    EXPECT_EQ(facts.kind, MetafileKind::emf);
    EXPECT_EQ(facts.width, file.facts.width);
    EXPECT_EQ(facts.height, file.facts.height);
    // The bounds must lie inside the picture.
    EXPECT_GE(facts.bounds.left, 0);
    EXPECT_GE(facts.bounds.top, 0);
    EXPECT_LT(facts.bounds.right, facts.deviceWidth);
    EXPECT_LT(facts.bounds.bottom, facts.deviceHeight);
    const PlayedMetafile before(file.bytes, file.width, file.height);
    const PlayedMetafile after(emf, file.width, file.height);
    EXPECT_THAT(after.report.warnings, testing::IsEmpty());
    EXPECT_EQ(after.report.skipped, 0u);
    const auto known = kRecordedDifferences.find(file.path);
    const double most = known == kRecordedDifferences.end() ? 0 : known->second;
    EXPECT_LE(Difference(before.raster, after.raster), most);
  }
  EXPECT_EQ(recorded, 21);
}

}  // namespace
}  // namespace rasterkit::test
