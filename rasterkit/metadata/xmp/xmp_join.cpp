#include <map>
#include <string_view>

#include <rasterkit/metadata/xmp/xmp_join.h>
#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>

namespace rasterkit {
namespace {

using detail::XmpNode;
using detail::XmpTree;

/// Declarations of namespaces in a start tag: name and value with its quotes.
using Declarations = std::map<std::string, std::string>;

/// Adds the declarations of a tag that a parser has accepted; those that are there already stay.
void AddDeclarations(std::string_view tag, Declarations& declarations) {
  size_t at = 0;
  while ((at = tag.find('=', at)) != std::string_view::npos) {
    const size_t open = tag.find_first_of("\"'", at);
    if (open == std::string_view::npos) return;
    const size_t close = tag.find(tag[open], open + 1);
    if (close == std::string_view::npos) return;
    const size_t nameEnd = tag.find_last_not_of(" \t\r\n", at - 1) + 1;
    const size_t nameBegin = tag.find_last_of(" \t\r\n", nameEnd - 1) + 1;
    const std::string name(tag.substr(nameBegin, nameEnd - nameBegin));
    if (name == "xmlns" || name.starts_with("xmlns:")) {
      declarations.emplace(name, tag.substr(open, close + 1 - open));
    }
    at = close + 1;
  }
}

/// The bytes of an element, with the declarations of the elements around it that it needs.
std::string WithDeclarations(const std::string& text, const XmpTree& tree, size_t index) {
  const auto tagOf = [&](const XmpNode& node) {
    return std::string_view(text).substr(node.begin, node.insideBegin - node.begin);
  };
  const XmpNode& node = tree.At(index);
  Declarations own;
  AddDeclarations(tagOf(node), own);
  Declarations all = own;
  for (size_t outer = index; outer != tree.At(outer).parent;) {
    outer = tree.At(outer).parent;
    AddDeclarations(tagOf(tree.At(outer)), all);
  }
  std::string result = text.substr(node.begin, node.end - node.begin);
  const size_t nameEnd = result.find_first_of(" \t\r\n/>");
  std::string added;
  for (const auto& [name, value] : all) {
    if (own.count(name) == 0) added.append(" ").append(name).append("=").append(value);
  }
  return result.insert(nameEnd, added);
}

const XmpNode* FindRdf(const XmpTree& tree) {
  for (const XmpNode& node : tree.Nodes()) {
    if (node.name.Is(detail::xmp_name::kRdf, "RDF") && !node.isEmptyTag) return &node;
  }
  return nullptr;
}

}  // namespace

std::optional<std::string> JoinXmp(const std::string& packet, const std::string& extended) {
  const XmpTree more(extended);
  XmpPacket joined(packet);
  if (more.IsDamaged() || joined.IsDamaged()) return std::nullopt;
  const XmpNode* rdf = FindRdf(joined.Tree());
  if (!rdf) return std::nullopt;
  std::string added;
  for (const size_t index : more.Descriptions()) {
    added.append("\n").append(WithDeclarations(extended, more, index));
  }
  joined.Remove(detail::xmp_name::kXmpNote, "HasExtendedXMP");
  joined.Replace(rdf->insideEnd, rdf->insideEnd, added);
  std::string text = joined.Text();
  if (XmpTree(text).IsDamaged()) return std::nullopt;
  return text;
}

}  // namespace rasterkit
