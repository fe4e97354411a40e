#pragma once

#include <array>
#include <map>
#include <string>

#include <rasterkit/dialogs/savedlgbitmap/graphics_paras_view.h>

namespace rasterkit::test {

/// The settings window as its model sees it: remembers what it was told.
class ParasView : public GraphicsParasView {
 public:
  static constexpr int kOther = 50;

  std::string Title(ParasGroup group) const override { return titles.at(group); }
  void SetTitle(ParasGroup group, const std::string& title) override { titles[group] = title; }
  int Height(ParasGroup group) const override { return heights.at(group); }
  void SetVisible(ParasGroup group, bool isVisible) override { visible[group] = isVisible; }
  int WindowHeight() const override { return windowHeight; }
  void SetWindowHeight(int height) override { windowHeight = height; }
  std::string Text(ParasText text) const override { return texts.at(text); }
  void SetText(ParasText text, const std::string& content) override { texts[text] = content; }
  void ShowPixelEdits(bool shown) override { hasEdits = shown; }
  void SetSize(SizeEdit edit, double pixels) override {
    sizes[edit] = pixels;
    ++sizesSet;
  }
  void SelectType(int position) override { type = position; }
  void SelectColors(int position) override { colors = position; }
  void SetDpi(double value) override { dpi = value; }
  void SetTrackBar(int position) override { trackBar = position; }

  /// What is visible, and what is around it.
  int HeightOfContent() const {
    int height = kOther;
    for (const auto& [group, isVisible] : visible)
      if (isVisible) height += heights.at(group);
    return height;
  }

  std::map<ParasGroup, std::string> titles = {{ParasGroup::bitmap, "Settings"},
                                              {ParasGroup::jpeg, "Settings"}};
  std::map<ParasGroup, int> heights = {{ParasGroup::type, 60},      {ParasGroup::resolution, 61},
                                       {ParasGroup::bitmap, 63},    {ParasGroup::jpeg, 127},
                                       {ParasGroup::pixelSize, 89}, {ParasGroup::millimeters, 57}};
  std::map<ParasGroup, bool> visible = {
      {ParasGroup::type, true}, {ParasGroup::resolution, true}, {ParasGroup::bitmap, true},
      {ParasGroup::jpeg, true}, {ParasGroup::pixelSize, true},  {ParasGroup::millimeters, true}};
  int windowHeight = HeightOfContent();
  std::map<ParasText, std::string> texts = {{ParasText::LabBmpSize, "Size of Windows bitmap"}};
  bool hasEdits = true;
  std::map<SizeEdit, double> sizes;
  int sizesSet = 0;
  int type = -1, colors = -1, trackBar = -1;
  double dpi = -1;
};

}  // namespace rasterkit::test
