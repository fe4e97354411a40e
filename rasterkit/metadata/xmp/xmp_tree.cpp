#include <algorithm>
#include <memory>

#include <expat.h>

#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_tree.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kMostBytes = 64 << 20;
constexpr size_t kMostNodes = 1 << 20;
constexpr size_t kMostDepth = 200;

/// Stands between namespace and name; no namespace can hold a line break.
constexpr char kSeparator = '\n';

XmpName NameOf(const char* joined) {
  const std::string_view text = joined;
  const size_t separator = text.rfind(kSeparator);
  if (separator == std::string_view::npos) return {"", std::string(text)};
  return {std::string(text.substr(0, separator)), std::string(text.substr(separator + 1))};
}

bool IsBlank(char letter) {
  return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}

/// Finds the places of attributes in a start tag that the library has accepted.
class TagScanner {
 public:
  TagScanner(std::string_view text, size_t begin, size_t end) : text_(text), at_(begin), end_(end) {
    // The name.
    while (at_ < end_ && !IsBlank(text_[at_]) && text_[at_] != '>' && text_[at_] != '/') at_++;
  }

  /// Goes to the next attribute that declares no namespace; false if there is none.
  bool Next(XmpAttribute& attribute) {
    while (Step(attribute)) {
      const std::string_view name = text_.substr(nameBegin_, nameEnd_ - nameBegin_);
      if (name != "xmlns" && !name.starts_with("xmlns:")) return true;
    }
    return false;
  }

 private:
  bool Step(XmpAttribute& attribute) {
    attribute.begin = at_;
    SkipBlanks();
    nameBegin_ = at_;
    while (at_ < end_ && text_[at_] != '=' && !IsBlank(text_[at_]) && text_[at_] != '>') at_++;
    nameEnd_ = at_;
    SkipBlanks();
    if (at_ >= end_ || text_[at_] != '=') return false;
    at_++;
    SkipBlanks();
    if (at_ >= end_) return false;
    const char quote = text_[at_++];
    attribute.valueBegin = at_;
    at_ = std::min(text_.find(quote, at_), end_);
    attribute.valueEnd = at_;
    if (at_ >= end_) return false;
    attribute.end = ++at_;
    return true;
  }

  void SkipBlanks() {
    while (at_ < end_ && IsBlank(text_[at_])) at_++;
  }

  std::string_view text_;
  size_t at_, end_;
  size_t nameBegin_ = 0, nameEnd_ = 0;
};

class TreeBuilder {
 public:
  TreeBuilder(std::string_view text, std::vector<XmpNode>& nodes)
      : text_(text), nodes_(nodes), parser_(XML_ParserCreateNS("UTF-8", kSeparator)) {}

  /// False if the text is no valid XML.
  bool Build() {
    if (!parser_) return false;
    XML_SetUserData(parser_.get(), this);
    XML_SetElementHandler(parser_.get(), OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser_.get(), OnText);
    XML_SetStartDoctypeDeclHandler(parser_.get(), OnDocumentType);
    const auto state = XML_Parse(parser_.get(), text_.data(), static_cast<int>(text_.size()), 1);
    return state == XML_STATUS_OK && !isRefused_;
  }

 private:
  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  static TreeBuilder& Of(void* user) { return *static_cast<TreeBuilder*>(user); }
  static void OnStart(void* user, const char* name, const char** attributes) {
    Of(user).Guard([&](TreeBuilder& builder) { builder.Start(name, attributes); });
  }
  static void OnEnd(void* user, const char*) {
    Of(user).Guard([](TreeBuilder& builder) { builder.End(); });
  }
  static void OnText(void* user, const char* text, int length) {
    Of(user).Guard([&](TreeBuilder& builder) {
      if (builder.open_.empty()) return;
      builder.nodes_[builder.open_.back()].text.append(text, static_cast<size_t>(length));
    });
  }
  static void OnDocumentType(void* user, const char*, const char*, const char*, int) {
    Of(user).Refuse();
  }

  /// No exception may pass through the library.
  template <class Body>
  void Guard(const Body& body) noexcept {
    try {
      if (!isRefused_) body(*this);
    } catch (...) {
      Refuse();
    }
  }

  void Refuse() {
    isRefused_ = true;
    XML_StopParser(parser_.get(), XML_FALSE);
  }

  size_t Place() const { return static_cast<size_t>(XML_GetCurrentByteIndex(parser_.get())); }
  size_t PlaceBehind() const {
    return Place() + static_cast<size_t>(XML_GetCurrentByteCount(parser_.get()));
  }

  void Start(const char* name, const char** attributes) {
    if (nodes_.size() >= kMostNodes || open_.size() >= kMostDepth) {
      Refuse();
      return;
    }
    XmpNode node;
    node.name = NameOf(name);
    node.begin = Place();
    node.insideBegin = node.insideEnd = node.end = PlaceBehind();
    node.isEmptyTag = node.end >= 2 && text_[node.end - 2] == '/';
    TagScanner scanner(text_, node.begin, node.end);
    for (; *attributes != nullptr; attributes += 2) {
      XmpAttribute attribute;
      if (!scanner.Next(attribute)) {
        Refuse();
        return;
      }
      attribute.name = NameOf(attributes[0]);
      attribute.value = attributes[1];
      node.attributes.push_back(std::move(attribute));
    }
    const size_t index = nodes_.size();
    node.parent = open_.empty() ? index : open_.back();
    if (!open_.empty()) nodes_[open_.back()].children.push_back(index);
    nodes_.push_back(std::move(node));
    open_.push_back(index);
  }

  void End() {
    XmpNode& node = nodes_[open_.back()];
    open_.pop_back();
    if (node.isEmptyTag) return;
    node.insideEnd = Place();
    node.end = PlaceBehind();
  }

  std::string_view text_;
  std::vector<XmpNode>& nodes_;
  std::vector<size_t> open_;
  bool isRefused_ = false;
  std::unique_ptr<XML_ParserStruct, Free> parser_;
};

}  // namespace

XmpTree::XmpTree(std::string_view text) {
  // Zeros and other padding may follow the last tag.
  const size_t last = text.rfind('>');
  isDamaged_ = last == std::string_view::npos || text.size() > kMostBytes ||
               !TreeBuilder(text.substr(0, last + 1), nodes_).Build();
}

std::vector<size_t> XmpTree::Descriptions() const {
  std::vector<size_t> found;
  for (const XmpNode& node : nodes_) {
    if (node.name.Is(xmp_name::kRdf, "RDF")) {
      found.insert(found.end(), node.children.begin(), node.children.end());
    }
  }
  return found;
}

}  // namespace rasterkit::detail
