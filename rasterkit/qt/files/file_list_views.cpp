#include <QDateTime>
#include <QGridLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include <rasterkit/qt/files/file_list_views.h>
#include <rasterkit/qt/forms/language.h>

namespace rasterkit::detail {
namespace {

/// Returns the name with the most characters: a good approximation that needs no text measuring.
QString LongestName(const FileListModel& model) {
  QString longest;
  for (int row = 0; row < model.rowCount(); ++row) {
    const QString& name = model.Entry(row).name;
    if (name.size() > longest.size()) longest = name;
  }
  return longest;
}

QLabel* MakeNotice(QWidget* parent) {
  auto* notice = new QLabel(parent);
  notice->setObjectName("FileListNotice");
  notice->setWordWrap(true);
  notice->setTextFormat(Qt::PlainText);
  notice->setAlignment(Qt::AlignCenter);
  notice->setMargin(notice->fontMetrics().height());
  // It has the background of the views.
  notice->setForegroundRole(QPalette::Text);
  notice->setAttribute(Qt::WA_TransparentForMouseEvents);
  notice->hide();
  return notice;
}

}  // namespace

FileListViews::FileListViews(QWidget* parent)
    : QWidget(parent),
      model_(this),
      stack_(new QStackedWidget),
      report_(new QTreeView),
      names_(new QListView),
      notice_(MakeNotice(this)) {
  auto* layout = new QGridLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(stack_, 0, 0);
  layout->addWidget(notice_, 0, 0, Qt::AlignVCenter);
  SetUpReport();
  SetUpNames();
  for (QAbstractItemView* view : Views()) FollowView(*view);
  setFocusProxy(report_);
  notice_->raise();
  connect(&model_, &QAbstractItemModel::modelAboutToBeReset, this,
          &FileListViews::RememberSelection);
  connect(&model_, &QAbstractItemModel::modelReset, this, &FileListViews::RestoreSelection);
}

QAbstractItemView& FileListViews::View() const {
  if (IsReport()) return *report_;
  return *names_;
}

void FileListViews::SetUpReport() {
  report_->setObjectName("FileListReport");
  report_->setRootIsDecorated(false);
  // Rows of equal height need no measuring, however many there are.
  report_->setUniformRowHeights(true);
  report_->setAllColumnsShowFocus(true);
  report_->setModel(&model_);
  report_->setSortingEnabled(true);
  report_->sortByColumn(FileListModel::colName, Qt::AscendingOrder);
  QHeaderView& header = *report_->header();
  header.setStretchLastSection(false);
  header.setSectionsMovable(false);
  header.setSectionResizeMode(QHeaderView::Interactive);
  header.setSectionResizeMode(FileListModel::colName, QHeaderView::Stretch);
}

void FileListViews::SetUpNames() {
  names_->setObjectName("FileListNames");
  names_->setFlow(QListView::TopToBottom);
  names_->setWrapping(true);
  names_->setResizeMode(QListView::Adjust);
  names_->setUniformItemSizes(true);
  names_->setTextElideMode(Qt::ElideMiddle);
  names_->setModel(&model_);
}

void FileListViews::FollowView(QAbstractItemView& view) {
  stack_->addWidget(&view);
  view.setSelectionMode(QAbstractItemView::SingleSelection);
  view.setSelectionBehavior(QAbstractItemView::SelectRows);
  view.setEditTriggers(QAbstractItemView::NoEditTriggers);
  view.installEventFilter(this);
  const auto tellSelected = [this](const QModelIndex& index) {
    if (index.isValid() && !isRestoring_) Q_EMIT rowSelected(index.row());
  };
  connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, this,
          [tellSelected](const QItemSelection& selected) {
            if (!selected.isEmpty()) tellSelected(selected.indexes().first());
          });
  // The user may click the selected entry again.
  connect(&view, &QAbstractItemView::clicked, this, tellSelected);
  connect(&view, &QAbstractItemView::doubleClicked, this,
          [this](const QModelIndex& index) { Q_EMIT rowActivated(index.row()); });
}

void FileListViews::ShowReport(bool report) {
  if (report == IsReport()) return;
  const bool hasFocus = View().hasFocus();
  RememberSelection();
  stack_->setCurrentWidget(Views()[report ? 0 : 1]);
  setFocusProxy(&View());
  SizeNames();
  RestoreSelection();
  if (SelectedRow() >= 0) View().scrollTo(model_.index(SelectedRow(), 0));
  if (hasFocus) View().setFocus();
}

