#pragma once

#include <rasterkit/dialogs/editpdfbitmap/form_edit_pdf_bmp.h>

namespace rasterkit::test {

/// The window on a usual screen; the test's screen is too small for a maximized one.
inline void SetSizeOfExhibit(TFormEditPdfBmp& form) {
  form.setWindowState(Qt::WindowNoState);
  form.resize(1060, 800);
}

}  // namespace rasterkit::test
