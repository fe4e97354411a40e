#include "tool/command/output_names.h"

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>

#include "tool/arguments/name_pattern.h"
#include "tool/command/exit_code.h"
#include "tool/command/standard_input.h"

namespace rasterkit::tool {
namespace {

/// True for "jpg" and "jpeg" too.
bool IsSameType(const std::string& extension, const std::string& other) {
  if (UpperCase(extension) == UpperCase(other)) return true;
  const Codec* const codec = FindCodecOfExtension(extension);
  return codec != nullptr && codec == FindCodecOfExtension(other);
}

void RequirePlainName(const std::string& name) {
  const bool isName = !name.empty() && name != "." && name != ".." &&
                      name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
  if (!isName) throw Failure(exitWrongUsage, "--name gives no name of a file: '" + name + "'");
}

}  // namespace

std::string NameOfInput(const std::string& input) {
  return IsStandardStream(input) ? "stdin" : ExtractFileName(input);
}

std::string NameInFolder(const OutputOptions& options, const NamedOutput& output) {
  std::string name = output.usualName;
  if (!options.name.empty()) {
    NameFields fields;
    fields.name = NameOfInput(output.input);
    fields.stem = ChangeFileExt(fields.name, "");
    const std::string extension = ExtractFileExt(output.usualName);
    fields.ext = extension.empty() ? "" : extension.substr(1);
    fields.verb = options.verb;
    fields.page = output.page;
    fields.number = output.number;
    name = NameByPattern(options.name, fields);
    RequirePlainName(name);
    if (!options.type.empty() && !IsSameType(ExtractFileExt(name), extension)) {
      throw Failure(exitWrongUsage, "--name gives " + name + ", which does not end in " +
                                        extension + " as --format says; {ext} stands for it");
    }
  }
  return (ToPath(options.outDir) / ToPath(name)).string();
}

}  // namespace rasterkit::tool
