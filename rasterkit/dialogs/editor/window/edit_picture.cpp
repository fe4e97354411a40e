#include <rasterkit/dialogs/editor/edit_picture.h>
#include <rasterkit/dialogs/editor/window/picture_editor_form.h>
#include <rasterkit/qt/host/modal_call.h>

namespace rasterkit {

std::optional<EditedPicture> EditPicture(const std::string& file, const EditPictureOptions& options,
                                         QWidget* parent) {
  const TModalCall call;
  TFormPictureEditor form(options, UsualEditorWindows(), parent);
  form.Model().Open(file, options.page);
  form.ShowEditor();
  return form.Model().Written();
}

}  // namespace rasterkit
