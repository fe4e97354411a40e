#pragma once

#include <QSlider>

namespace rasterkit {

/// A horizontal track bar whose filled part reaches from zero to the value, to either side. From
/// the least value where zero is not in its range.
class ZeroSlider : public QSlider {
 public:
  explicit ZeroSlider(QWidget* parent = nullptr);

  /// The filled part in pixels of the widget; empty at zero.
  QRect FilledPart() const;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int CenterOfHandle(int value) const;
};

}  // namespace rasterkit
