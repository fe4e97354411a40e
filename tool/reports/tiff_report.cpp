#include "tool/reports/tiff_report.h"

#include <fmt/core.h>

namespace rasterkit::tool {
namespace {

/// Name of a photometric interpretation, and the number of samples that it needs.
struct Colors {
  std::string name;
  int samples = 1;
};

Colors ColorsOf(const TiffFacts& facts) {
  switch (facts.photometric) {
    case 0:
    case 1:
      return {facts.bitsPerSample == 1 && facts.samples == 1 ? "black and white" : "gray", 1};
    case 2:
      return {"RGB", 3};
    case 3:
      return {"palette", 1};
    case 4:
      return {"mask", 1};
    case 5:
      return facts.samples < 4 ? Colors{"inks", facts.samples} : Colors{"CMYK", 4};
    case 6:
      return {"YCbCr", 3};
    case 8:
    case 9:
    case 10:
      return {"Lab", 3};
    case 32803:
      return {"color filter array", 1};
    case 32844:
      return {"LogL", 1};
    case 32845:
      return {"LogLuv", 3};
    default:
      return {fmt::format("photometric {}", facts.photometric), facts.samples};
  }
}

const char* NumberWord(int sampleFormat) {
  switch (sampleFormat) {
    case 2:
      return " signed";
    case 3:
      return " float";
    case 5:
    case 6:
      return " complex";
    default:
      return "";
  }
}

std::string PageWords(const TiffFacts& facts) {
  if (facts.pages <= 1) return {};
  std::string words = fmt::format(", {} pages", facts.pages);
  if (facts.secondaryPages == 0) return words;
  const char* const what =
      facts.secondaryPages == 1 ? "a smaller copy or mask" : "smaller copies or masks";
  return fmt::format("{}, {} of them {}", words, facts.secondaryPages, what);
}

const char* ByteOrder(const TiffFacts& facts) {
  return facts.isBigEndian ? "big" : "little";
}

}  // namespace

std::string PixelWords(const TiffFacts& facts) {
  const Colors colors = ColorsOf(facts);
  std::string words =
      fmt::format("{}-bit{} {}", facts.bitsPerSample, NumberWord(facts.sampleFormat), colors.name);
  if (facts.samples != colors.samples) words += fmt::format(", {} samples", facts.samples);
  return words;
}

std::string TiffText(const TiffFacts& facts) {
  const std::string compression = facts.compression == 1 ? std::string("not compressed")
                                                         : TiffCompressionName(facts.compression);
  return fmt::format("{}, {}, {}{}, {}-endian{}{}", PixelWords(facts), compression,
                     facts.isTiled ? "tiles" : "strips",
                     facts.isPlanar ? " of separate samples" : "", ByteOrder(facts),
                     facts.isBigTiff ? ", BigTIFF" : "", PageWords(facts));
}

Json TiffJson(const TiffFacts& facts) {
  JsonObject json;
  json.Add("pixels", PixelWords(facts));
  json.Add("bits_per_sample", facts.bitsPerSample);
  json.Add("samples", facts.samples);
  json.Add("compression", TiffCompressionName(facts.compression));
  json.Add("layout", facts.isTiled ? "tiles" : "strips");
  json.Add("planar", facts.isPlanar);
  json.Add("byte_order", ByteOrder(facts));
  json.Add("bigtiff", facts.isBigTiff);
  json.Add("secondary_pages", facts.secondaryPages);
  json.Add("nodata", TextOrNull(facts.noData));
  json.Add("coordinate_system", facts.hasCoordinateSystem);
  json.Add("tie_points", facts.tiePoints.size() / 6);
  return json;
}

}  // namespace rasterkit::tool
