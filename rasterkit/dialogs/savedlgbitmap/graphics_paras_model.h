#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <rasterkit/dialogs/savedlgbitmap/graphics_paras_view.h>
#include <rasterkit/dialogs/savedlgbitmap/save_options.h>

namespace rasterkit {

/// The help topic of the settings window.
inline constexpr int kHelpOfGraphicsParas = 530200;

/// All that the settings window knows and does, without a window. Sizes come width first.
///
/// Before it is shown, groups are hidden, the size is set (in millimetres or in pixels), and then
/// the record.
class GraphicsParasModel {
 public:
  /// The window shows all groups by now, and its own texts.
  explicit GraphicsParasModel(GraphicsParasView& view);

  /// The window becomes shorter by the group's height. A hidden group stays so.
  void HideGroup(ParasGroup group);
  bool Visible(ParasGroup group) const { return visible_[static_cast<size_t>(group)]; }

  /// The picture's size on paper, from which its pixels follow with each resolution. Sizes below
  /// 0.01, and what is no number, are not shown.
  void SetSizeMM(float width, float height);
  /// The picture's size in pixels, which the user may change in this proportion.
  void SetBmpSize(int32_t width, int32_t height);

  void SetSaveOptions(const TrecSaveBitmap& rec);
  /// The record with what the user set. Its type and resolution stay where these are hidden.
  TrecSaveBitmap GetSaveOptions() const;

  /// Shows the settings of a graphic type; JPEG has others than the rest.
  void SetBmpType(int32_t type);
  int32_t BmpType() const { return type_; }

  /// What SetBmpSize was given, or what the user made of it, rounded, halves to even.
  int32_t RoundedWidth() const;
  int32_t RoundedHeight() const;

  // What happens in the window.
  /// Shown for the first time.
  void FormShow();
  void CoBoGraphTypeChange(int position);
  void SpEdDpiChange(double dpi);
  void CoBoColorsChange(int position);
  void TrackBarCompChange(int position);
  void FlEdSizeChange(SizeEdit edit, double pixels);

 private:
  struct Size {
    double width = 0, height = 0;
  };
  /// While it lives, events of controls are the model's own doing.
  class Setting;

  void SetVisible(ParasGroup group, bool visible);
  void ShowSettings(ParasGroup shown, ParasGroup hidden, int growth);
  void CalcPixSize();
  void ShowPixSize();
  void CalcAndShowSize();
  void ShowQuality();

  GraphicsParasView& view_;
  std::array<bool, kParasGroups> visible_;
  /// As they are without a type and a unit.
  std::string orgBitmapTitle_, orgJpegTitle_, orgSizeCaption_;
  TrecSaveBitmap rec_;
  int32_t type_ = 0;
  double dpi_ = 0;
  int32_t bits_ = 24;
  int32_t quality_ = 0;
  float widthMm_ = 0, heightMm_ = 0;
  /// In pixels: what was given, or follows from the resolution.
  Size pixels_;
  /// What the edits hold; these are the size where they are shown.
  Size edited_;
  bool hasEdits_ = false;
  bool isInitialising_ = true;
  int settings_ = 0;
};

}  // namespace rasterkit
