#pragma once

#include <QWidget>

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Replaces every text that Designer put on `form` and the widgets in it by what the resource
/// table makes of it: captions, labels, buttons, group titles, entries of lists, tooltips and the
/// texts for screen readers. What a user typed (line edits, text fields) is left alone.
///
/// A key is the English text as it is in the form. One with a mnemonic ("&Width") is looked up with
/// it first and then without ("Width"), for translators who leave mnemonics to the form.
RASTERKIT_EXPORT void TranslateTexts(QWidget& form);

}  // namespace rasterkit
