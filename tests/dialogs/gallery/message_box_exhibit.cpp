#include <rasterkit/qt/forms/message_box.h>

#include "tests/dialogs/gallery/gallery.h"

namespace rasterkit::test {
namespace {

const Exhibit kMessageBox("message-box", [] {
  return MakeMessageBox("plan.tif: TIFF: the picture needs 5.6 GiB, and 4 GiB are allowed");
});

}  // namespace
}  // namespace rasterkit::test
