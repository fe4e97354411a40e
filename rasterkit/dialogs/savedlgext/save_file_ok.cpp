#include <optional>

#include <rasterkit/dialogs/savedlgext/save_file_ok.h>
#include <rasterkit/qt/host/modal_call.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/ports.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {

bool SaveFileOK(const std::string& fileName) {
  if (!FileExists(fileName)) return true;
  // A host with its own confirmation needs no windows of this library.
  std::optional<TModalCall> call;
  if (!HostPorts().confirmation) call.emplace();
  return Confirm(FormatText(ResourceString(rsSaveFileExists), {&fileName, 1}));
}

}  // namespace rasterkit
