#include <algorithm>
#include <cmath>
#include <set>

#include <fmt/format.h>

#include <rasterkit/metadata/mapped_area.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_numbers.h>
#include <rasterkit/metadata/xmp_follow.h>

namespace rasterkit::detail {
namespace {

/// A property within a structure: as attribute or as element, directly or in a description.
struct Field {
  std::string text;
  size_t begin = 0, end = 0;
};

std::optional<Field> FindField(const XmpTree& tree, const XmpNode& node, std::string_view uri,
                               std::string_view name) {
  for (const XmpAttribute& attribute : node.attributes) {
    if (attribute.name.Is(uri, name)) {
      return Field{attribute.value, attribute.valueBegin, attribute.valueEnd};
    }
  }
  for (const size_t child : node.children) {
    const XmpNode& inner = tree.At(child);
    if (inner.name.Is(uri, name) && !inner.isEmptyTag && inner.children.empty()) {
      return Field{inner.text, inner.insideBegin, inner.insideEnd};
    }
    if (!inner.name.Is(xmp_name::kRdf, "Description")) continue;
    if (auto field = FindField(tree, inner, uri, name)) return field;
  }
  return std::nullopt;
}

/// Namespaces of a way to write regions: areas with center and sides, in parts of the picture or in
/// pixels, and the sides of the picture that they were made for.
struct RegionKind {
  std::string_view regions, area, dimensions;
};
constexpr RegionKind kKinds[] = {
    {"http://www.metadataworkinggroup.com/schemas/regions/", "http://ns.adobe.com/xmp/sType/Area#",
     "http://ns.adobe.com/xap/1.0/sType/Dimensions#"},
    {"http://ns.acdsee.com/regions/", "http://ns.acdsee.com/sType/Area#",
     "http://ns.acdsee.com/sType/Dimensions#"},
};

/// A box of four numbers from its top left corner, in parts of the picture.
constexpr std::string_view kBoxRegions = "http://ns.microsoft.com/photo/1.2/t/Region#";
constexpr std::string_view kBoxRoot = "http://ns.microsoft.com/photo/1.2/";

class RegionFollower {
 public:
  RegionFollower(XmpPacket& packet, const PixelChange& change, Changes& changes)
      : packet_(packet), tree_(packet.Tree()), change_(change), changes_(changes) {
    for (const RegionKind& kind : kKinds) applied_.push_back(AppliedTo(kind));
  }

  void Run() {
    for (const XmpNode& node : tree_.Nodes()) {
      for (const RegionKind& kind : kKinds) {
        if (node.name.uri != kind.regions) continue;
        const std::string& local = node.name.local;
        if (local == "AppliedToDimensions") FollowDimensions(node, kind);
        if (local == "Area" || local == "DLYArea" || local == "ALGArea") FollowArea(node, kind);
      }
      FollowBox(node);
    }
    RemoveEmptyLists();
    const bool hasOthers = packet_.Remove(xmp_name::kIptcExtension, "ImageRegion");
    if (hasOthers) {
      changes_.Lose(LossKind::xmp, "image regions (IPTC)", "they do not follow moved pixels");
    }
    if (dropped_ > 0) {
      changes_.Note(fmt::format("{} image {} outside the picture removed", dropped_,
                                dropped_ == 1 ? "region" : "regions"));
    }
  }

 private:
  std::optional<Field> Get(const XmpNode& node, std::string_view uri, std::string_view name) const {
    return FindField(tree_, node, uri, name);
  }
  std::optional<double> Number(const XmpNode& node, std::string_view uri,
                               std::string_view name) const {
    const auto field = Get(node, uri, name);
    return field ? XmpNumber(field->text) : std::nullopt;
  }
  void Put(const std::optional<Field>& field, double value) {
    if (field) packet_.Replace(field->begin, field->end, XmpText(value));
  }

  void FollowDimensions(const XmpNode& node, const RegionKind& kind) {
    Put(Get(node, kind.dimensions, "w"), change_.width);
    Put(Get(node, kind.dimensions, "h"), change_.height);
  }

  /// Sides of the picture that areas in pixels were made for: as stated, else the old ones.
  PictureArea AppliedTo(const RegionKind& kind) const {
    for (const XmpNode& node : tree_.Nodes()) {
      if (!node.name.Is(kind.regions, "AppliedToDimensions")) continue;
      const auto width = Number(node, kind.dimensions, "w");
      const auto height = Number(node, kind.dimensions, "h");
      if (width && height && *width > 0 && *height > 0) return {0, 0, *width, *height};
    }
    return {0, 0, static_cast<double>(change_.oldWidth), static_cast<double>(change_.oldHeight)};
  }

