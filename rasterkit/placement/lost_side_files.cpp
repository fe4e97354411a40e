#include <algorithm>

#include <fmt/format.h>

#include <rasterkit/placement/aux_xml.h>
#include <rasterkit/placement/geo_keys.h>
#include <rasterkit/placement/lost_side_files.h>
#include <rasterkit/placement/old_world_files.h>
#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/stated_difference.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>

namespace rasterkit::detail {
namespace {

bool IsThere(const std::string& name) {
  return FileIdentity(name).IsRegular();
}

/// The position that was read from the file, under whatever name; null if there is none.
const StatedPosition* FindStated(const Placement& placement, const std::string& name) {
  const FileIdentity file(name);
  const auto is = [&](const StatedPosition& position) {
    return !position.file.empty() && file == FileIdentity(position.file);
  };
  const auto place = std::find_if(placement.stated.begin(), placement.stated.end(), is);
  return place == placement.stated.end() ? nullptr : &*place;
}

/// Parts of an .aux.xml that the target does not get, as words of a message.
class AuxXmlLoss {
 public:
  AuxXmlLoss(const AuxXml& aux, const SideFileWish& wish, const Placement& placement,
             const Carried& carried)
      : aux_(aux), wish_(wish), placement_(placement), carried_(carried) {}

  std::vector<std::string> Parts(const std::string& name) const {
    std::vector<std::string> parts = aux_.others;
    const auto add = [&](bool isLost, const char* part) {
      if (isLost) parts.emplace_back(part);
    };
    add(!aux_.faults.empty(), "parts that cannot be read");
    add(aux_.affine && !IsPositionKept(name), "its position");
    add(!aux_.wkt.empty() && !IsSystemKept(), "its coordinate system");
    add(aux_.controlPoints.size() > (wish_.hasTags ? placement_.controlPoints.size() : 0),
        "its control points");
    add(!IsNoDataKept(), "its values for no data");
    add(!aux_.rationalModel.empty() && (!wish_.hasTags || placement_.rationalModel.empty()),
        "its rational model");
    return parts;
  }

 private:
  bool IsPositionKept(const std::string& name) const {
    const StatedPosition* const stated = FindStated(placement_, name);
    return carried_.position && placement_.affine && stated != nullptr &&
           stated->difference <= kSamePosition;
  }

  bool IsSystemKept() const {
    const CoordinateSystem& system = placement_.system;
    if (!carried_.system) return false;
    if (system.keys.empty()) return system.wkt == aux_.wkt;
    const auto code = ReadWktHead(aux_.wkt).epsg;
    return code && code == system.Epsg();
  }

  bool IsNoDataKept() const {
    const auto isKept = [&](const std::string& value) {
      return wish_.hasTags && value == placement_.noData;
    };
    return std::all_of(aux_.noData.begin(), aux_.noData.end(), isKept);
  }

  const AuxXml& aux_;
  const SideFileWish& wish_;
  const Placement& placement_;
  const Carried& carried_;
};

/// Why the contents of an .aux.xml are lost; empty if all of them are kept.
std::string WhyAuxXmlIsLost(const std::string& name, const SideFileWish& wish,
                            const Placement& placement, const Carried& carried) {
  try {
    const auto file = ReadSmallFile(name, kLongestAuxXml);
    if (!file || file->isCut) return "it cannot be read";
    const AuxXml aux = ParseAuxXml(file->bytes);
    const auto parts = AuxXmlLoss(aux, wish, placement, carried).Parts(name);
    return parts.empty() ? "" : fmt::format("not kept: {}", fmt::join(parts, ", "));
  } catch (const Error&) {
    return "it cannot be read";
  }
}

}  // namespace

void AddLostSideFiles(const SideFileWish& wish, const Placement& placement, const Carried& carried,
                      Changes& changes) {
  if (wish.source.empty() || IsSavedOverItself(wish)) return;
  for (const std::string& name : AttachedNames(wish.source)) {
    if (!IsThere(name)) continue;
    std::string why =
        wish.hasSamePixels ? "no such file is written" : "it describes the old pixels";
    if (name == AuxXmlName(wish.source)) why = WhyAuxXmlIsLost(name, wish, placement, carried);
    if (!why.empty()) changes.Lose(LossKind::sideFile, name, why);
  }
  for (const std::string& name : WorldFilesBeside(wish.source)) {
    if (!IsThere(name) || FindStated(placement, name) != nullptr) continue;
    changes.Lose(LossKind::sideFile, name, "no position was read from it");
  }
}

}  // namespace rasterkit::detail
