#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include <fmt/core.h>

#include <rasterkit/placement/aux_xml.h>
#include <rasterkit/placement/geo_tags.h>
#include <rasterkit/placement/placement.h>
#include <rasterkit/placement/side_file_names.h>
#include <rasterkit/placement/six_numbers.h>
#include <rasterkit/placement/stated_difference.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/set_aside.h>
#include <rasterkit/runtime/files/small_file.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit {
namespace {

/// In pixels: a difference that is worth a warning.
constexpr double kAgreement = 0.1;
constexpr size_t kLongestProjection = size_t{1} << 20;

/// Reads the sources into a placement, the more reliable ones first.
class PlacementReader {
 public:
  explicit PlacementReader(const std::string& file) : file_(file) {}

  Placement placement;

  void ReadNamedWorldFile(const std::string& name) {
    const auto reading = detail::ReadWorldFileAt(name);
    if (!reading) {
      throw FileError(detail::FileIdentity(name).Exists() ? "is no regular file" : "does not exist",
                      name);
    }
    if (!reading->affine) throw FileError("is no world file: " + reading->reason, name);
    Add(PositionSource::worldFile, name, *reading->affine);
    placement.sideFiles.push_back(name);
  }

  /// Reads all except the one that is `read` already.
  void ReadWorldFilesBeside(const std::string& read) {
    const detail::FileIdentity identity(read);
    for (const std::string& name : detail::WorldFilesBeside(file_)) {
      Try(name, [&] {
        if (identity.Exists() && identity == detail::FileIdentity(name)) return;
        const auto reading = detail::ReadWorldFileAt(name);
        if (!reading) return;
        placement.sideFiles.push_back(name);
        if (reading->affine) {
          Add(PositionSource::worldFile, name, *reading->affine);
        } else {
          Warn(name, reading->reason + "; the file is ignored");
        }
      });
    }
  }

  void ReadAuxXml() {
    const std::string name = detail::AuxXmlName(file_);
    Try(name, [&] {
      const auto file = detail::ReadSmallFile(name, detail::kLongestAuxXml);
      if (!file) return;
      placement.sideFiles.push_back(name);
      if (file->isCut) throw FormatError("is longer than 16 MiB");
      Take(detail::ParseAuxXml(file->bytes), name);
    });
  }

  void ReadProjection() {
    for (const std::string& name : detail::ProjectionNames(file_)) {
      Try(name, [&] {
        const auto file = detail::ReadSmallFile(name, kLongestProjection);
        if (!file) return;
        placement.sideFiles.push_back(name);
        if (file->isCut) throw FormatError("is longer than 1 MiB");
        if (placement.system.wkt.empty()) placement.system.wkt = Trim(file->bytes);
      });
    }
  }

 private:
  void Add(PositionSource source, const std::string& name, const Affine& affine) {
    placement.stated.push_back({source, name, affine, 0});
  }

  void Warn(const std::string& name, const std::string& reason) {
    placement.warnings.push_back(name + ": " + reason);
  }

  /// The user has not named the file: what is wrong with it is a warning.
  template <class Step>
  void Try(const std::string& name, Step step) {
    try {
      step();
    } catch (const Error& error) {
      Warn(name, error.Reason() + "; the file is ignored");
    }
  }

  void Take(detail::AuxXml aux, const std::string& name) {
    if (aux.affine) Add(PositionSource::auxXml, name, *aux.affine);
    placement.system.wkt = std::move(aux.wkt);
    if (placement.controlPoints.empty()) placement.controlPoints = std::move(aux.controlPoints);
    if (placement.rationalModel.empty()) placement.rationalModel = std::move(aux.rationalModel);
    for (const std::string& fault : aux.faults) Warn(name, fault);
    if (aux.noData.empty() || !placement.noData.empty()) return;
    placement.noData = aux.noData.front();
    const auto differs = [&](const std::string& other) { return other != aux.noData.front(); };
    if (std::any_of(aux.noData.begin(), aux.noData.end(), differs)) {
      Warn(name, "bands have different values for no data; that of the first band is used");
    }
  }

