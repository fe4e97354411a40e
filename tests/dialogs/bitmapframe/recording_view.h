#pragma once

#include <string>
#include <vector>

#include <rasterkit/dialogs/bitmapframe/bmp_cut_model.h>

namespace rasterkit::test {

/// A view without widgets: a client size, and the calls of the model in their order.
class RecordingView : public CutView {
 public:
  explicit RecordingView(int width = 400, int height = 300) : client{0, 0, width, height} {}

  TRect ClientRect() const override { return client; }
  void Repaint() override { calls.push_back("repaint"); }
  void ShowCursor(CutCursor shape) override { cursor = shape; }
  void ShowSizeText(const std::string& text) override {
    sizeText = text;
    calls.push_back("size");
  }

  TRect client;
  CutCursor cursor = CutCursor::standard;
  std::string sizeText;
  std::vector<std::string> calls;
};

/// A model whose events are recorded together with the calls of its view.
class ModelAndView {
 public:
  explicit ModelAndView(int width = 400, int height = 300) : view(width, height), model(view) {
    model.OnChanged = [this](BmpCutModel&) { view.calls.push_back("changed"); };
    model.OnInfoChanged = [this](BmpCutModel&) { view.calls.push_back("info"); };
    model.OnBmpRefPointChanged = [this](BmpCutModel&, int x, int y) {
      view.calls.push_back("point " + std::to_string(x) + "," + std::to_string(y));
    };
  }

  void Press(int x, int y) { model.MouseDown(CutButton::left, {true}, x, y); }
  void MoveTo(int x, int y) { model.MouseMove({model.DragIsActive()}, x, y); }
  void Release(int x, int y) { model.MouseUp(CutButton::left, x, y); }
  void Drag(int fromX, int fromY, int toX, int toY) {
    Press(fromX, fromY);
    MoveTo(toX, toY);
    Release(toX, toY);
  }

  RecordingView view;
  BmpCutModel model;
};

}  // namespace rasterkit::test
