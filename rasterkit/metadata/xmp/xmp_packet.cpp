#include <algorithm>
#include <utility>

#include <rasterkit/metadata/xmp/xmp_names.h>
#include <rasterkit/metadata/xmp/xmp_packet.h>

namespace rasterkit {
namespace {

using detail::XmpAttribute;
using detail::XmpName;
using detail::XmpNode;
using detail::XmpTree;

bool IsBlank(char letter) {
  return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}

/// The byte order of a UTF-16 text: true for the high byte first; nothing for other texts.
std::optional<bool> Utf16Order(std::string_view text) {
  if (text.size() < 2) return std::nullopt;
  const auto first = static_cast<uint8_t>(text[0]), second = static_cast<uint8_t>(text[1]);
  if ((first == 0xFE && second == 0xFF) || (first == 0 && second == '<')) return true;
  if ((first == 0xFF && second == 0xFE) || (first == '<' && second == 0)) return false;
  return std::nullopt;
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto put = [&](char32_t byte) { text += static_cast<char>(byte); };
  if (code < 0x80) {
    put(code);
    return;
  }
  if (code < 0x800) {
    put(0xC0 | code >> 6);
  } else {
    if (code < 0x10000) {
      put(0xE0 | code >> 12);
    } else {
      put(0xF0 | code >> 18);
      put(0x80 | (code >> 12 & 0x3F));
    }
    put(0x80 | (code >> 6 & 0x3F));
  }
  put(0x80 | (code & 0x3F));
}

/// Converts UTF-16 to UTF-8 without a byte-order mark in front; other texts stay.
std::string Utf8OfPacket(const std::string& bytes) {
  constexpr char32_t kMark = 0xFEFF, kReplacement = 0xFFFD;
  const auto isHighFirst = Utf16Order(bytes);
  if (!isHighFirst) return bytes;
  const auto unit = [&](size_t i) {
    const auto a = static_cast<uint8_t>(bytes[i]), b = static_cast<uint8_t>(bytes[i + 1]);
    return static_cast<char32_t>(*isHighFirst ? a << 8 | b : b << 8 | a);
  };
  std::string text;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    char32_t code = unit(i);
    if (i == 0 && code == kMark) continue;
    if (code >= 0xD800 && code < 0xE000) {
      const bool isPair = code < 0xDC00 && i + 3 < bytes.size() && unit(i + 2) >> 10 == 0x37;
      code = isPair ? 0x10000 + ((code & 0x3FF) << 10 | (unit(i + 2) & 0x3FF)) : kReplacement;
      if (isPair) i += 2;
    }
    AppendUtf8(text, code);
  }
  return text;
}

std::string Escaped(std::string_view text) {
  std::string result;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      case '\'':
        result += "&apos;";
        break;
      default:
        result += letter;
    }
  }
  return result;
}

std::string Trimmed(const std::string& text) {
  const size_t first = text.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

/// Items of a list that is the only child of a property.
std::vector<size_t> Items(const XmpTree& tree, const XmpNode& property) {
  if (property.children.size() != 1) return {};
  const XmpNode& list = tree.At(property.children[0]);
  std::vector<size_t> items;
  for (const size_t child : list.children) {
    if (tree.At(child).name.Is(detail::xmp_name::kRdf, "li")) items.push_back(child);
  }
  return items;
}

/// Blanks between the last tag and the end of a writable packet.
std::pair<size_t, size_t> Padding(const std::string& text) {
  const size_t mark = text.rfind("<?xpacket end=");
  constexpr size_t kValueAt = 15;
  if (mark == std::string::npos || mark + kValueAt >= text.size() || text[mark + kValueAt] != 'w') {
    return {0, 0};
  }
  size_t begin = mark;
  while (begin > 0 && IsBlank(text[begin - 1])) begin--;
  return {begin, mark};
}

/// Blanks in lines of a hundred.
std::string Blanks(size_t count) {
  constexpr size_t kLine = 100;
  std::string blanks(count, ' ');
  for (size_t i = kLine - 1; i < count; i += kLine) blanks[i] = '\n';
  return blanks;
}

/// Brings a packet to a length by its padding, as far as that goes. One blank stays.
void Pad(std::string& text, size_t length) {
  const auto [begin, end] = Padding(text);
  if (end == begin) return;
  if (text.size() < length) {
    text.insert(begin, Blanks(length - text.size()));
  } else {
    text.erase(begin, std::min(text.size() - length, end - begin - 1));
  }
}

}  // namespace

XmpPacket::XmpPacket(std::string bytes)
    : original_(std::move(bytes)), text_(Utf8OfPacket(original_)), tree_(text_) {}

