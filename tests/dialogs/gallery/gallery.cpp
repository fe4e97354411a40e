#include "tests/dialogs/gallery/gallery.h"

#include <algorithm>
#include <utility>

namespace rasterkit::test {
namespace {

std::vector<Exhibited>& Forms() {
  static std::vector<Exhibited> forms;
  return forms;
}

}  // namespace

const std::vector<Exhibited>& Gallery() {
  return Forms();
}

Exhibit::Exhibit(std::string name, std::function<std::unique_ptr<QWidget>()> make) {
  const auto comesBefore = [](const Exhibited& form, const std::string& other) {
    return form.name < other;
  };
  const auto place = std::lower_bound(Forms().begin(), Forms().end(), name, comesBefore);
  Forms().insert(place, {std::move(name), std::move(make)});
}

}  // namespace rasterkit::test
