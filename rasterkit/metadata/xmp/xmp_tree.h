#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/runtime/export.h>

namespace rasterkit::detail {

/// A namespace and a local name.
struct XmpName {
  std::string uri, local;
  bool Is(std::string_view otherUri, std::string_view otherLocal) const {
    return uri == otherUri && local == otherLocal;
  }
};

/// An attribute of an element. Places are bytes of the packet.
struct XmpAttribute {
  XmpName name;
  std::string value;
  /// From the blanks in front of the name to the closing quote.
  size_t begin = 0, end = 0;
  /// The value within its quotes.
  size_t valueBegin = 0, valueEnd = 0;
};

/// An element.
struct XmpNode {
  XmpName name;
  std::vector<XmpAttribute> attributes;
  std::vector<size_t> children;
  /// Index of the element around this one; the root's is its own.
  size_t parent = 0;
  /// Text that is no part of a child.
  std::string text;
  /// The whole element, and what stands between its tags. An empty tag has no inside.
  size_t begin = 0, end = 0, insideBegin = 0, insideEnd = 0;
  bool isEmptyTag = false;
};

/// The elements of an XMP packet with their places. Document types are refused, so that no entity
/// can grow or lead to another file; depth and number of elements are bounded.
class RASTERKIT_EXPORT XmpTree {
 public:
  /// `text` is UTF-8 and only read here.
  explicit XmpTree(std::string_view text);

  /// True if the packet is no valid XML, or larger than the bounds.
  bool IsDamaged() const { return isDamaged_; }
  const std::vector<XmpNode>& Nodes() const { return nodes_; }
  const XmpNode& At(size_t index) const { return nodes_[index]; }
  /// The elements that hold properties: children of rdf:RDF.
  std::vector<size_t> Descriptions() const;

 private:
  std::vector<XmpNode> nodes_;
  bool isDamaged_ = false;
};

}  // namespace rasterkit::detail
