#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Every form of the library with a picture in it, for photographs and for the rules for all forms.
/// A form is added by a file in this folder that registers it:
/// `const Exhibit kExhibit("edit-size", [] { return std::make_unique<TFormChangeSize>(...); });`
namespace rasterkit::test {

struct Exhibited {
  /// Lower-case words with hyphens; part of the photographs' names.
  std::string name;
  /// Creates the form, not shown yet, with all objects that it needs.
  std::function<std::unique_ptr<QWidget>()> make;
};

/// Sorted by name.
const std::vector<Exhibited>& Gallery();

struct Exhibit {
  Exhibit(std::string name, std::function<std::unique_ptr<QWidget>()> make);
};

}  // namespace rasterkit::test