  const std::string& file_;
};

bool Counts(PositionSource source, PositionFrom from) {
  switch (from) {
    case PositionFrom::automatic:
      return true;
    case PositionFrom::worldFile:
      return source == PositionSource::worldFile;
    case PositionFrom::tags:
      return source == PositionSource::geoTiff || source == PositionSource::geoTiffTransformation;
    case PositionFrom::auxXml:
      return source == PositionSource::auxXml;
    default:
      return false;
  }
}

std::string Describe(const StatedPosition& position) {
  const std::string name = PositionSourceName(position.source);
  return position.file.empty() ? name : name + " (" + position.file + ")";
}

/// Moves the position that counts to the front.
void Choose(Placement& placement, PositionFrom from) {
  auto& stated = placement.stated;
  const auto counts = [&](const StatedPosition& p) { return Counts(p.source, from); };
  const auto chosen = std::find_if(stated.begin(), stated.end(), counts);
  if (chosen == stated.end()) {
    constexpr std::array kNames = {"", "a world file", "tags", "an .aux.xml file"};
    // Control points without a position are in use all the same.
    if (from == PositionFrom::none) {
      placement.controlPoints.clear();
      placement.rationalModel.clear();
    } else if (from != PositionFrom::automatic) {
      placement.warnings.push_back(fmt::format("the position from {} is not used: there is none",
                                               kNames.at(static_cast<size_t>(from))));
    }
    return;
  }
  std::rotate(stated.begin(), chosen, chosen + 1);
  placement.affine = stated.front().affine;
}

void WarnOfDoubt(Placement& placement) {
  if (!placement.affine) return;
  const StatedPosition& first = placement.stated.front();
  for (const StatedPosition& other : placement.stated) {
    if (other.difference <= kAgreement) continue;
    placement.warnings.push_back(
        fmt::format("{} and {} disagree by up to {:.3g} pixels; {} is used", Describe(first),
                    Describe(other), other.difference, PositionSourceName(first.source)));
  }
}

}  // namespace

const char* PositionSourceName(PositionSource source) {
  constexpr std::array kNames = {"worldfile", "geotiff", "geotiff-transformation", "aux-xml",
                                 "given"};
  return kNames.at(static_cast<size_t>(source));
}

namespace detail {

double DifferenceOf(const Affine& position, const Affine& other, int width, int height) {
  double greatest = 0;
  for (const double column : {-0.5, width - 0.5}) {
    for (const double row : {-0.5, height - 0.5}) {
      const auto there = position.Back(other.At(column, row));
      if (!there) return std::numeric_limits<double>::infinity();
      const double distance = std::hypot(there->x - column, there->y - row);
      if (!(distance <= greatest)) greatest = distance;
    }
  }
  return std::isfinite(greatest) ? greatest : std::numeric_limits<double>::infinity();
}

void CompareStated(Placement& placement, int width, int height) {
  if (placement.stated.empty()) return;
  const Affine counting = placement.affine.value_or(placement.stated.front().affine);
  for (StatedPosition& position : placement.stated) {
    const bool isSame = position.affine == counting;
    position.difference = isSame ? 0 : DifferenceOf(counting, position.affine, width, height);
  }
}

}  // namespace detail

Placement ReadPlacement(const std::string& file, std::span<const TagValue> tags, int width,
                        int height, const PlacementReading& reading) {
  PlacementReader reader(file);
  if (!reading.worldFile.empty()) reader.ReadNamedWorldFile(reading.worldFile);
  if (!file.empty()) reader.ReadWorldFilesBeside(reading.worldFile);
  detail::ReadGeoTags(tags, reader.placement);
  if (!file.empty()) {
    reader.ReadAuxXml();
    reader.ReadProjection();
  }
  Placement& placement = reader.placement;
  Choose(placement, reading.from);
  detail::CompareStated(placement, width, height);
  WarnOfDoubt(placement);
  return std::move(placement);
}

}  // namespace rasterkit
