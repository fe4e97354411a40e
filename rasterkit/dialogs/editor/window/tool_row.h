#pragma once

#include <QAction>
#include <QList>
#include <QToolButton>
#include <QWidget>

namespace rasterkit {

/// Groups of tool buttons that go on in the next line where the window is too narrow. The whole row
/// is one stop of the Tab key: arrow keys, Home and End go from button to button, Space and Enter
/// press one, F6 calls the row from anywhere in the window.
class ToolRow : public QWidget {
  Q_OBJECT

 public:
  explicit ToolRow(QWidget* parent);

  /// A button with text, drawing, tip and state of the action. `name` is its object name.
  QToolButton* AddTool(QAction& action, const QString& name);
  /// A line between two groups.
  void AddLine();
  const QList<QToolButton*>& Tools() const { return tools_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool IsUsable(int index) const;
  /// The next usable button in a direction, or this one.
  int Next(int index, int step) const;
  /// The button at which the Tab key stops.
  void SetStop(int index);
  void KeepStopUsable();
  bool HandleKey(int index, int key);

  QList<QToolButton*> tools_;
  int stop_ = -1;
};

}  // namespace rasterkit
