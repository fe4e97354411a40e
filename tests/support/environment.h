#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace rasterkit::test {

/// Sets variables of the environment, for this process and those that it starts, and sets them back
/// in the end.
class Environment {
 public:
  using Variables = std::vector<std::pair<std::string, std::string>>;

  Environment(const std::string& name, const std::string& value)
      : Environment(Variables{{name, value}}) {}
  explicit Environment(const Variables& variables) {
    for (const auto& [name, value] : variables) {
      const char* const before = std::getenv(name.c_str());
      before_.emplace_back(name, before ? std::optional<std::string>(before) : std::nullopt);
      setenv(name.c_str(), value.c_str(), 1);
    }
  }
  ~Environment() {
    for (const auto& [name, value] : before_)
      value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
  }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

}  // namespace rasterkit::test