  void FollowArea(const XmpNode& node, const RegionKind& kind) {
    const auto unit = Get(node, kind.area, "unit");
    const bool isInPixels = unit && unit->text == "pixel";
    const PictureArea applied =
        isInPixels ? applied_[static_cast<size_t>(&kind - kKinds)] : PictureArea{0, 0, 1, 1};
    const double scaleX = change_.oldWidth / applied.width;
    const double scaleY = change_.oldHeight / applied.height;
    const auto x = Number(node, kind.area, "x"), y = Number(node, kind.area, "y");
    if (!x || !y) {
      Drop(node);
      return;
    }
    PictureArea area{*x * scaleX, *y * scaleY, 0, 0};
    const auto width = Number(node, kind.area, "w"), height = Number(node, kind.area, "h");
    if (width) area.width = *width * scaleX;
    if (height) area.height = *height * scaleY;
    const auto mapped = MapArea(change_, area);
    if (!mapped) {
      Drop(node);
      return;
    }
    const double unitX = isInPixels ? 1 : change_.width, unitY = isInPixels ? 1 : change_.height;
    Put(Get(node, kind.area, "x"), mapped->centerX / unitX);
    Put(Get(node, kind.area, "y"), mapped->centerY / unitY);
    Put(Get(node, kind.area, "w"), mapped->width / unitX);
    Put(Get(node, kind.area, "h"), mapped->height / unitY);
    if (const auto diameter = Number(node, kind.area, "d")) {
      // In parts of the shorter side.
      const double oldUnit = isInPixels ? applied.width / change_.oldWidth
                                        : 1.0 / std::min(change_.oldWidth, change_.oldHeight);
      const double newUnit = isInPixels ? 1 : std::min(change_.width, change_.height);
      Put(Get(node, kind.area, "d"), *diameter / oldUnit * ScaleOf(change_).x / newUnit);
    }
  }

  void FollowBox(const XmpNode& node) {
    for (const XmpAttribute& attribute : node.attributes) {
      if (!attribute.name.Is(kBoxRegions, "Rectangle")) continue;
      FollowBox(node, {attribute.value, attribute.valueBegin, attribute.valueEnd});
    }
    if (node.name.Is(kBoxRegions, "Rectangle") && !node.isEmptyTag) {
      FollowBox(node, {node.text, node.insideBegin, node.insideEnd});
    }
  }

  void FollowBox(const XmpNode& node, const Field& field) {
    double parts[4] = {};
    std::string_view rest = field.text;
    for (double& part : parts) {
      const size_t comma = rest.find(',');
      const auto number = XmpNumber(rest.substr(0, comma));
      if (!number) {
        Drop(node);
        return;
      }
      part = *number;
      rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
    }
    const double width = parts[2] * change_.oldWidth, height = parts[3] * change_.oldHeight;
    const auto mapped =
        MapArea(change_, {parts[0] * change_.oldWidth + width / 2,
                          parts[1] * change_.oldHeight + height / 2, width, height});
    if (!mapped) {
      Drop(node);
      return;
    }
    packet_.Replace(field.begin, field.end,
                    fmt::format("{}, {}, {}, {}",
                                XmpText((mapped->centerX - mapped->width / 2) / change_.width),
                                XmpText((mapped->centerY - mapped->height / 2) / change_.height),
                                XmpText(mapped->width / change_.width),
                                XmpText(mapped->height / change_.height)));
  }

  size_t IndexOf(const XmpNode& node) const {
    return static_cast<size_t>(&node - tree_.Nodes().data());
  }

  /// Removes the item of the list that a region is.
  void Drop(const XmpNode& node) {
    const XmpNode* item = &node;
    while (!item->name.Is(xmp_name::kRdf, "li")) {
      const XmpNode* outer = &tree_.At(item->parent);
      if (outer == item) return;
      item = outer;
    }
    if (!droppedItems_.insert(IndexOf(*item)).second) return;
    dropped_++;
    packet_.RemoveElement(*item);
  }

  /// A list without items leaves nothing to state.
  void RemoveEmptyLists() {
    std::set<size_t> lists;
    for (const size_t item : droppedItems_) lists.insert(tree_.At(item).parent);
    for (const size_t list : lists) {
      const auto& items = tree_.At(list).children;
      const bool isEmpty = std::all_of(items.begin(), items.end(),
                                       [&](size_t item) { return droppedItems_.count(item) != 0; });
      if (isEmpty) RemoveRoot(list);
    }
  }

  /// Removes the property of regions around an element.
  void RemoveRoot(size_t index) {
    const std::string_view uris[] = {kKinds[0].regions, kKinds[1].regions, kBoxRoot};
    const XmpNode* node = &tree_.At(index);
    for (;;) {
      const bool isRoot = std::any_of(std::begin(uris), std::end(uris), [&](std::string_view uri) {
        return node->name.uri == uri &&
               (node->name.local == "Regions" || node->name.local == "RegionInfo") &&
               tree_.At(tree_.At(node->parent).parent).name.Is(xmp_name::kRdf, "RDF");
      });
      const XmpNode* outer = &tree_.At(node->parent);
      if (isRoot) packet_.RemoveElement(*node);
      if (isRoot || outer == node) return;
      node = outer;
    }
  }

  XmpPacket& packet_;
  const XmpTree& tree_;
  const PixelChange& change_;
  Changes& changes_;
  /// For each of kKinds.
  std::vector<PictureArea> applied_;
  std::set<size_t> droppedItems_;
  int dropped_ = 0;
};

}  // namespace

void FollowRegionsInXmp(XmpPacket& packet, const PixelChange& change, Changes& changes) {
  RegionFollower(packet, change, changes).Run();
}

}  // namespace rasterkit::detail
