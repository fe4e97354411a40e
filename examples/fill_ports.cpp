#include <iostream>

#include <rasterkit/rasterkit.h>

namespace rk = rasterkit;

// fill_ports: a host without windows
int main() {
  rk::HostPorts().messageBox = [](const std::string& text) { std::cout << text << "\n"; };
  rk::HostPorts().confirmation = [](const std::string&) { return true; };
  rk::HostPorts().systemColor = [](uint32_t) { return 0xF0F0F0u; };  // 0x00BBGGRR

  rk::ShowMessage("messages of the library arrive here");
  if (!rk::Confirm("Overwrite?")) return 1;
}
