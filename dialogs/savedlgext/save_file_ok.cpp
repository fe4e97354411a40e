#include <optional>

#include <rasterkit/dialogs/savedlgext/save_file_ok.h>
#include <rasterkit/host/runtime/file_name.h>
#include <rasterkit/host/runtime/ports.h>
#include <rasterkit/package/format_text.h>
#include <rasterkit/package/strings.h>
#include <rasterkit/qt/modal_call.h>

namespace rasterkit {

bool SaveFileOK(const std::string& fileName) {
  if (!FileExists(fileName)) return true;
  // A host that asks by itself needs no windows of ours.
  std::optional<TModalCall> call;
  if (!HostPorts().confirmation) call.emplace();
  return Confirm(FormatText(ResourceString(rsSaveFileExists), {&fileName, 1}));
}

}  // namespace rasterkit
