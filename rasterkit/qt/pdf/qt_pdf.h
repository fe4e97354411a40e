#pragma once

#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// Fills PdfDocumentFactory with documents that Qt PDF draws in this process. Requires no
/// application object; can be called more than once. The documents can be used on any thread, each
/// on one thread at a time. Pages are drawn one after another.
///
/// For files that the host trusts. Without this call a worker process draws the pages. In this
/// process a damaged file can end the program or use up its memory, and a canceled page goes on.
/// The engine inside Qt PDF reads a format that is often used for attacks, and Debian 12 has no
/// security support for it.
RASTERKIT_EXPORT void UseQtPdfInProcess();

}  // namespace rasterkit

/// The same for programs that open librasterkit-pdf at run time.
extern "C" RASTERKIT_EXPORT void RasterkitUseQtPdfInProcess();
