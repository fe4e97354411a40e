#include "tests/bands/flow/flow_stages.h"

#include <algorithm>
#include <cstring>

#include <rasterkit/runtime/errors.h>

namespace rasterkit::test {
namespace {

constexpr int kCropped = 2;
constexpr int kThird = 3;
constexpr int kFailingRow = 17;

size_t StrideOf(const Pixels& pixels) {
  return std::visit([](const auto& rows) { return rows.Stride(); }, pixels);
}

int PlanesOf(const Pixels& pixels) {
  const auto* samples = std::get_if<Samples>(&pixels);
  return samples != nullptr ? samples->Planes() : 1;
}

const uint8_t* RowOf(const Pixels& pixels, int y, int plane) {
  if (const auto* samples = std::get_if<Samples>(&pixels)) return samples->Row(y, plane);
  return std::get<Raster>(pixels).Row(y);
}

uint8_t* RowOf(Pixels& pixels, int y, int plane) {
  return const_cast<uint8_t*>(RowOf(std::as_const(pixels), y, plane));
}

class TestWork : public BandWork {
 public:
  TestWork(Doing doing, Sides source, const Pixels& like)
      : doing_(doing), source_(source), like_(NewPixels(like, 1, 1)) {}

  RowRange Looks() const override {
    if (doing_ == Doing::twoPasses && passes_ == 0) return {0, source_.height};
    if ((doing_ == Doing::twoPasses && passes_ == 1) ||
        (doing_ == Doing::lastRow && passes_ == 0)) {
      return {source_.height - 1, 1};
    }
    return {};
  }
  void Look(const Band& rows, const StageRun&) override {
    RequireNext(rows);
    for (int plane = 0; plane < PlanesOf(rows.pixels); ++plane) {
      for (int y = 0; y < HeightOf(rows.pixels); ++y) {
        // Order-free over planes, so that the sum does not depend on how rows are divided.
        sum_ += static_cast<unsigned>(rows.top + y + 1) * RowOf(rows.pixels, y, plane)[0];
      }
    }
  }
  void Decide() override {
    ++passes_;
    next_ = -1;
  }

  const Pixels& Like() const override { return like_; }
  Sides Size() const override { return SizeAfter(doing_, source_); }
  bool MakesParts() const override {
    return doing_ == Doing::mirrored || doing_ == Doing::transposed || doing_ == Doing::cropped;
  }

  BandRect Needs(const BandRect& target) const override {
    BandRect need = target;
    if (!MakesParts()) need = {0, target.top, source_.width, target.height};
    switch (doing_) {
      case Doing::mirrored:
        need.left = source_.width - target.left - target.width;
        break;
      case Doing::reachOne:
        need.top = std::max(0, target.top - 1);
        need.height = std::min(source_.height, target.top + target.height + 1) - need.top;
        break;
      case Doing::reversed:
        need.top = source_.height - target.top - target.height;
        break;
      case Doing::transposed:
        need = {target.top, target.left, target.height, target.width};
        break;
      case Doing::transposedRows:
        need = {0, target.left, source_.width, target.width};
        break;
      case Doing::everyThird:
        need.top = kThird * target.top;
        need.height = kThird * (target.height - 1) + 1;
        break;
      case Doing::cropped:
        need.top += kCropped;
        need.left += kCropped;
        break;
      default:
        break;
    }
    return need;
  }

  void Make(const Band& source, Band& target, RowRange rows) const override {
    for (int y = rows.first - target.top; y < rows.first - target.top + rows.count; ++y) {
      if (doing_ == Doing::failing && target.top + y == kFailingRow) {
        throw FormatError("row 17 fails");
      }
      MakeRow(source, target, y);
    }
  }

  void Finish(Changes& changes) override {
    changes.notes.push_back(NameOf(doing_) + " " + std::to_string(sum_));
  }

 private:
  /// Rows come from top to bottom without gaps.
  void RequireNext(const Band& rows) {
    if ((next_ >= 0 && rows.top != next_) || rows.left != 0 ||
        WidthOf(rows.pixels) != source_.width) {
      throw RangeError("a pass sees rows in a wrong order");
    }
    next_ = rows.top + HeightOf(rows.pixels);
  }

  void MovePixel(const Band& source, int x, int y, Band& target, int toX, int toY) const {
    CopyPart(source.pixels, {x - source.left, y - source.top, 1, 1}, target.pixels, toX, toY);
  }

