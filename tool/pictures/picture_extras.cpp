#include "tool/pictures/picture_extras.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <new>

#include <fmt/format.h>

#include <rasterkit/pictures/picture.h>
#include <rasterkit/runtime/errors.h>

#include "tool/command/printable.h"
#include "tool/reports/loss_report.h"

namespace rasterkit::tool {
namespace {

/// Throws Error if the file cannot be read.
std::vector<std::string> ExtrasOf(const std::string& file, Isolation isolation) {
  OpenOptions options;
  options.isolation = isolation;
  const Picture picture = Picture::Open(file, options);
  std::vector<std::string> names = KeptNames(picture, {});
  std::erase(names, LossKindName(LossKind::resolution));
  if (picture.Pages() > 1) names.emplace_back(LossKindName(LossKind::pages));
  return names;
}

}  // namespace

std::vector<std::string> PictureExtras(const std::string& file, Isolation isolation) {
  try {
    return ExtrasOf(file, isolation);
  } catch (const Error&) {
    return {};
  } catch (const std::bad_alloc&) {
    return {};
  }
}

void SayWhatIsLost(const std::vector<std::string>& before, const std::string& output,
                   Isolation isolation) {
  const std::vector<std::string> after = PictureExtras(output, isolation);
  std::vector<std::string> lost;
  std::copy_if(before.begin(), before.end(), std::back_inserter(lost), [&](const auto& name) {
    return std::find(after.begin(), after.end(), name) == after.end();
  });
  if (lost.empty()) return;
  PrintMessage(fmt::format("{}: lost: {}", output, fmt::join(lost, ", ")));
}

}  // namespace rasterkit::tool
