#pragma once

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>

namespace rasterkit::test {

/// The window as on a usual screen; a test's screen is smaller than a maximised one wants.
inline void SetSizeOfExhibit(TFormEditPdfBmp& form) {
  form.setWindowState(Qt::WindowNoState);
  form.resize(1060, 800);
}

}  // namespace rasterkit::test
