#pragma once

#include <map>
#include <memory>
#include <optional>

#include <rasterkit/dialogs/values/gray_counting.h>
#include <rasterkit/dialogs/values/pixel_sample.h>
#include <rasterkit/dialogs/values/preview_renderer.h>
#include <rasterkit/dialogs/values/value_histogram.h>
#include <rasterkit/dialogs/values/value_session.h>
#include <rasterkit/dialogs/values/values_viewport.h>
#include <rasterkit/qt/forms/scaled_form.h>
#include <rasterkit/qt/latest_task.h>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QGridLayout;
class QLabel;
class QPushButton;
class QToolButton;

namespace rasterkit {

class HistogramBox;
class PreviewBox;
class TNavigator;
class TSpinEditInt;
class ZeroSlider;

/// The window of ChooseValues and ChooseThreshold. The session must outlive it.
class TFormChooseValues : public TScaledForm {
  Q_OBJECT

 public:
  explicit TFormChooseValues(ValueSession& session, QWidget* parent = nullptr);
  ~TFormChooseValues() override;

  PreviewBox& Preview() { return *preview_; }
  HistogramBox& Histogram() { return *histogram_; }
  ValuesViewport& Viewport() { return viewport_; }
  PreviewRenderer& Renderer() { return renderer_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  /// The row of one number.
  struct Row {
    QLabel* label = nullptr;
    ZeroSlider* slider = nullptr;
    TSpinEditInt* spin = nullptr;
    QToolButton* reset = nullptr;
  };

  QLayout* NewToolBar();
  QWidget* NewPanel();
  QLayout* NewHistoryBar();
  void AddRow(QGridLayout& grid, ValueControl control);
  void SetUpNavigator();
  void AddKeys();
  void SetTabOrder();
  void WatchKeys();
  void ShowValues();
  void ShowView();
  void ShowHistogram();
  void ShowCounts(const ValueHistogram& histogram);
  void CountChanged();
  void ShowHelp();
  void Compare(bool isOn);
  std::optional<ValueControl> ControlOf(const QObject* watched) const;
  bool KeyEvent(QObject* watched, QEvent* event);
  void CountGrays();
  void TakeCounts(const GrayCounts& counts);

  ValueSession& session_;
  ValuesViewport viewport_;
  PreviewRenderer renderer_;
  /// Shared with the thread that counts.
  const std::shared_ptr<const PixelSample> sample_;
  detail::LatestTask histogramTask_;
  std::optional<GrayCounting> counting_;
  /// Of the whole picture, or of the sample until that is counted.
  LevelCounts grays_{};
  bool isShowing_ = false, hasHistogram_ = false;

  PreviewBox* preview_ = nullptr;
  HistogramBox* histogram_ = nullptr;
  QLabel* histogramFacts_ = nullptr;
  QLabel* found_ = nullptr;
  QComboBox* mode_ = nullptr;
  QPushButton* fit_ = nullptr;
  QPushButton* actualSize_ = nullptr;
  QToolButton* zoomIn_ = nullptr;
  QToolButton* zoomOut_ = nullptr;
  QLabel* zoom_ = nullptr;
  QCheckBox* loupe_ = nullptr;
  QPushButton* before_ = nullptr;
  QCheckBox* automatic_ = nullptr;
  QPushButton* undo_ = nullptr;
  QPushButton* redo_ = nullptr;
  QPushButton* last_ = nullptr;
  TNavigator* navigator_ = nullptr;
  std::map<ValueControl, Row> rows_;
};

}  // namespace rasterkit
