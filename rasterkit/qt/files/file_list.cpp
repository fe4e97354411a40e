#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include <rasterkit/qt/files/file_list.h>
#include <rasterkit/qt/files/file_list_views.h>
#include <rasterkit/qt/latest_task.h>
#include <rasterkit/qt/qt_text.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/strings/format_text.h>

namespace rasterkit {

using detail::FolderContent;
using detail::FolderState;

namespace {

// In milliseconds.
constexpr int kPauseForMoreChanges = 100;
constexpr int kPatience = 300;
constexpr int kLookAgain = 2000;
/// Polling finds changes that the system does not report; it may take 1/20 of the time.
constexpr int kLookAgainShare = 20;

std::string WithSeparator(const std::string& directory) {
  return directory.ends_with('/') || directory.ends_with('\\') ? directory : directory + '/';
}

std::string CurrentFolder() {
  std::error_code error;
  const std::string path = std::filesystem::current_path(error).string();
  return error ? "/" : WithSeparator(path);
}

}  // namespace

struct TFileListView::Parts {
  explicit Parts(TFileListView* owner) : views(new detail::FileListViews(owner)) {}

  std::string NoticeText() const;
  void ShowNotice() const { views->ShowNotice(ToQt(NoticeText())); }
  void Watch();

  detail::FileListViews* views;
  std::string directory = CurrentFolder();
  std::string mask = "*.*";
  QFileSystemWatcher watcher;
  QTimer readSoon, lookAgain, patience;
  QElapsedTimer reading;
  /// The folder that is being read; empty if none.
  std::string inReading;
  bool readsAgain = false;
  detail::LatestTask reader;
};

std::string TFileListView::Parts::NoticeText() const {
  const FolderContent& content = views->Model().Content();
  const std::string reason = FromQt(content.reason);
  switch (content.state) {
    case FolderState::isReading:
      return patience.isActive() ? "" : ResourceString(rsFileListReading);
    case FolderState::isGone:
      return ResourceString(rsFileListGone);
    case FolderState::isUnreadable:
      return FormatText(ResourceString(rsFileListUnreadable), {&reason, 1});
    default:
      return views->Model().rowCount() > 0 ? "" : ResourceString(rsFileListEmpty);
  }
}

void TFileListView::Parts::Watch() {
  const QString folder = ToQt(directory);
  const QStringList watched = watcher.directories();
  if (watched.contains(folder)) return;
  if (!watched.isEmpty()) watcher.removePaths(watched);
  if (views->Model().Content().state == FolderState::isRead) watcher.addPath(folder);
}

TFileListView::TFileListView(QWidget* parent)
    : QWidget(parent), parts_(std::make_unique<Parts>(this)) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(parts_->views);
  setFocusProxy(parts_->views);
  FollowViews();
  Parts& parts = *parts_;
  parts.readSoon.setInterval(kPauseForMoreChanges);
  parts.patience.setInterval(kPatience);
  for (QTimer* timer : {&parts.readSoon, &parts.lookAgain, &parts.patience}) {
    timer->setSingleShot(true);
  }
  connect(&parts.readSoon, &QTimer::timeout, this, &TFileListView::Refresh);
  connect(&parts.lookAgain, &QTimer::timeout, this, &TFileListView::Refresh);
  connect(&parts.patience, &QTimer::timeout, this, [this] { parts_->ShowNotice(); });
  connect(&parts.watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
    // Many changes are read together, but continuous changes do not delay the reading.
    if (!parts_->readSoon.isActive()) parts_->readSoon.start();
  });
}

TFileListView::~TFileListView() = default;

void TFileListView::FollowViews() {
  using detail::FileListViews;
  const FileListViews* views = parts_->views;
  connect(views, &FileListViews::rowSelected, this, [this](int row) {
    const detail::FolderEntry entry = parts_->views->Model().Entry(row);
    Q_EMIT entrySelected(entry.name, entry.isFolder);
  });
  connect(views, &FileListViews::rowActivated, this, [this](int row) {
    const detail::FolderEntry entry = parts_->views->Model().Entry(row);
    if (entry.isFolder) {
      Enter(parts_->directory + FromQt(entry.name) + '/', {});
    } else {
      Q_EMIT fileActivated(entry.name);
    }
  });
  connect(views, &FileListViews::upPressed, this, &TFileListView::GoUp);
  connect(views, &FileListViews::refreshPressed, this, &TFileListView::Refresh);
  connect(views, &FileListViews::deletePressed, this, &TFileListView::deletePressed);
}

