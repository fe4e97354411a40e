#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <rasterkit/metadata/xmp/xmp_tree.h>
#include <rasterkit/runtime/export.h>

namespace rasterkit {

/// An XMP packet, read and changed in place.
///
/// Properties are found by namespace and name, written as attribute or as element. A change touches
/// the bytes of the value alone; a removed property takes the blanks in front of it along. The
/// padding of a writable packet gives or takes the room, so that the packet keeps its length where
/// that is possible. Values that are read are those before all changes; of two changes of the same
/// value the first counts. Without a change the bytes stay as they are; a changed packet of UTF-16
/// becomes UTF-8.
class RASTERKIT_EXPORT XmpPacket {
 public:
  explicit XmpPacket(std::string bytes);

  /// True if the packet is no valid XML, has a document type or is larger than 64 MiB. It can
  /// neither be searched nor changed then.
  bool IsDamaged() const { return tree_.IsDamaged(); }
  /// The bytes with all changes.
  std::string Text() const;
  bool IsChanged() const { return !edits_.empty(); }

  bool Has(std::string_view uri, std::string_view name) const;
  /// The value of a simple property; nothing if there is none, or if it is a list or a structure.
  std::optional<std::string> Get(std::string_view uri, std::string_view name) const;
  /// The values of a list; empty if there is none.
  std::vector<std::string> List(std::string_view uri, std::string_view name) const;
  /// Sets a simple property that the packet has; true if it has one. The same value changes
  /// nothing.
  bool Set(std::string_view uri, std::string_view name, std::string_view value);
  /// Sets the values of a list that the packet has, if it has as many; true if so.
  bool SetList(std::string_view uri, std::string_view name, const std::vector<std::string>& values);
  /// Removes a property; true if there was one.
  bool Remove(std::string_view uri, std::string_view name);
  /// Removes all properties of a namespace; true if there was one.
  bool RemoveAll(std::string_view uri);

  /// Elements and places for what is deeper than a property; places are those before all changes.
  const detail::XmpTree& Tree() const { return tree_; }
  /// Replaces bytes of the original packet.
  void Replace(size_t begin, size_t end, std::string text);
  /// Removes an element with the blanks in front of it.
  void RemoveElement(const detail::XmpNode& node);

 private:
  struct Edit {
    size_t begin, end;
    std::string text;
  };

  template <class Visit>
  void ForEach(std::string_view uri, std::string_view name, const Visit& visit) const;

  /// As given, and in UTF-8.
  std::string original_, text_;
  detail::XmpTree tree_;
  std::vector<Edit> edits_;
};

}  // namespace rasterkit
