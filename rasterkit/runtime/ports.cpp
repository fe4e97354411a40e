#include <ctime>

#include <rasterkit/runtime/ports.h>

namespace rasterkit {

Ports& HostPorts() {
  static Ports ports;
  return ports;
}

void ShowMessage(const std::string& text) {
  if (HostPorts().messageBox) HostPorts().messageBox(text);
}

bool Confirm(const std::string& question) {
  return HostPorts().confirmation && HostPorts().confirmation(question);
}

bool SelectDirectoryEx(std::string& directory, const std::string& prompt, int options) {
  if (!HostPorts().folderChooser) return false;
  std::string chosen = directory;
  if (!HostPorts().folderChooser(chosen, prompt, options)) return false;
  directory = chosen;
  return true;
}

bool ExecutePictureFileDialog(PictureFileDialog& dialog) {
  return HostPorts().pictureFileDialog && HostPorts().pictureFileDialog(dialog);
}

uint32_t GetSysColor(uint32_t index) {
  return HostPorts().systemColor ? HostPorts().systemColor(index) : 0;
}

std::optional<std::string> ReadSetting(const std::string& section, const std::string& key) {
  if (!HostPorts().readSetting) return std::nullopt;
  return HostPorts().readSetting(section, key);
}

void WriteSetting(const std::string& section, const std::string& key, const std::string& value) {
  if (HostPorts().writeSetting) HostPorts().writeSetting(section, key, value);
}

void ShowHelpTopic(int helpContext) {
  if (HostPorts().helpTopic) HostPorts().helpTopic(helpContext);
}

int MinuteOfDay() {
  if (HostPorts().minuteOfDay) return HostPorts().minuteOfDay();
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_hour * 60 + local.tm_min;
}

}  // namespace rasterkit