const std::string& TFileListView::Directory() const {
  return parts_->directory;
}

void TFileListView::SetDirectory(const std::string& directory) {
  if (!directory.empty()) Show(WithSeparator(directory), {});
}

void TFileListView::Show(const std::string& directory, const QString& nameToSelect) {
  parts_->directory = directory;
  parts_->patience.start();
  parts_->views->Model().SetContent({});
  parts_->views->SelectLater(nameToSelect);
  parts_->ShowNotice();
  Refresh();
}

void TFileListView::Enter(const std::string& directory, const QString& nameToSelect) {
  Show(directory, nameToSelect);
  Q_EMIT directoryEntered(ToQt(directory));
}

std::string TFileListView::ParentOf(const std::string& directory) {
  std::error_code error;
  const auto path = std::filesystem::absolute(ToPath(directory + "/."), error).lexically_normal();
  // "/maps/" has an empty file name, so the first parent is the folder itself.
  return WithSeparator(path.parent_path().parent_path().string());
}

void TFileListView::GoUp() {
  const std::string parent = ParentOf(parts_->directory);
  std::error_code error;
  const auto path = std::filesystem::absolute(ToPath(parts_->directory + "/."), error);
  const std::string left = path.lexically_normal().parent_path().filename().string();
  if (!left.empty()) Enter(parent, ToQt(left));
}

const std::string& TFileListView::Mask() const {
  return parts_->mask;
}

void TFileListView::SetMask(const std::string& mask) {
  parts_->mask = mask;
  parts_->views->Model().SetMask(mask);
  parts_->ShowNotice();
  Refresh();
}

TViewStyle TFileListView::ViewStyle() const {
  return parts_->views->IsReport() ? vsReport : vsList;
}

void TFileListView::SetViewStyle(TViewStyle style) {
  parts_->views->ShowReport(style == vsReport);
}

std::string TFileListView::SelectedName() const {
  const int row = parts_->views->SelectedRow();
  return row < 0 ? std::string() : FromQt(parts_->views->Model().Entry(row).name);
}

bool TFileListView::IsFolderSelected() const {
  const int row = parts_->views->SelectedRow();
  return row >= 0 && parts_->views->Model().Entry(row).isFolder;
}

std::vector<std::string> TFileListView::Names() const {
  std::vector<std::string> names;
  const detail::FileListModel& model = parts_->views->Model();
  for (int row = 0; row < model.rowCount(); ++row) names.push_back(FromQt(model.Entry(row).name));
  return names;
}

std::string TFileListView::Notice() const {
  return parts_->NoticeText();
}

bool TFileListView::IsFilled() const {
  return parts_->views->Model().Content().state != FolderState::isReading;
}

void TFileListView::Refresh() {
  parts_->readSoon.stop();
  parts_->lookAgain.stop();
  // A folder that changes faster than it is read must be shown at some time.
  parts_->readsAgain = parts_->inReading == parts_->directory;
  if (parts_->readsAgain) return;
  parts_->inReading = parts_->directory;
  parts_->reading.start();
  const std::string directory = parts_->directory;
  const auto read = [this, directory](const std::atomic<bool>& isCanceled) {
    auto content = std::make_shared<FolderContent>(detail::ReadFolder(directory, isCanceled));
    return [this, content] { Fill(std::move(*content)); };
  };
  parts_->reader.Run(read, [this, directory] {
    const std::atomic<bool> isCanceled = false;
    Fill(detail::ReadFolder(directory, isCanceled));
  });
}

void TFileListView::Fill(FolderContent content) {
  const int pause = std::max(kLookAgain, kLookAgainShare * int(parts_->reading.elapsed()));
  parts_->inReading.clear();
  if (parts_->readsAgain) {
    parts_->readSoon.start();
  } else if (isVisible()) {
    parts_->lookAgain.start(pause);
  }
  parts_->patience.stop();
  const bool isOther = content != parts_->views->Model().Content();
  if (isOther) parts_->views->Model().SetContent(std::move(content));
  parts_->Watch();
  parts_->ShowNotice();
  if (isOther) Q_EMIT filled();
}

void TFileListView::showEvent(QShowEvent* event) {
  parts_->views->SetTexts(accessibleName(), toolTip());
  QWidget::showEvent(event);
  Refresh();
}

void TFileListView::hideEvent(QHideEvent* event) {
  QWidget::hideEvent(event);
  parts_->lookAgain.stop();
}

}  // namespace rasterkit
