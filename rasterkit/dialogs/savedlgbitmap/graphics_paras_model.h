#pragma once

#include <array>
#include <cstdint>
#include <string>

#include <rasterkit/dialogs/savedlgbitmap/graphics_paras_view.h>
#include <rasterkit/dialogs/savedlgbitmap/save_options.h>

namespace rasterkit {

/// The help topic of the settings window.
inline constexpr int kHelpOfGraphicsParas = 530200;

/// The state and the rules of the settings window, without a window. Sizes are given as width,
/// height.
///
/// Before it is shown, hide groups, set the size (in millimeters or in pixels), and then the
/// record.
class GraphicsParasModel {
 public:
  /// Requires that the window shows all groups and its own texts.
  explicit GraphicsParasModel(GraphicsParasView& view);

  /// Hides a group and makes the window shorter by its height. The group stays hidden.
  void HideGroup(ParasGroup group);
  bool Visible(ParasGroup group) const { return visible_[static_cast<size_t>(group)]; }

  /// Sets the picture's size on paper, which gives its pixels at each resolution. Sizes below 0.01
  /// and non-finite ones are not shown.
  void SetSizeMM(float width, float height);
  /// Sets the picture's size in pixels, which the user may change in this proportion.
  void SetBmpSize(int32_t width, int32_t height);

  void SetSaveOptions(const TrecSaveBitmap& rec);
  /// Returns the record with the user's settings. The type and the resolution do not change if they
  /// are hidden.
  TrecSaveBitmap GetSaveOptions() const;

  /// Shows the settings of a graphic type; JPEG has other settings than the rest.
  void SetBmpType(int32_t type);
  int32_t BmpType() const { return type_; }

  /// Returns the size in pixels that was set or that the user entered, rounded, halves to even.
  int32_t RoundedWidth() const;
  int32_t RoundedHeight() const;

  // Events of the window.

  /// Called when the window is first shown.
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
  /// While it lives, events of controls are caused by the model itself.
  class Setting;

  void SetVisible(ParasGroup group, bool visible);
  void ShowSettings(ParasGroup shown, ParasGroup hidden, int growth);
  void CalcPixSize();
  void ShowPixSize();
  void CalcAndShowSize();
  void ShowQuality();

  GraphicsParasView& view_;
  std::array<bool, kParasGroups> visible_;
  /// The titles without a type and a unit.
  std::string orgBitmapTitle_, orgJpegTitle_, orgSizeCaption_;
  TrecSaveBitmap rec_;
  int32_t type_ = 0;
  double dpi_ = 0;
  int32_t bits_ = 24;
  int32_t quality_ = 0;
  float widthMm_ = 0, heightMm_ = 0;
  /// In pixels: the given size, or the one that follows from the resolution.
  Size pixels_;
  /// The content of the edits; this is the size if they are shown.
  Size edited_;
  bool hasEdits_ = false;
  bool isInitializing_ = true;
  int settings_ = 0;
};

}  // namespace rasterkit
