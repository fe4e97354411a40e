#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Every form of the house as it looks with a picture in it, for photographs and for the rules that
/// hold for all forms. A form joins with a file in this folder that registers it:
/// `const Exhibit kExhibit("edit-size", [] { return std::make_unique<TFormChangeSize>(...); });`
namespace rasterkit::test {

struct Exhibited {
  /// Lower-case words with hyphens; photographs bear it.
  std::string name;
  /// The form, not shown yet, with whatever it needs to live.
  std::function<std::unique_ptr<QWidget>()> make;
};

/// By name.
const std::vector<Exhibited>& Gallery();

struct Exhibit {
  Exhibit(std::string name, std::function<std::unique_ptr<QWidget>()> make);
};

}  // namespace rasterkit::test
