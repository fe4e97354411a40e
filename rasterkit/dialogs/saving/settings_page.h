#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QSlider>
#include <QSpinBox>
#include <QWidget>

#include <rasterkit/dialogs/saving/compare_view.h>
#include <rasterkit/dialogs/saving/saving_model.h>

namespace rasterkit::detail {

/// The settings of a file beside the 1:1 view. Internal to this folder.
class SettingsPage : public QWidget {
 public:
  explicit SettingsPage(QWidget* parent);

  void SetModel(SavingModel& model);
  void ForgetModel();
  void ShowState();
  void ShowParts() { compare_->ShowParts(); }

 private:
  QComboBox* AddList(const char* name, std::string_view label, std::string_view hint,
                     void (SavingModel::*choose)(int));
  void AddQuality();
  void ShowQuality();
  void SetRowVisible(QWidget* field, bool isVisible);

  SavingModel* model_ = nullptr;
  QFormLayout* rows_ = nullptr;
  QComboBox *depth_ = nullptr, *sampling_ = nullptr, *move_ = nullptr, *compression_ = nullptr,
            *level_ = nullptr, *keep_ = nullptr;
  QCheckBox* asQuality_ = nullptr;
  QWidget* qualityRow_ = nullptr;
  QSlider* quality_ = nullptr;
  QSpinBox* qualityNumber_ = nullptr;
  CompareView* compare_ = nullptr;
};

}  // namespace rasterkit::detail
