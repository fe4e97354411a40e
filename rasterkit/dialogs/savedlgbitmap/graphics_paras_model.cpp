#include <algorithm>
#include <cmath>
#include <limits>

#include <rasterkit/bitmaptools/files/graphic_types.h>
#include <rasterkit/dialogs/savedlgbitmap/graphics_paras_model.h>
#include <rasterkit/dialogs/savedlgbitmap/paras_positions.h>
#include <rasterkit/dialogs/savedlgbitmap/size_texts.h>
#include <rasterkit/runtime/rounding.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

constexpr int kLeastQuality = 10, kMostQuality = 100, kUsualQuality = 90;
constexpr int kLeastHeight = 100;
constexpr float kLeastMillimeters = 0.01F;
constexpr double kMillimetersPerInch = 25.4;

/// Rounds a number of pixels or dots; 0 if it is not finite.
int32_t Rounded(double value) {
  constexpr double kGreatest = std::numeric_limits<int32_t>::max();
  return value > 0 ? static_cast<int32_t>(Round(std::min(value, kGreatest))) : 0;
}

bool IsShowable(float millimeters) {
  return std::isfinite(millimeters) && millimeters >= kLeastMillimeters;
}

/// "JPG " for 6.
std::string PrefixOf(int32_t type) {
  std::string extension = UpperCase(GetGraphicsExt(type));
  if (!extension.empty()) extension.erase(0, 1);
  return extension + " ";
}

bool HasBitmapSettings(int32_t type) {
  return type == gtBmp || type == gtPng || type == gtTif;
}

}  // namespace

class GraphicsParasModel::Setting {
 public:
  explicit Setting(GraphicsParasModel& model) : model_(model) { ++model_.settings_; }
  ~Setting() { --model_.settings_; }
  Setting(const Setting&) = delete;
  Setting& operator=(const Setting&) = delete;

 private:
  GraphicsParasModel& model_;
};

GraphicsParasModel::GraphicsParasModel(GraphicsParasView& view)
    : view_(view),
      orgBitmapTitle_(view.Title(ParasGroup::bitmap)),
      orgJpegTitle_(view.Title(ParasGroup::jpeg)),
      orgSizeCaption_(view.Text(ParasText::LabBmpSize)) {
  visible_.fill(true);
}

void GraphicsParasModel::SetVisible(ParasGroup group, bool visible) {
  visible_[static_cast<size_t>(group)] = visible;
  view_.SetVisible(group, visible);
}

void GraphicsParasModel::HideGroup(ParasGroup group) {
  if (!Visible(group)) return;
  const int height = view_.WindowHeight() - view_.Height(group);
  SetVisible(group, false);
  view_.SetWindowHeight(height);
}

void GraphicsParasModel::SetSizeMM(float width, float height) {
  hasEdits_ = false;
  view_.ShowPixelEdits(false);
  widthMm_ = width;
  heightMm_ = height;
  view_.SetText(ParasText::PanWmm, TextOfMillimeters(width));
  view_.SetText(ParasText::PanHmm, TextOfMillimeters(height));
  if (!IsShowable(width) || !IsShowable(height)) HideGroup(ParasGroup::millimeters);
}

void GraphicsParasModel::SetBmpSize(int32_t width, int32_t height) {
  hasEdits_ = true;
  view_.ShowPixelEdits(true);
  pixels_ = {static_cast<double>(width), static_cast<double>(height)};
  // The edits accept no negative numbers.
  edited_ = {std::max(pixels_.width, 0.0), std::max(pixels_.height, 0.0)};
  const Setting setting(*this);
  view_.SetSize(SizeEdit::FlEdWidth, edited_.width);
  view_.SetSize(SizeEdit::FlEdHeight, edited_.height);
  CalcAndShowSize();
}

void GraphicsParasModel::SetSaveOptions(const TrecSaveBitmap& rec) {
  const Setting setting(*this);
  rec_ = rec;
  if (rec_.JpgQuality < kLeastQuality || rec_.JpgQuality > kMostQuality) {
    rec_.JpgQuality = kUsualQuality;
  }
  if (Visible(ParasGroup::type)) view_.SelectType(PositionOfGraphicType(rec_.BitmapFormat));
  SetBmpType(rec_.BitmapFormat);
  if (Visible(ParasGroup::resolution)) {
    dpi_ = std::max(rec_.BitsPerInch, 0);
    view_.SetDpi(dpi_);
  }
  const int colors = PositionOfColorDepth(rec_.BitsPerPix);
  bits_ = ColorDepthAt(colors);
  view_.SelectColors(colors);
  quality_ = rec_.JpgQuality;
  view_.SetTrackBar(quality_);
  ShowQuality();
}

