#include "tool/reports/loss_report.h"

#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/metadata/exif_block.h>

namespace rasterkit::tool {
namespace {

void AddOnce(std::vector<std::string>& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

}  // namespace

std::string LossText(const JobResult& result) {
  std::vector<std::string> reasons;
  for (const Loss& loss : result.losses) AddOnce(reasons, loss.why);
  std::vector<std::string> groups;
  for (const std::string& reason : reasons) {
    std::vector<std::string> things;
    for (const Loss& loss : result.losses) {
      if (loss.why == reason) AddOnce(things, loss.what);
    }
    groups.push_back(fmt::format("{} ({})", fmt::join(things, ", "), reason));
  }
  if (!result.notCarriedOver.empty()) {
    groups.push_back(fmt::format("{}", fmt::join(result.notCarriedOver, ", ")));
  }
  return fmt::format("{}", fmt::join(groups, "; "));
}

std::vector<std::string> LostNames(const JobResult& result) {
  std::vector<std::string> names;
  for (const Loss& loss : result.losses) AddOnce(names, LossKindName(loss.kind));
  for (const std::string& name : result.notCarriedOver) AddOnce(names, name);
  return names;
}

Json LossesJson(const std::vector<Loss>& losses) {
  JsonList list;
  for (const Loss& loss : losses) {
    list.Add(JsonObject()
                 .Add("kind", LossKindName(loss.kind))
                 .Add("what", loss.what)
                 .Add("why", loss.why));
  }
  return list;
}

std::vector<LossKind> KindsOf(const Picture& picture) {
  std::vector<LossKind> kinds;
  const auto add = [&](bool is, LossKind kind) {
    if (is) kinds.push_back(kind);
  };
  const Metadata& metadata = picture.GetMetadata();
  add(!metadata.exif.empty(), LossKind::exif);
  if (!metadata.exif.empty()) {
    const rasterkit::ExifBlock block(metadata.exif);
    add(!block.All(ExifDirectoryId::gps).empty(), LossKind::gps);
    add(block.HasThumbnail(), LossKind::thumbnail);
  }
  add(!metadata.xmp.empty(), LossKind::xmp);
  add(!metadata.iptc.empty(), LossKind::iptc);
  add(!metadata.comments.empty(), LossKind::comment);
  add(!metadata.texts.empty(), LossKind::text);
  add(metadata.profile != nullptr, LossKind::profile);
  add(metadata.resolution.IsKnown(), LossKind::resolution);
  const Placement& placement = picture.GetPlacement();
  add(placement.affine.has_value(), LossKind::position);
  add(!placement.controlPoints.empty(), LossKind::controlPoints);
  add(placement.system.IsKnown(), LossKind::coordinateSystem);
  add(!placement.noData.empty(), LossKind::noData);
  return kinds;
}

std::vector<std::string> KeptNames(const Picture& picture, const std::vector<Loss>& losses) {
  std::vector<std::string> names;
  for (const LossKind kind : KindsOf(picture)) {
    const auto isKind = [kind](const Loss& loss) { return loss.kind == kind; };
    if (std::none_of(losses.begin(), losses.end(), isKind)) names.emplace_back(LossKindName(kind));
  }
  return names;
}

}  // namespace rasterkit::tool
