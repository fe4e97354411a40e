#pragma once

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <rasterkit/qt/preview/preview_loader.h>

class QLabel;

namespace rasterkit {

class TPaintBox;

/// The pane beside a list of files that shows the current one: small and upright, with its size in
/// pixels, or a short text that says why there is no preview. Internal to this folder.
class PicturePreview : public QWidget {
 public:
  explicit PicturePreview(QWidget* parent = nullptr);

  /// Shows the file after a short delay, or nothing for an empty name. Returns at once; a file that
  /// the user only passes quickly is not opened.
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
