#pragma once

#include <QWidget>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Translates all texts of `form` and its widgets that come from Designer: captions, labels,
/// buttons, group titles, list entries, tooltips and the texts for screen readers. User input (line
/// edits, text fields) does not change.
///
/// The key is the English text of the form. A key with a mnemonic ("&Width") is looked up with it
/// first and then without ("Width"), for translators that leave mnemonics to the form.
RASTERKIT_EXPORT void TranslateTexts(QWidget& form);

}  // namespace rasterkit
