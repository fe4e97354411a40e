#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <rasterkit/qt/preview/preview_loader.h>

class QLabel;

namespace rasterkit {

class TPaintBox;

/// The pane beside a list of files that shows the one under the cursor: small and upright, with its
/// size in pixels, or a short text that says why there is nothing to see. Internal to the room.
class PicturePreview : public QWidget {
 public:
  explicit PicturePreview(QWidget* parent = nullptr);

  /// Shows the file soon, or nothing for an empty name. Returns at once; a file that is passed by
  /// in a hurry is not opened.
  void ShowFile(const QString& fileName);

  QSize sizeHint() const override;

 private:
  void Load();
  void ShowPreview(const detail::Preview& preview);
  void ShowText(const QString& text);
  void Paint(QPainter& painter) const;

  TPaintBox* box_ = nullptr;
  QLabel* text_ = nullptr;
  QTimer delay_;
  QString fileName_;
  QImage image_;
  detail::PreviewLoader loader_;
};

}  // namespace rasterkit