/// Calls `visit` with each attribute (or null) and each element (or null) of that name. An empty
/// name stands for all of the namespace.
template <class Visit>
void XmpPacket::ForEach(std::string_view uri, std::string_view name, const Visit& visit) const {
  if (IsDamaged()) return;
  const auto fits = [&](const XmpName& other) {
    return other.uri == uri && (name.empty() || other.local == name);
  };
  for (const size_t index : tree_.Descriptions()) {
    for (const XmpAttribute& attribute : tree_.At(index).attributes) {
      if (fits(attribute.name)) visit(&attribute, static_cast<const XmpNode*>(nullptr));
    }
    for (const size_t child : tree_.At(index).children) {
      const XmpNode& node = tree_.At(child);
      if (fits(node.name)) visit(static_cast<const XmpAttribute*>(nullptr), &node);
    }
  }
}

std::string XmpPacket::Text() const {
  if (edits_.empty()) return original_;
  std::vector<Edit> edits = edits_;
  // What lies within a removed element comes behind it and is skipped.
  std::stable_sort(edits.begin(), edits.end(), [](const Edit& a, const Edit& b) {
    return a.begin != b.begin ? a.begin < b.begin : a.end > b.end;
  });
  std::string text;
  size_t at = 0;
  for (const Edit& edit : edits) {
    if (edit.begin < at) continue;
    text.append(text_, at, edit.begin - at);
    text += edit.text;
    at = edit.end;
  }
  text.append(text_, at);
  Pad(text, text_.size());
  return text;
}

bool XmpPacket::Has(std::string_view uri, std::string_view name) const {
  bool has = false;
  ForEach(uri, name, [&](const XmpAttribute*, const XmpNode*) { has = true; });
  return has;
}

std::optional<std::string> XmpPacket::Get(std::string_view uri, std::string_view name) const {
  std::optional<std::string> value;
  ForEach(uri, name, [&](const XmpAttribute* attribute, const XmpNode* node) {
    if (value) return;
    if (attribute) value = attribute->value;
    if (node && node->children.empty()) value = Trimmed(node->text);
  });
  return value;
}

std::vector<std::string> XmpPacket::List(std::string_view uri, std::string_view name) const {
  std::vector<std::string> values;
  ForEach(uri, name, [&](const XmpAttribute*, const XmpNode* node) {
    if (!node || !values.empty()) return;
    for (const size_t item : Items(tree_, *node)) values.push_back(Trimmed(tree_.At(item).text));
  });
  return values;
}

bool XmpPacket::Set(std::string_view uri, std::string_view name, std::string_view value) {
  bool has = false;
  const std::string escaped = Escaped(value);
  ForEach(uri, name, [&](const XmpAttribute* attribute, const XmpNode* node) {
    if (attribute) {
      has = true;
      if (attribute->value != value) Replace(attribute->valueBegin, attribute->valueEnd, escaped);
    } else if (node->children.empty() && !node->isEmptyTag) {
      has = true;
      if (Trimmed(node->text) != value) Replace(node->insideBegin, node->insideEnd, escaped);
    }
  });
  return has;
}

bool XmpPacket::SetList(std::string_view uri, std::string_view name,
                        const std::vector<std::string>& values) {
  bool has = false;
  ForEach(uri, name, [&](const XmpAttribute*, const XmpNode* node) {
    if (!node) return;
    const std::vector<size_t> items = Items(tree_, *node);
    if (items.size() != values.size()) return;
    has = true;
    for (size_t i = 0; i < items.size(); i++) {
      const XmpNode& item = tree_.At(items[i]);
      if (item.isEmptyTag || Trimmed(item.text) == values[i]) continue;
      Replace(item.insideBegin, item.insideEnd, Escaped(values[i]));
    }
  });
  return has;
}

bool XmpPacket::Remove(std::string_view uri, std::string_view name) {
  bool has = false;
  ForEach(uri, name, [&](const XmpAttribute* attribute, const XmpNode* node) {
    has = true;
    if (attribute) Replace(attribute->begin, attribute->end, "");
    if (node) RemoveElement(*node);
  });
  return has;
}

bool XmpPacket::RemoveAll(std::string_view uri) {
  return Remove(uri, "");
}

void XmpPacket::Replace(size_t begin, size_t end, std::string text) {
  edits_.push_back({begin, end, std::move(text)});
}

void XmpPacket::RemoveElement(const XmpNode& node) {
  size_t begin = node.begin;
  while (begin > 0 && IsBlank(text_[begin - 1])) begin--;
  Replace(begin, node.end, "");
}

}  // namespace rasterkit
