#include <algorithm>
#include <cstdlib>
#include <limits>

#include <rasterkit/host/metafiles/wmf_extent.h>

namespace rasterkit::detail {
namespace {

/// Logical units an inch of the mapping modes 2 to 6: 0.1 mm, 0.01 mm, 0.01 inch, 0.001 inch,
/// twentieths of a point. The other modes have no unit of their own.
double UnitsOfMode(int mode) {
  constexpr double units[] = {254, 2540, 100, 1000, 1440};
  return mode >= 2 && mode <= 6 ? units[mode - 2] : 0;
}

class DrawnBox {
 public:
  void Add(int x, int y) {
    left_ = std::min(left_, x);
    top_ = std::min(top_, y);
    right_ = std::max(right_, x);
    bottom_ = std::max(bottom_, y);
  }
  bool IsEmpty() const { return left_ > right_; }
  WmfExtent Extent() const { return {left_, top_, right_, bottom_}; }

 private:
  int left_ = std::numeric_limits<int>::max(), top_ = std::numeric_limits<int>::max();
  int right_ = std::numeric_limits<int>::min(), bottom_ = std::numeric_limits<int>::min();
};

class WmfSurvey {
 public:
  void Look(const WmfRecord& record);
  WmfExtent Extent() const;
  double UnitsPerInch() const { return unitsPerInch_; }

 private:
  /// Points that start behind `skipped` words; each is y before x where `reversed`.
  void AddPairs(const WmfRecord& record, size_t skipped, size_t count, bool reversed = true);
  void AddPoints(const WmfRecord& record);
  void AddPolygons(const WmfRecord& record);
  /// Height, width, top and left, in this order.
  void AddSized(const WmfRecord& record, size_t skipped);

  DrawnBox drawn_;
  bool hasOrg_ = false, hasExt_ = false;
  int orgX_ = 0, orgY_ = 0, extX_ = 0, extY_ = 0;
  double unitsPerInch_ = 0;
};

void WmfSurvey::AddPairs(const WmfRecord& record, size_t skipped, size_t count, bool reversed) {
  MetafileBytes fields = record.Fields();
  fields.Skip(2 * skipped);
  for (size_t i = 0; i < count; ++i) {
    const int first = fields.Short(), second = fields.Short();
    drawn_.Add(reversed ? second : first, reversed ? first : second);
  }
}

void WmfSurvey::AddPoints(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const uint16_t stated = fields.Word();
  AddPairs(record, 1, fields.Count(stated, 4), false);
}

void WmfSurvey::AddPolygons(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  const uint16_t polygons = fields.Word();
  size_t points = 0;
  for (uint16_t i = 0; i < polygons; ++i) points += fields.Word();
  AddPairs(record, size_t{1} + polygons, fields.Count(points, 4), false);
}

void WmfSurvey::AddSized(const WmfRecord& record, size_t skipped) {
  MetafileBytes fields = record.Fields();
  fields.Skip(2 * skipped);
  const int height = fields.Short(), width = fields.Short();
  const int top = fields.Short(), left = fields.Short();
  drawn_.Add(left, top);
  drawn_.Add(left + width, top + height);
}

void WmfSurvey::Look(const WmfRecord& record) {
  MetafileBytes fields = record.Fields();
  switch (record.function) {
    case WmfFunction::setMapMode:
      if (unitsPerInch_ == 0) unitsPerInch_ = UnitsOfMode(fields.Word());
      break;
    case WmfFunction::setWindowOrg:
      if (hasOrg_) break;
      orgY_ = fields.Short();
      orgX_ = fields.Short();
      hasOrg_ = true;
      break;
    case WmfFunction::setWindowExt:
      if (hasExt_) break;
      extY_ = fields.Short();
      extX_ = fields.Short();
      hasExt_ = extX_ != 0 && extY_ != 0;
      break;
    case WmfFunction::moveTo:
    case WmfFunction::lineTo:
      AddPairs(record, 0, 1);
      break;
    case WmfFunction::setPixel:
      AddPairs(record, 2, 1);
      break;
    case WmfFunction::rectangle:
    case WmfFunction::ellipse:
      AddPairs(record, 0, 2);
      break;
    case WmfFunction::roundRect:
      AddPairs(record, 2, 2);
      break;
    case WmfFunction::arc:
    case WmfFunction::pie:
    case WmfFunction::chord:
      AddPairs(record, 4, 2);
      break;
    case WmfFunction::polygon:
    case WmfFunction::polyline:
      AddPoints(record);
      break;
    case WmfFunction::polyPolygon:
      AddPolygons(record);
      break;
    case WmfFunction::extTextOut:
      AddPairs(record, 0, 1);
      break;
    case WmfFunction::textOut:
      // The text lies between its length and its place, filled up to a word.
      AddPairs(record, 1 + (size_t{fields.Word()} + 1) / 2, 1);
      break;
    case WmfFunction::patBlt:
      AddSized(record, 2);
      break;
    case WmfFunction::dibBitBlt:
    case WmfFunction::bitBlt:
      AddSized(record, record.HasBitmap() ? 4 : 5);
      break;
    case WmfFunction::dibStretchBlt:
    case WmfFunction::stretchBlt:
      AddSized(record, record.HasBitmap() ? 6 : 7);
      break;
    case WmfFunction::stretchDib:
      AddSized(record, 7);
      break;
    case WmfFunction::setDibToDev:
      AddSized(record, 5);
      break;
    default:
      break;
  }
}

WmfExtent WmfSurvey::Extent() const {
  if (hasExt_) return {orgX_, orgY_, orgX_ + extX_, orgY_ + extY_};
  if (drawn_.IsEmpty()) return {0, 0, 1, 1};
  // Points are pixels here, and the last one is seen too.
  DrawnBox drawn = drawn_;
  // A window that has a corner but no size begins there.
  if (hasOrg_ && unitsPerInch_ > 0) drawn.Add(orgX_, orgY_);
  const WmfExtent extent = drawn.Extent();
  return {extent.left, extent.top, extent.right + 1, extent.bottom + 1};
}

}  // namespace

WmfContents ReadWmfContents(std::span<const uint8_t> bytes) {
  WmfRecords records(bytes);
  WmfContents contents;
  contents.placement = records.Placement();
  WmfSurvey survey;
  while (const std::optional<WmfRecord> record = records.Next()) {
    ++contents.records;
    try {
      survey.Look(*record);
    } catch (const FormatError&) {
      // A record that is too short is not drawn either.
    }
  }
  contents.extent = survey.Extent();
  contents.unitsPerInch = survey.UnitsPerInch();
  contents.damage = records.Damage();
  return contents;
}

}  // namespace rasterkit::detail