  void MakeRow(const Band& source, Band& target, int y) const {
    const int row = target.top + y, width = WidthOf(target.pixels);
    switch (doing_) {
      case Doing::mirrored:
        for (int x = 0; x < width; ++x) {
          MovePixel(source, source_.width - 1 - (target.left + x), row, target, x, y);
        }
        return;
      case Doing::transposed:
      case Doing::transposedRows:
        for (int x = 0; x < width; ++x) MovePixel(source, row, target.left + x, target, x, y);
        return;
      case Doing::cropped:
        CopyPart(source.pixels,
                 {target.left + kCropped - source.left, row + kCropped - source.top, width, 1},
                 target.pixels, 0, y);
        return;
      case Doing::reversed:
        return CopyRow(source, source_.height - 1 - row, target, y);
      case Doing::everyThird:
        return CopyRow(source, kThird * row, target, y);
      default:
        CopyRow(source, row, target, y);
    }
    for (int plane = 0; plane < PlanesOf(target.pixels); ++plane) {
      uint8_t* to = RowOf(target.pixels, y, plane);
      if (doing_ == Doing::reachOne) {
        for (const int other : {row - 1, row + 1}) {
          if (other < 0 || other >= source_.height) continue;
          const uint8_t* from = RowOf(source.pixels, other - source.top, plane);
          for (size_t i = 0; i < StrideOf(target.pixels); ++i) {
            to[i] = static_cast<uint8_t>(to[i] ^ from[i]);
          }
        }
      }
      if (doing_ == Doing::twoPasses || doing_ == Doing::lastRow) {
        const bool isByteUsed = source_.width >= 8;
        if (isByteUsed) to[0] = static_cast<uint8_t>(to[0] ^ sum_);
      }
    }
  }

  void CopyRow(const Band& source, int from, Band& target, int y) const {
    CopyPart(source.pixels, {0, from - source.top, source_.width, 1}, target.pixels, 0, y);
  }

  const Doing doing_;
  const Sides source_;
  const Pixels like_;
  int passes_ = 0, next_ = -1;
  unsigned sum_ = 0;
};

class SimpleStage : public BandStage {
 public:
  SimpleStage(Doing doing, Sides source) : BandStage(source), doing_(doing) {}
  RowRange Needs(RowRange) const override { return {0, Source().height}; }
  std::unique_ptr<BandWork> Start(const Pixels& like, const StageRun&) const override {
    return std::make_unique<TestWork>(doing_, Source(), like);
  }

 private:
  const Doing doing_;
};

/// Exchanges the halves.
class WholeStage : public Stage {
 public:
  explicit WholeStage(Sides source) : source_(source) {}
  RowRange Needs(RowRange) const override { return {0, source_.height}; }
  Pixels Make(Pixels source, const StageRun&, Changes& changes) const override {
    Pixels made = NewPixels(source, source_.width, source_.height);
    const int half = source_.height / 2, rest = source_.height - half;
    CopyPart(source, {0, 0, source_.width, half}, made, 0, rest);
    CopyPart(source, {0, half, source_.width, rest}, made, 0, 0);
    changes.notes.emplace_back("whole");
    return made;
  }

 private:
  const Sides source_;
};

}  // namespace

std::string NameOf(Doing doing) {
  switch (doing) {
    case Doing::mirrored:
      return "mirrored";
    case Doing::reachOne:
      return "reachOne";
    case Doing::reversed:
      return "reversed";
    case Doing::transposed:
      return "transposed";
    case Doing::transposedRows:
      return "transposedRows";
    case Doing::everyThird:
      return "everyThird";
    case Doing::twoPasses:
      return "twoPasses";
    case Doing::lastRow:
      return "lastRow";
    case Doing::cropped:
      return "cropped";
    case Doing::whole:
      return "whole";
    default:
      return "failing";
  }
}

Sides SizeAfter(Doing doing, Sides source) {
  switch (doing) {
    case Doing::transposed:
    case Doing::transposedRows:
      return {source.height, source.width};
    case Doing::everyThird:
      return {source.width, (source.height + kThird - 1) / kThird};
    case Doing::cropped:
      return {source.width - 2 * kCropped, source.height - 2 * kCropped};
    default:
      return source;
  }
}

std::shared_ptr<const Stage> TestStage(Doing doing, Sides source) {
  if (doing == Doing::whole) return std::make_shared<WholeStage>(source);
  return std::make_shared<SimpleStage>(doing, source);
}

Stages StagesFor(const std::vector<Doing>& doings, Sides source) {
  Stages stages;
  for (const Doing doing : doings) {
    stages.push_back(TestStage(doing, source));
    source = SizeAfter(doing, source);
  }
  return stages;
}

}  // namespace rasterkit::test
