#include "tool/reports/grid_report.h"

#include <cmath>

#include "tool/command/exit_code.h"
#include "tool/command/interruption.h"

namespace rasterkit::tool {
namespace {

void Look(const GridFile& file, GridAnswer& answer) {
  if (!answer.pixel || !file.grid->Holds(answer.pixel->x, answer.pixel->y)) return;
  const int column = static_cast<int>(answer.pixel->x), row = static_cast<int>(answer.pixel->y);
  for (int band = 0; band < file.grid->Bands(); ++band) {
    answer.values.push_back(file.grid->NumberAt(column, row, band));
  }
  answer.isNoData =
      std::visit([&](auto number) { return file.noData.Is(number); }, answer.values.front());
}

GridAnswer AtPixel(const GridFile& file, MapPoint pixel) {
  GridAnswer answer;
  answer.pixel = pixel;
  if (!file.positions.empty()) answer.map = file.positions[0].affine.At(pixel.x, pixel.y);
  Look(file, answer);
  return answer;
}

/// A pixel extends half its size around its center.
GridAnswer AtMapPoint(const GridFile& file, MapPoint point) {
  GridAnswer answer;
  answer.map = point;
  answer.pixel = file.positions[0].affine.Back(point);
  if (answer.pixel) {
    answer.pixel = {std::floor(answer.pixel->x + 0.5), std::floor(answer.pixel->y + 0.5)};
  }
  Look(file, answer);
  return answer;
}

std::vector<GridAnswer> AnswerAll(const GridFile& file, const GridQuestions& questions) {
  if (!questions.mapPoints.empty() && file.positions.empty()) {
    throw Failure(exitAnswerIsNo,
                  questions.file + ": has no position on a map: no tags and no world file");
  }
  std::vector<GridAnswer> answers;
  for (const MapPoint& pixel : questions.pixels) answers.push_back(AtPixel(file, pixel));
  for (const MapPoint& point : questions.mapPoints) answers.push_back(AtMapPoint(file, point));
  return answers;
}

}  // namespace

GridReport MakeGridReport(const GridQuestions& questions) {
  GridReport report;
  report.file = LoadGridFile(questions.file);
  if (!report.file.grid) return report;
  StopIfInterrupted();
  report.answers = AnswerAll(report.file, questions);
  for (int band = 0; band < report.file.grid->Bands(); ++band) {
    report.statistics.push_back(Summarize(*report.file.grid, report.file.noData, band));
    StopIfInterrupted();
  }
  return report;
}

}  // namespace rasterkit::tool
