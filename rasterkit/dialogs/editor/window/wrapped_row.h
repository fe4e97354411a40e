#pragma once

#include <QLayout>
#include <QList>
#include <memory>
#include <vector>

namespace rasterkit {

/// A layout that puts its items side by side at their own sizes and goes on in the next line where
/// the width ends, from right to left in such languages. Nothing is ever hidden or clipped while
/// the widest item fits.
class WrappedRow : public QLayout {
  Q_OBJECT

 public:
  /// The layout gets at least a width in which this many lines suffice.
  explicit WrappedRow(QWidget* parent, int mostLines);
  ~WrappedRow() override;

  void addItem(QLayoutItem* item) override;
  int count() const override;
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;

  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override;
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& place) override;

 private:
  /// Returns the height; moves the items if asked to.
  int Arrange(const QRect& place, bool moves) const;
  /// All items in one line.
  int WholeWidth() const;
  int WidestItem() const;
  int HeightIn(int width) const;
  int Gap() const;

  std::vector<std::unique_ptr<QLayoutItem>> items_;
  const int mostLines_;
};

}  // namespace rasterkit
