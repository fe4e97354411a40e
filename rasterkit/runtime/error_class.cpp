#include <cstdlib>
#include <memory>
#include <typeinfo>

#include <cxxabi.h>

#include <rasterkit/runtime/error_class.h>

namespace rasterkit {

std::string ErrorClassName(const std::exception& error) {
  const char* mangled = typeid(error).name();
  int status = 0;
  const std::unique_ptr<char, void (*)(void*)> readable(
      abi::__cxa_demangle(mangled, nullptr, nullptr, &status), std::free);
  const std::string name = status == 0 ? readable.get() : mangled;
  const size_t separator = name.rfind("::");
  return separator == std::string::npos ? name : name.substr(separator + 2);
}

}  // namespace rasterkit