TrecSaveBitmap GraphicsParasModel::GetSaveOptions() const {
  TrecSaveBitmap rec = rec_;
  if (Visible(ParasGroup::type)) rec.BitmapFormat = type_;
  if (Visible(ParasGroup::resolution)) rec.BitsPerInch = Rounded(dpi_);
  rec.BitsPerPix = bits_;
  rec.JpgQuality = quality_;
  return rec;
}

void GraphicsParasModel::SetBmpType(int32_t type) {
  if (type == type_) return;
  const int bitmapHeight = view_.Height(ParasGroup::bitmap);
  const int jpegHeight = view_.Height(ParasGroup::jpeg);
  int growth = 0;
  if (type == gtJpg) {
    if (HasBitmapSettings(type_)) growth = jpegHeight - bitmapHeight;
    if (type_ == gtNone) growth = -bitmapHeight;
    ShowSettings(ParasGroup::jpeg, ParasGroup::bitmap, growth);
    view_.SetTitle(ParasGroup::jpeg, PrefixOf(type) + orgJpegTitle_);
  } else {
    if (type_ == gtJpg) growth = bitmapHeight - jpegHeight;
    if (type_ == gtNone) growth = -jpegHeight;
    ShowSettings(ParasGroup::bitmap, ParasGroup::jpeg, growth);
    view_.SetTitle(ParasGroup::bitmap, PrefixOf(type) + orgBitmapTitle_);
  }
  type_ = type;
}

void GraphicsParasModel::ShowSettings(ParasGroup shown, ParasGroup hidden, int growth) {
  const int height = view_.WindowHeight() + growth;
  SetVisible(hidden, false);
  SetVisible(shown, true);
  view_.SetWindowHeight(height);
}

int32_t GraphicsParasModel::RoundedWidth() const {
  return Rounded(edited_.width);
}

int32_t GraphicsParasModel::RoundedHeight() const {
  return Rounded(edited_.height);
}

void GraphicsParasModel::CalcPixSize() {
  if (hasEdits_ || !Visible(ParasGroup::resolution)) return;
  const double factor = static_cast<float>(dpi_ / kMillimetersPerInch);
  pixels_ = {static_cast<double>(Rounded(widthMm_ * factor)),
             static_cast<double>(Rounded(heightMm_ * factor))};
}

void GraphicsParasModel::ShowPixSize() {
  view_.SetText(ParasText::PanBmpW, std::to_string(static_cast<int64_t>(pixels_.width)));
  view_.SetText(ParasText::PanBmpH, std::to_string(static_cast<int64_t>(pixels_.height)));
  CalcAndShowSize();
}

void GraphicsParasModel::CalcAndShowSize() {
  const Size& size = hasEdits_ ? edited_ : pixels_;
  const BitmapSizeText text = TextOfBitmapSize(bits_, size.width, size.height);
  view_.SetText(ParasText::LabBmpSize, orgSizeCaption_ + " " + ResourceString(text.unit));
  view_.SetText(ParasText::PanBmpSize, text.number);
}

void GraphicsParasModel::ShowQuality() {
  view_.SetText(ParasText::LabComp, std::to_string(quality_));
}

void GraphicsParasModel::FormShow() {
  CalcPixSize();
  ShowPixSize();
  view_.SetWindowHeight(std::max(view_.WindowHeight(), kLeastHeight));
  isInitializing_ = false;
}

void GraphicsParasModel::CoBoGraphTypeChange(int position) {
  if (settings_ == 0) SetBmpType(GraphicTypeAt(position));
}

void GraphicsParasModel::SpEdDpiChange(double dpi) {
  if (settings_ != 0) return;
  dpi_ = dpi;
  CalcPixSize();
  ShowPixSize();
}

void GraphicsParasModel::CoBoColorsChange(int position) {
  if (settings_ != 0) return;
  bits_ = ColorDepthAt(position);
  CalcAndShowSize();
}

void GraphicsParasModel::TrackBarCompChange(int position) {
  if (settings_ != 0) return;
  quality_ = position;
  ShowQuality();
}

void GraphicsParasModel::FlEdSizeChange(SizeEdit edit, double pixels) {
  if (settings_ != 0) return;
  const bool isWidth = edit == SizeEdit::FlEdWidth;
  (isWidth ? edited_.width : edited_.height) = pixels;
  if (isInitializing_ || pixels_.width < 1 || pixels_.height < 1) return;
  const Setting setting(*this);
  // The shown number is the one that counts.
  if (isWidth) {
    edited_.height = Rounded(pixels * pixels_.height / pixels_.width);
    view_.SetSize(SizeEdit::FlEdHeight, edited_.height);
  } else {
    edited_.width = Rounded(pixels * pixels_.width / pixels_.height);
    view_.SetSize(SizeEdit::FlEdWidth, edited_.width);
  }
  CalcAndShowSize();
}

}  // namespace rasterkit
