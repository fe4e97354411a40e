#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QSplitter>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>

#include <rasterkit/dialogs/saving/folder_page.h>
#include <rasterkit/dialogs/saving/saving_folders.h>
#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/guarded.h>
#include <rasterkit/qt/look/icons.h>
#include <rasterkit/qt/preview/picture_preview.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit::detail {
namespace {

constexpr int kFolderRole = Qt::UserRole;

std::string WithoutSeparator(std::string folder) {
  if (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  return folder;
}

/// A list below its name, whose letter leads to it.
void AddPart(QSplitter& parts, QWidget& list, const char* labelName, std::string_view text) {
  auto* part = new QWidget(&parts);
  auto* column = new QVBoxLayout(part);
  column->setContentsMargins(0, 0, 0, 0);
  auto* label = new QLabel(ResourceText(text), part);
  label->setObjectName(labelName);
  label->setBuddy(&list);
  list.setAccessibleName(label->text().remove(u'&'));
  column->addWidget(label);
  column->addWidget(&list, 1);
}

}  // namespace

FolderPage::FolderPage(const std::string& folderOfPicture, QWidget* parent) : QWidget(parent) {
  setObjectName("FolderPage");
  auto* column = new QVBoxLayout(this);
  auto* row = new QHBoxLayout;
  folder_ = new QLineEdit(this);
  folder_->setObjectName("EditFolder");
  folder_->setToolTip(ResourceText(rsSavePathHint));
  auto* label = new QLabel(ResourceText(rsSavingFolder), this);
  label->setObjectName("LabFolder");
  label->setBuddy(folder_);
  auto* up = new QToolButton(this);
  up->setObjectName("ButtonUp");
  up->setIcon(Icon("folder-up"));
  up->setFocusPolicy(Qt::StrongFocus);
  up->setToolTip(ResourceText(rsSavingUpHint));
  up->setAccessibleName(ResourceText(rsSaveFolderUp));
  up->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Up));
  row->addWidget(label);
  row->addWidget(folder_, 1);
  row->addWidget(up);
  column->addLayout(row);

  auto* parts = new QSplitter(this);
  parts->setObjectName("FolderParts");
  parts->setChildrenCollapsible(false);
  places_ = new QListWidget;
  places_->setObjectName("Places");
  AddPart(*parts, *places_, "LabPlaces", rsSavingPlaces);
  places_->setToolTip(ResourceText(rsSavingPlacesHint));
  files_ = new TFileListView;
  files_->setObjectName("FileListView");
  AddPart(*parts, *files_, "LabFiles", rsSavingFiles);
  files_->setToolTip(ResourceText(rsSaveFilesHint));
  preview_ = new PicturePreview(parts);
  preview_->setMinimumWidth(preview_->sizeHint().width() / 2);
  parts->setStretchFactor(1, 1);
  parts->setSizes({places_->sizeHint().width() * 2 / 3, files_->sizeHint().width(),
                   preview_->sizeHint().width()});
  column->addWidget(parts, 1);
  AddPlaces(folderOfPicture);

  connect(up, &QToolButton::clicked, files_, &TFileListView::GoUp);
  folder_->installEventFilter(this);
  places_->installEventFilter(this);
  connect(places_, &QListWidget::itemClicked, this,
          [this](const QListWidgetItem* item) { Enter(item->data(kFolderRole).toString()); });
  connect(files_, &TFileListView::entrySelected, this, [this](const QString& name, bool isFolder) {
    preview_->ShowFile(isFolder ? QString() : ToQt(files_->Directory()) + name);
    Application.Guard([&] {
      if (!isFolder && OnName) OnName(FromQt(name));
    });
  });
  connect(files_, &TFileListView::fileActivated, this, Guarded([this] {
            if (OnFile) OnFile();
          }));
  connect(files_, &TFileListView::directoryEntered, this, [this](const QString& directory) {
    Application.Guard([&] {
      if (OnFolder) OnFolder(WithoutSeparator(FromQt(directory)));
    });
  });
}

/// Enter opens a folder and does not press the button of the window.
bool FolderPage::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return false;
  const int key = static_cast<QKeyEvent*>(event)->key();
  if (key != Qt::Key_Return && key != Qt::Key_Enter) return false;
  const QListWidgetItem* place = places_->currentItem();
  if (watched == folder_) Enter(folder_->text());
  if (watched == places_ && place != nullptr) Enter(place->data(kFolderRole).toString());
  return true;
}

void FolderPage::AddPlace(const QString& text, const QString& folder) {
  if (folder.isEmpty() || !QFileInfo(folder).isDir()) return;
  for (int i = 0; i < places_->count(); ++i) {
    if (places_->item(i)->data(kFolderRole).toString() == folder) return;
  }
  auto* item = new QListWidgetItem(Icon("folder"), text, places_);
  item->setData(kFolderRole, folder);
  item->setToolTip(folder);
}

void FolderPage::AddPlaces(const std::string& folderOfPicture) {
  const auto standard = [](QStandardPaths::StandardLocation place) {
    return QStandardPaths::writableLocation(place);
  };
  AddPlace(ResourceText(rsSavingPlaceOfPicture), ToQt(folderOfPicture));
  AddPlace(ResourceText(rsSavingPlaceHome), QDir::homePath());
  AddPlace(ResourceText(rsSavingPlaceDesktop), standard(QStandardPaths::DesktopLocation));
  AddPlace(ResourceText(rsSavingPlaceDocuments), standard(QStandardPaths::DocumentsLocation));
  AddPlace(ResourceText(rsSavingPlacePictures), standard(QStandardPaths::PicturesLocation));
  AddPlace(ResourceText(rsSavingPlaceDownloads), standard(QStandardPaths::DownloadLocation));
  for (const std::string& folder : RecentFolders()) {
    AddPlace(QDir(ToQt(folder)).dirName(), ToQt(folder));
  }
}

void FolderPage::Enter(const QString& folder) {
  Application.Guard([&] {
    if (OnFolder && !folder.isEmpty()) OnFolder(WithoutSeparator(FromQt(folder)));
  });
}

void FolderPage::ShowFolder(const std::string& folder) {
  if (folder_->text() != ToQt(folder)) folder_->setText(ToQt(folder));
  const std::string listed = folder.ends_with('/') ? folder : folder + '/';
  if (files_->Directory() != listed) {
    files_->SetDirectory(listed);
    preview_->ShowFile({});
  }
}

void FolderPage::ShowMask(const std::string& mask) {
  if (files_->Mask() != mask) files_->SetMask(mask);
}

}  // namespace rasterkit::detail
