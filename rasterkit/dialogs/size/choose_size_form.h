#pragma once

#include <memory>

#include <rasterkit/dialogs/editchangesize/change_size_model.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/qt/forms/scaled_form.h>

namespace Ui {
class FormChooseSize;
}

namespace rasterkit {

/// The window that changes the size in any unit. Its model must outlive it.
class TFormChooseSize : public TScaledForm {
  Q_OBJECT

 public:
  TFormChooseSize(ChangeSizeModel& model, Picture picture, QWidget* parent = nullptr);
  ~TFormChooseSize() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void ConnectControls();
  void ShowState();
  void ShowResult();
  void MakeRoomForFault();

  ChangeSizeModel& model_;
  Picture picture_;
  std::unique_ptr<Ui::FormChooseSize> ui_;
  bool isShowing_ = false;
};

}  // namespace rasterkit
