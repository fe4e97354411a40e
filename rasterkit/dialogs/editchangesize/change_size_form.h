#pragma once

#include <memory>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>
#include <rasterkit/qt/forms/scaled_form.h>

namespace Ui {
class FormChangeSize;
}

namespace rasterkit {

class TFloatEdit;

/// The window of the change-size dialog. Its model must outlive it.
class TFormChangeSize : public TScaledForm {
  Q_OBJECT

 public:
  explicit TFormChangeSize(ChangeSizeModel& model, QWidget* parent = nullptr);
  ~TFormChangeSize() override;

  /// Called if a field has another number.
  void FlEdChange(TFloatEdit& sender);

 private:
  TFloatEdit& EditOf(ChangeSizeModel::Field field) const;

  ChangeSizeModel& model_;
  std::unique_ptr<Ui::FormChangeSize> ui_;
};

}  // namespace rasterkit
