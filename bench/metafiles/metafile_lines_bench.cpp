// Measures lines of an EMF file, and through a drawing context, against the same lines given to
// cairo directly. One record or call per line; lines are black, one pixel wide, on a white picture
// of 1000 x 1000 pixels. Short lines are those of a drawing; long ones cross half of the picture.
#include <algorithm>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <cairo.h>

#include <rasterkit/drawing/context/device_context.h>
#include <rasterkit/metafiles/emf/emf_writer.h>
#include <rasterkit/metafiles/play_metafile.h>

#include "bench/support/bench_timing.h"

namespace {

using rasterkit::PointD;

constexpr int kSide = 1000;
constexpr size_t kLines = 100'000;

/// Returns the corners of one long line; consecutive ones lie up to `reach` apart in each
/// direction.
std::vector<PointD> Corners(int reach) {
  std::mt19937 random(8);
  std::vector<PointD> corners{{kSide / 2.0, kSide / 2.0}};
  const auto next = [&](double from) {
    const int step = static_cast<int>(random() % static_cast<unsigned>(2 * reach + 1)) - reach;
    return std::clamp(from + step, 0.0, kSide - 1.0);
  };
  while (corners.size() <= kLines) {
    const PointD last = corners.back();
    corners.push_back({next(last.x), next(last.y)});
  }
  return corners;
}

rasterkit::Raster WhitePicture() {
  rasterkit::Raster picture(rasterkit::pf32bit, kSide, kSide);
  FillRaster(picture, {0, 0, kSide, kSide}, rasterkit::clWhite);
  return picture;
}

/// Returns the lines as an EMF file: one record that moves to the first corner, then one per line.
std::vector<uint8_t> Metafile(const std::vector<PointD>& corners) {
  using rasterkit::detail::EmfFields;
  using rasterkit::detail::EmfType;
  rasterkit::detail::EmfWriter writer;
  writer.Add(EmfType::moveTo, EmfFields().Point(corners[0]));
  for (size_t i = 1; i < corners.size(); ++i) {
    writer.Add(EmfType::lineTo, EmfFields().Point(corners[i]));
  }
  constexpr int kPixelsPerMeter = 3780;
  constexpr int kSideMm100 = kSide * 100'000 / kPixelsPerMeter;
  return writer.Finish({.width = kSide,
                        .height = kSide,
                        .widthMm100 = kSideMm100,
                        .heightMm100 = kSideMm100,
                        .drawn = rasterkit::RectD{0, 0, kSide - 1.0, kSide - 1.0}});
}

void File(benchmark::State& state) {
  const std::vector<uint8_t> bytes = Metafile(Corners(static_cast<int>(state.range(0))));
  rasterkit::Raster picture;
  rasterkit::bench::MeasurePrepared(
      state, kLines, [&] { picture = WhitePicture(); },
      [&] {
        const auto report = rasterkit::PlayMetafile(bytes, picture, {0, 0, kSide, kSide});
        if (report.played <= kLines) state.SkipWithError("lines were not drawn");
      });
}

void Context(benchmark::State& state) {
  const std::vector<PointD> corners = Corners(static_cast<int>(state.range(0)));
  rasterkit::Raster picture;
  rasterkit::bench::MeasurePrepared(
      state, kLines, [&] { picture = WhitePicture(); },
      [&] {
        rasterkit::DeviceContext context(picture, {0, 0, kSide, kSide}, {}, {});
        context.MoveTo(corners[0]);
        for (size_t i = 1; i < corners.size(); ++i) context.LineTo(corners[i]);
      });
}

void Cairo(benchmark::State& state) {
  const std::vector<PointD> corners = Corners(static_cast<int>(state.range(0)));
  rasterkit::Raster picture;
  rasterkit::bench::MeasurePrepared(
      state, kLines, [&] { picture = WhitePicture(); },
      [&] {
        cairo_surface_t* surface = cairo_image_surface_create_for_data(
            picture.Row(0), CAIRO_FORMAT_RGB24, kSide, kSide, static_cast<int>(picture.Stride()));
        cairo_t* cairo = cairo_create(surface);
        cairo_set_source_rgb(cairo, 0, 0, 0);
        cairo_set_line_width(cairo, 1);
        for (size_t i = 1; i < corners.size(); ++i) {
          cairo_move_to(cairo, corners[i - 1].x + 0.5, corners[i - 1].y + 0.5);
          cairo_line_to(cairo, corners[i].x + 0.5, corners[i].y + 0.5);
          cairo_stroke(cairo);
        }
        cairo_destroy(cairo);
        cairo_surface_destroy(surface);
      });
}

BENCHMARK(File)->ArgName("reach")->Arg(10)->Arg(500)->UseManualTime();
BENCHMARK(Context)->ArgName("reach")->Arg(10)->Arg(500)->UseManualTime();
BENCHMARK(Cairo)->ArgName("reach")->Arg(10)->Arg(500)->UseManualTime();

}  // namespace
