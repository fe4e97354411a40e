#pragma once

#include <string>

namespace rasterkit::tool {

/// What the fields of a name pattern stand for. A pattern is the name of an output with fields in
/// braces: "{stem}-{verb}.{ext}". "{{" and "}}" stand for braces.
struct NameFields {
  /// The name of the input, with and without its extension.
  std::string name, stem;
  /// The extension of the output, without its dot.
  std::string ext;
  std::string verb;
  /// The page of the input, and the place of the output among all, both counted from 1.
  int page = 1, number = 1;
};

/// Says what is wrong with a pattern: an unknown field, a brace without its partner, a folder.
/// Empty if nothing is.
std::string CheckNamePattern(const std::string& pattern);

/// The name by a pattern that CheckNamePattern accepts. "{page:4}" and "{number:4}" have at least
/// so many digits.
std::string NameByPattern(const std::string& pattern, const NameFields& fields);

}  // namespace rasterkit::tool
