#pragma once

class QDialog;
class QLabel;
class QListWidget;
class QMenuBar;
class QProgressBar;
class QPushButton;
class QSplitter;
class QWidget;

namespace rasterkit {

class EditorActions;
class PageStrip;
class TNavigator;
class TPaintBox;
class TSpinEditInt;
class TSpinEditReal;
class ToolRow;

/// The widgets of the editor. They belong to the window.
struct EditorWidgets {
  QMenuBar* menus = nullptr;
  ToolRow* tools = nullptr;
  /// A label with its field.
  QWidget* cellResolution = nullptr;
  TSpinEditInt* resolution = nullptr;
  TSpinEditReal* angle = nullptr;
  QPushButton* rotate = nullptr;
  QWidget* cellPage = nullptr;
  QLabel* labelPage = nullptr;
  TSpinEditInt* page = nullptr;
  QSplitter* splitter = nullptr;
  QWidget* panelPages = nullptr;
  PageStrip* pages = nullptr;
  TPaintBox* picture = nullptr;
  QWidget* panelSteps = nullptr;
  QListWidget* steps = nullptr;
  QLabel* facts = nullptr;
  QLabel* zoom = nullptr;
  QLabel* saving = nullptr;
  QLabel* losses = nullptr;
  QWidget* panelJob = nullptr;
  QProgressBar* progress = nullptr;
  QPushButton* cancelJob = nullptr;
  TNavigator* navigator = nullptr;
};

/// Makes the widgets in the order of the Tab key and lays them out.
EditorWidgets LayOutEditor(QDialog& window, const EditorActions& actions);

}  // namespace rasterkit
