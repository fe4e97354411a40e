#pragma once

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Fills PdfDocumentFactory with documents that Qt PDF draws. Requires no application object; can
/// be called more than once. The documents can be used on any thread, each on one thread at a time.
/// Pages are drawn one after another.
///
/// The engine inside Qt PDF reads a format that is often used for attacks, and Debian 12 has no
/// security support for it: draw pages of untrusted files in a process without privileges.
RASTERKIT_EXPORT void UseQtPdf();

}  // namespace rasterkit

/// The same for programs that open librasterkit-pdf at run time.
extern "C" RASTERKIT_EXPORT void RasterkitUseQtPdf();
