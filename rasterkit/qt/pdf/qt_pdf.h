#pragma once

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Fills PdfDocumentFactory with documents that Qt PDF draws. Needs no application object; may be
/// called more than once. The documents may be used on any thread, each on one at a time; what they
/// draw, they draw one after another.
///
/// The engine inside Qt PDF reads files of a format that attackers like. Debian 12 has no security
/// support for it: draw pages of files from strangers in a process that has nothing to lose.
RASTERKIT_EXPORT void UseQtPdf();

}  // namespace rasterkit

/// The same for programs that open librasterkit-pdf at run time.
extern "C" RASTERKIT_EXPORT void RasterkitUseQtPdf();
