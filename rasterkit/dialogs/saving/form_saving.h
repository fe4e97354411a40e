#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <memory>

#include <rasterkit/dialogs/saving/folder_page.h>
#include <rasterkit/dialogs/saving/saving_model.h>
#include <rasterkit/dialogs/saving/settings_page.h>
#include <rasterkit/dialogs/saving/stoppable_task.h>
#include <rasterkit/qt/forms/scaled_form.h>

class QHBoxLayout;
class QStackedWidget;

namespace rasterkit {

/// The window of saving in its three scopes. It owns its model and computes nothing.
class TFormSaving : public TScaledForm, private SavingView {
  Q_OBJECT

 public:
  TFormSaving(const Picture& picture, const SavingStart& start, SavingScope scope,
              const std::optional<ChosenName>& name = std::nullopt, QWidget* parent = nullptr);
  ~TFormSaving() override;

  SavingModel& Model() { return *model_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void ShowState() override;
  void ShowParts() override;
  void Start(SavingWork kind, Job job) override;
  void Stop(SavingWork kind) override;
  bool AskReplace(const std::string& question) override;
  std::optional<ChosenName> AskName(const std::string& file) override;
  void Close(bool isConfirmed) override;

  QWidget* MakeFileRows();
  QWidget* MakePages();
  struct PageTexts {
    const char* name;
    std::string_view text, hint;
  };
  static void AddPageButton(QHBoxLayout& row, QStackedWidget& pages, int page,
                            const PageTexts& texts);
  QWidget* MakeResult();
  QWidget* MakeButtons();
  void ConnectControls();
  void ShowFile();
  void ShowResult();
  detail::StoppableTask& TaskOf(SavingWork kind);

  QLineEdit *name_ = nullptr, *file_ = nullptr;
  QComboBox* type_ = nullptr;
  QPushButton *otherName_ = nullptr, *save_ = nullptr, *cancel_ = nullptr;
  QLabel *facts_ = nullptr, *note_ = nullptr, *lossless_ = nullptr, *loss_ = nullptr,
         *size_ = nullptr, *fault_ = nullptr;
  QPushButton* lossDetails_ = nullptr;
  QPlainTextEdit* lossList_ = nullptr;
  detail::FolderPage* folderPage_ = nullptr;
  detail::SettingsPage* settingsPage_ = nullptr;
  QTimer tick_;
  // The tasks end before the model that their answers use.
  std::unique_ptr<SavingModel> model_;
  detail::StoppableTask sizeTask_, partTask_;
};

}  // namespace rasterkit
