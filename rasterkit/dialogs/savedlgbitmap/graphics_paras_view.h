#pragma once

#include <string>

namespace rasterkit {

/// Groups of the settings window, from top to bottom: "Graphics type", "Resolution / size", the
/// settings of bitmaps and of JPEG files, "Bitmap size [pixels]", "Size in mm".
enum class ParasGroup { type, resolution, bitmap, jpeg, pixelSize, millimeters };
inline constexpr int kParasGroups = 6;

/// Labels with a changing text, by object names.
enum class ParasText { LabComp, LabBmpSize, PanBmpW, PanBmpH, PanBmpSize, PanWmm, PanHmm };

enum class SizeEdit { FlEdWidth, FlEdHeight };

/// What the model of the settings window needs from it. The model ignores events that a control
/// emits while the model sets it. The functions must not throw.
class GraphicsParasView {
 public:
  virtual std::string Title(ParasGroup group) const = 0;
  virtual void SetTitle(ParasGroup group, const std::string& title) = 0;
  /// Returns the height of the group in the window, even if it is hidden.
  virtual int Height(ParasGroup group) const = 0;
  virtual void SetVisible(ParasGroup group, bool visible) = 0;

  virtual int WindowHeight() const = 0;
  virtual void SetWindowHeight(int height) = 0;

  virtual std::string Text(ParasText text) const = 0;
  virtual void SetText(ParasText text, const std::string& content) = 0;

  /// Shows the two edits of the size in pixels, or else the two panels.
  virtual void ShowPixelEdits(bool shown) = 0;
  virtual void SetSize(SizeEdit edit, double pixels) = 0;

  /// Positions count from 0.
  virtual void SelectType(int position) = 0;
  virtual void SelectColors(int position) = 0;
  virtual void SetDpi(double dpi) = 0;
  virtual void SetTrackBar(int position) = 0;

 protected:
  ~GraphicsParasView() = default;
};

}  // namespace rasterkit