int FileListViews::SelectedRow() const {
  const QModelIndexList selected = View().selectionModel()->selectedIndexes();
  return selected.isEmpty() ? -1 : selected.first().row();
}

void FileListViews::SelectLater(const QString& name) {
  wanted_ = name;
  scrollX_ = scrollY_ = 0;
  scrollsToWanted_ = !name.isEmpty();
}

void FileListViews::RememberSelection() {
  const int row = SelectedRow();
  if (row >= 0 && row < model_.rowCount()) wanted_ = model_.Entry(row).name;
  scrollX_ = View().horizontalScrollBar()->value();
  scrollY_ = View().verticalScrollBar()->value();
}

void FileListViews::RestoreSelection() {
  if (!IsReport()) SizeNames();
  const int row = wanted_.isEmpty() ? -1 : model_.RowOf(wanted_);
  if (row >= 0) Select(row);
  // The view must not jump if a file appears or disappears.
  View().horizontalScrollBar()->setValue(scrollX_);
  View().verticalScrollBar()->setValue(scrollY_);
  if (row >= 0 && std::exchange(scrollsToWanted_, false)) View().scrollTo(model_.index(row, 0));
}

void FileListViews::Select(int row) {
  isRestoring_ = true;
  View().selectionModel()->setCurrentIndex(
      model_.index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  isRestoring_ = false;
}

void FileListViews::ShowNotice(const QString& text) {
  notice_->setText(text);
  notice_->setVisible(!text.isEmpty());
  for (QAbstractItemView* view : Views()) view->setAccessibleDescription(text);
}

void FileListViews::SizeColumns() {
  const QFontMetrics metrics(report_->font());
  const QLocale locale = LanguageLocale();
  const QDateTime wideDate(QDate(2028, 12, 28), QTime(22, 58));
  const auto set = [&](int column, const QString& sample) {
    const int wanted = metrics.horizontalAdvance(sample + "MM");
    report_->header()->resizeSection(column,
                                     std::max(wanted, report_->header()->sectionSizeHint(column)));
  };
  set(FileListModel::colSize, locale.formattedDataSize(888888888));
  set(FileListModel::colDate, locale.toString(wideDate, QLocale::ShortFormat));
}

void FileListViews::SizeNames() {
  const QFontMetrics metrics(names_->font());
  const int icon = names_->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, names_);
  names_->setIconSize({icon, icon});
  const int most = 40 * metrics.averageCharWidth();
  const int text = std::min(metrics.horizontalAdvance(LongestName(model_)), most);
  const int space = metrics.height() / 4;
  names_->setGridSize({text + icon + 6 * space, std::max(metrics.height(), icon) + space});
}

void FileListViews::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  SizeColumns();
}

void FileListViews::SetTexts(const QString& accessibleName, const QString& toolTip) {
  for (QAbstractItemView* view : Views()) {
    view->setAccessibleName(accessibleName);
    view->setToolTip(toolTip);
  }
}

bool FileListViews::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
  const auto* key = static_cast<QKeyEvent*>(event);
  return HandleKey(key->key(), key->modifiers() & ~Qt::KeypadModifier) ||
         QWidget::eventFilter(watched, event);
}

bool FileListViews::HandleKey(int key, Qt::KeyboardModifiers modifiers) {
  const bool isPlain = modifiers == Qt::NoModifier;
  const bool isShifted = modifiers == Qt::ShiftModifier;
  if (key == Qt::Key_Delete && (isPlain || isShifted)) {
    Q_EMIT deletePressed(isShifted);
  } else if ((key == Qt::Key_Backspace && isPlain) ||
             (key == Qt::Key_Up && modifiers == Qt::AltModifier)) {
    Q_EMIT upPressed();
  } else if (key == Qt::Key_F5 && isPlain) {
    Q_EMIT refreshPressed();
  } else if ((key == Qt::Key_Return || key == Qt::Key_Enter) && isPlain && SelectedRow() >= 0) {
    Q_EMIT rowActivated(SelectedRow());
  } else if ((key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_Home) && isPlain &&
             SelectedRow() < 0 && model_.rowCount() > 0) {
    // With the focus the cursor moved to the first row, which a key would leave unselected.
    View().setCurrentIndex(model_.index(0, 0));
    View().selectionModel()->select(
        model_.index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  } else {
    return false;
  }
  return true;
}

}  // namespace rasterkit::detail
