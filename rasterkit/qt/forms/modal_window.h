#pragma once

#include <QWidget>

namespace rasterkit {

/// Makes `window`, which is not shown yet, stay over the host's active window and start in its
/// center. The two do not become parent and child: a host that deletes its window while the modal
/// one is open must not delete an object that it does not own.
void PutOverActiveWindow(QWidget& window);

}  // namespace rasterkit
