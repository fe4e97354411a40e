#include <array>

#include <rasterkit/codecs/codec_table.h>
#include <rasterkit/codecs/picture_io.h>
#include <rasterkit/dialogs/editor/editor_target.h>
#include <rasterkit/dialogs/saving/writable_kinds.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/files/file_name.h>
#include <rasterkit/runtime/text.h>
#include <rasterkit/strings/format_text.h>
#include <rasterkit/strings/strings.h>

namespace rasterkit {
namespace {

/// The rule of the window of saving. A page that is not drawn yet has 8 bits per color.
std::string NameForSource(const EditorSource& source) {
  const std::string& file = source.request.file;
  const PictureType type =
      source.picture ? detail::SuggestType(*source.picture, file).type : PictureType::png;
  const std::string name = detail::NameForType(file, type, {});
  const std::string free = detail::FreeName(name);
  // Where all are taken: asked about, and refused if it is the source.
  return free.empty() ? name : free;
}

PictureType TypeByName(const std::string& file) {
  const Codec* const codec = FindCodecOfExtension(ExtractFileExt(file));
  return codec == nullptr ? PictureType::unknown : codec->type;
}

}  // namespace

std::string EditorTarget::Hindrance() const {
  try {
    RequireSavable(file);
    return "";
  } catch (const Error& error) {
    return error.Reason();
  }
}

std::optional<EditorQuestion> EditorTarget::QuestionFor(const FileFacts& current) const {
  if (!current.exists || (isAgreed && current == facts)) return std::nullopt;
  const bool isChanged = facts.exists && !(current == facts);
  return isChanged ? EditorQuestion::fileChanged : EditorQuestion::replaceFile;
}

EditorTarget SuggestTarget(const EditorSource& source) {
  const std::string& file = source.request.file;
  if (CanWrite(source.type)) return {file, source.facts, false, ""};
  const std::string other = NameForSource(source);
  return {
      other, FactsOfFile(other), false,
      FormatText(ResourceString(rsTypeIsNotWritten),
                 std::array{std::string(PictureTypeName(source.type)), ExtractFileName(other)})};
}

EditorTarget ChosenTarget(const std::string& file, bool isAgreed) {
  const std::string full = FullName(file);
  return {full, FactsOfFile(full), isAgreed, ""};
}

RecipeSave SuggestSaving(const EditorSource& source, const EditorTarget& target) {
  RecipeSave saving;
  const bool isOwnName = target.file == source.request.file;
  const PictureType named = TypeByName(target.file);
  if (named != source.type) saving.type = isOwnName ? source.type : named;
  return saving;
}

bool WouldDestroySource(const EditorSource& source, const std::string& file) {
  return !CanWrite(source.type) && FactsOfFile(file).IsSameFile(FactsOfFile(source.request.file));
}

}  // namespace rasterkit
