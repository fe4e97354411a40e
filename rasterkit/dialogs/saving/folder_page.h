#pragma once

#include <QLineEdit>
#include <QListWidget>
#include <QWidget>
#include <functional>
#include <string>

namespace rasterkit {
class PicturePreview;
class TFileListView;
}  // namespace rasterkit

namespace rasterkit::detail {

/// Places, a list of files, and a preview of the selected one. Internal to this folder.
class FolderPage : public QWidget {
 public:
  FolderPage(const std::string& folderOfPicture, QWidget* parent);

  /// Another folder, without its separator.
  std::function<void(const std::string& folder)> OnFolder;
  /// The user moved to a file.
  std::function<void(const std::string& name)> OnName;
  /// A double click on a file.
  std::function<void()> OnFile;

  void ShowFolder(const std::string& folder);
  void ShowMask(const std::string& mask);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AddPlaces(const std::string& folderOfPicture);
  void AddPlace(const QString& text, const QString& folder);
  void Enter(const QString& folder);

  QListWidget* places_ = nullptr;
  QLineEdit* folder_ = nullptr;
  TFileListView* files_ = nullptr;
  PicturePreview* preview_ = nullptr;
};

}  // namespace rasterkit::detail
