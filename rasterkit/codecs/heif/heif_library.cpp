#include <optional>

#include <rasterkit/codecs/heif/heif_library.h>
#include <rasterkit/codecs/heif/heif_picture.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/dynamic_library.h>

namespace rasterkit {
namespace detail {
namespace {

/// Written once, before the process reads a file.
std::optional<HeifLibrary> opened;

}  // namespace

const HeifLibrary& OpenedHeifLibrary() {
  if (!opened) {
    throw UnsupportedError("HEIF: pictures of this kind are read in the worker process alone");
  }
  return *opened;
}

}  // namespace detail

void OpenHeifLibrary() {
  using detail::HeifLibrary;
  if (detail::opened) return;
  const DynamicLibrary library("heif", 1, "HEIC files need libheif (Debian: libheif1)", {});
  // Loads its decoders where they are libraries of their own.
  const auto init = library.Entry<decltype(heif_init)>("heif_init");
  if (init(nullptr).code != heif_error_Ok) throw Error("HEIF: libheif does not start");
  HeifLibrary functions;
#define RASTERKIT_HEIF_ENTRY(name) \
  functions.name = library.Entry<decltype(heif_##name)>("heif_" #name);
  RASTERKIT_HEIF_FUNCTIONS(RASTERKIT_HEIF_ENTRY)
#undef RASTERKIT_HEIF_ENTRY
  detail::opened = functions;
}

}  // namespace rasterkit
