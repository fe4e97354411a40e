#include <ctime>

#include <rasterkit/host/runtime/ports.h>

namespace rasterkit {

Ports& HostPorts() {
  static Ports ports;
  return ports;
}

void ShowMessage(const std::string& text) {
  if (HostPorts().messageBox) HostPorts().messageBox(text);
}

bool ExecutePictureFileDialog(PictureFileDialog& dialog) {
  return HostPorts().pictureFileDialog && HostPorts().pictureFileDialog(dialog);
}

uint32_t GetSysColor(uint32_t index) {
  return HostPorts().systemColor ? HostPorts().systemColor(index) : 0;
}

int MinuteOfDay() {
  if (HostPorts().minuteOfDay) return HostPorts().minuteOfDay();
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_hour * 60 + local.tm_min;
}

}  // namespace rasterkit
