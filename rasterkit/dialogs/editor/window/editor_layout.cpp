#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSplitter>
#include <QVBoxLayout>
#include <string_view>

#include <rasterkit/dialogs/editor/window/editor_actions.h>
#include <rasterkit/dialogs/editor/window/editor_layout.h>
#include <rasterkit/dialogs/editor/window/page_strip.h>
#include <rasterkit/dialogs/editor/window/tool_row.h>
#include <rasterkit/dialogs/editor/window/wrapped_row.h>
#include <rasterkit/qt/controls/edits.h>
#include <rasterkit/qt/controls/navigator.h>
#include <rasterkit/qt/controls/paint_box.h>
#include <rasterkit/qt/qt_text.h>

namespace rasterkit {
namespace {

constexpr int kMostDpi = 9600, kMostAngle = 360;
constexpr int kMostFieldLines = 3;
/// The least that is shown of a picture.
constexpr QSize kLeastPicture(160, 120);

QLabel* NewLabel(const char* name, std::string_view text, QWidget& parent) {
  auto* label = new QLabel(ResourceText(text), &parent);
  label->setObjectName(name);
  return label;
}

/// A line of text that goes on in the next one where the window is narrow.
QLabel* NewFacts(const char* name, QWidget& parent) {
  auto* label = new QLabel(&parent);
  label->setObjectName(name);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  return label;
}

/// Tip and description are those for people who see, and those who do not.
void Describe(QWidget& widget, const char* name, std::string_view hint) {
  widget.setObjectName(name);
  widget.setToolTip(ResourceText(hint));
  widget.setAccessibleDescription(ResourceText(hint));
}

/// A label with its field, to be kept together.
QWidget* NewCell(const char* name, QLabel& label, const QList<QWidget*>& fields, QWidget& parent) {
  auto* cell = new QWidget(&parent);
  cell->setObjectName(name);
  auto* row = new QHBoxLayout(cell);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(&label);
  for (QWidget* field : fields) row->addWidget(field);
  label.setBuddy(fields.first());
  return cell;
}

QWidget* NewFields(EditorWidgets& widgets, QDialog& window) {
  auto* fields = new QWidget(&window);
  auto* row = new WrappedRow(fields, kMostFieldLines);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  fields->setSizePolicy(policy);

  widgets.resolution = new TSpinEditInt(fields);
  Describe(*widgets.resolution, "SpinEditResolution", rsEditorResolutionHint);
  widgets.resolution->setAccessibleName(ResourceText(rsEditResolutionName));
  widgets.resolution->setRange(1, kMostDpi);
  widgets.resolution->setSingleStep(10);
  widgets.resolution->setKeyboardTracking(false);
  widgets.cellResolution =
      NewCell("CellResolution", *NewLabel("LabelResolution", rsEditorResolution, *fields),
              {widgets.resolution}, *fields);
  row->addWidget(widgets.cellResolution);

  widgets.angle = new TSpinEditReal(fields);
  Describe(*widgets.angle, "SpinEditAngle", rsEditorAngleFieldHint);
  widgets.angle->setAccessibleName(ResourceText(rsEditorAngleFieldName));
  widgets.angle->setRange(-kMostAngle, kMostAngle);
  widgets.rotate = new QPushButton(ResourceText(rsEditorRotate), fields);
  Describe(*widgets.rotate, "ButtonRotate", rsEditorRotateHint);
  row->addWidget(NewCell("CellAngle", *NewLabel("LabelAngle", rsEditorAngleField, *fields),
                         {widgets.angle, widgets.rotate}, *fields));

  widgets.page = new TSpinEditInt(fields);
  Describe(*widgets.page, "SpinEditPage", rsEditPageHint);
  widgets.page->setAccessibleName(ResourceText(rsEditPage));
  widgets.page->setRange(1, 1);
  widgets.page->setKeyboardTracking(false);
  widgets.labelPage = NewLabel("LabelPage", rsEditorPage, *fields);
  widgets.cellPage = NewCell("CellPage", *widgets.labelPage, {widgets.page}, *fields);
  row->addWidget(widgets.cellPage);
  return fields;
}

QWidget* NewPanel(const char* name, QLabel& title, QWidget& list, QWidget& parent) {
  auto* panel = new QWidget(&parent);
  panel->setObjectName(name);
  auto* column = new QVBoxLayout(panel);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(&title);
  column->addWidget(&list, 1);
  title.setBuddy(&list);
  list.setAccessibleName(title.text().remove(u'&'));
  return panel;
}

class StepsOnScreen : public QListWidget {
 public:
  explicit StepsOnScreen(QWidget* parent) : QListWidget(parent) {
    setViewportMargins(kRoomForFocus);
  }
};

QSplitter* NewMiddle(EditorWidgets& widgets, QDialog& window) {
  widgets.splitter = new QSplitter(&window);
  widgets.splitter->setObjectName("SplitterMiddle");
  widgets.splitter->setChildrenCollapsible(false);

  widgets.pages = new PageStrip(&window);
  Describe(*widgets.pages, "ListPages", rsEditorPagesHint);
  widgets.panelPages = NewPanel("PanelPages", *NewLabel("LabelPages", rsEditorPages, window),
                                *widgets.pages, window);

  widgets.picture = new TPaintBox(&window);
  Describe(*widgets.picture, "PaintBoxPicture", rsEditorPictureHint);
  widgets.picture->setAccessibleName(ResourceText(rsEditorPicture));
  widgets.picture->setAccessibleDescription(ResourceText(rsEditorPictureHelp));
  widgets.picture->setFocusPolicy(Qt::StrongFocus);
  widgets.picture->setMinimumSize(kLeastPicture);

  widgets.steps = new StepsOnScreen(&window);
  Describe(*widgets.steps, "ListSteps", rsEditorStepsHint);
  widgets.steps->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  widgets.panelSteps = NewPanel("PanelSteps", *NewLabel("LabelSteps", rsEditorSteps, window),
                                *widgets.steps, window);

  widgets.splitter->addWidget(widgets.panelPages);
  widgets.splitter->addWidget(widgets.picture);
  widgets.splitter->addWidget(widgets.panelSteps);
  widgets.splitter->setStretchFactor(0, 0);
  widgets.splitter->setStretchFactor(1, 1);
  widgets.splitter->setStretchFactor(2, 0);
  return widgets.splitter;
}

QWidget* NewJobPanel(EditorWidgets& widgets, QDialog& window) {
  widgets.panelJob = new QWidget(&window);
  widgets.panelJob->setObjectName("PanelJob");
  auto* row = new QHBoxLayout(widgets.panelJob);
  row->setContentsMargins(0, 0, 0, 0);
  widgets.progress = new QProgressBar(widgets.panelJob);
  widgets.progress->setObjectName("ProgressJob");
  widgets.cancelJob = new QPushButton(ResourceText(rsCancel), widgets.panelJob);
  Describe(*widgets.cancelJob, "ButtonCancelJob", rsEditorCancelJobHint);
  widgets.cancelJob->setAccessibleName(ResourceText(rsEditorCancelJobName));
  row->addWidget(widgets.progress, 1);
  row->addWidget(widgets.cancelJob);
  // Its place stays free, so that the picture does not jump when a job begins.
  QSizePolicy policy = widgets.panelJob->sizePolicy();
  policy.setHorizontalPolicy(QSizePolicy::Expanding);
  policy.setRetainSizeWhenHidden(true);
  widgets.panelJob->setSizePolicy(policy);
  widgets.panelJob->hide();
  return widgets.panelJob;
}

TNavigator* NewNavigator(QDialog& window) {
  auto* navigator = new TNavigator(&window);
  navigator->setObjectName("NaviResult");
  navigator->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
  const std::pair<TNavigateButton, std::string_view> hints[] = {{nbPost, rsEditorOkHint},
                                                                {nbCancel, rsEditorCancelHint}};
  for (const auto& [button, hint] : hints) {
    navigator->Button(button).setToolTip(ResourceText(hint));
    navigator->Button(button).setAccessibleDescription(ResourceText(hint));
  }
  return navigator;
}

}  // namespace

EditorWidgets LayOutEditor(QDialog& window, const EditorActions& actions) {
  EditorWidgets widgets;
  auto* column = new QVBoxLayout(&window);
  widgets.menus = new QMenuBar(&window);
  widgets.menus->setObjectName("MenuBar");
  // The menus stay in the window, where its keys and its modality count.
  widgets.menus->setNativeMenuBar(false);
  actions.FillMenus(*widgets.menus);
  column->setMenuBar(widgets.menus);

  widgets.tools = new ToolRow(&window);
  widgets.tools->setObjectName("ToolRow");
  widgets.tools->setAccessibleName(ResourceText(rsEditorTools));
  widgets.tools->setAccessibleDescription(ResourceText(rsEditorToolsHelp));
  actions.FillTools(*widgets.tools);
  column->addWidget(widgets.tools);
  column->addWidget(NewFields(widgets, window));
  column->addWidget(NewMiddle(widgets, window), 1);

  auto* factsRow = new QHBoxLayout;
  widgets.facts = NewFacts("LabelFacts", window);
  widgets.zoom = new QLabel(&window);
  widgets.zoom->setObjectName("LabelZoom");
  factsRow->addWidget(widgets.facts, 1);
  factsRow->addWidget(widgets.zoom);
  column->addLayout(factsRow);
  widgets.saving = NewFacts("LabelSaving", window);
  widgets.losses = NewFacts("LabelLosses", window);
  column->addWidget(widgets.saving);
  column->addWidget(widgets.losses);

  auto* end = new QHBoxLayout;
  end->addWidget(NewJobPanel(widgets, window), 1);
  widgets.navigator = NewNavigator(window);
  end->addWidget(widgets.navigator);
  column->addLayout(end);
  return widgets;
}

}  // namespace rasterkit
