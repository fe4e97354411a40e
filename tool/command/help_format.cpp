#include "tool/command/help_format.h"

#include <set>
#include <utility>

namespace rasterkit::tool {
namespace {

/// Without what is checked, which stands behind a colon.
std::string ValueName(const CLI::Option& option) {
  const std::string name = option.get_type_name();
  return name.substr(0, name.find(':'));
}

std::string Names(const std::set<CLI::Option*>& options) {
  std::string names;
  for (const CLI::Option* const option : options)
    names += (names.empty() ? "" : ", ") + option->get_name();
  return names;
}

}  // namespace

HelpFormat::HelpFormat() {
  constexpr size_t columns = 24;
  column_width(columns);
  label("SUBCOMMAND", "VERB");
  label("Positionals", "Files");
}

std::string HelpFormat::make_group(std::string group, bool isPositional,
                                   std::vector<const CLI::Option*> options) const {
  // Between groups one line is left empty already.
  const bool isFirst = isPositional || group == "Options";
  const std::string text =
      Formatter::make_group(std::move(group), isPositional, std::move(options));
  return isFirst || text.empty() ? text : text.substr(1);
}

std::string HelpFormat::make_option_name(const CLI::Option* option, bool isPositional) const {
  return isPositional ? ValueName(*option) : option->get_name(false, true);
}

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
  const bool hasValue = option->nonpositional() && option->get_type_size() != 0;
  return hasValue ? " " + ValueName(*option) : std::string();
}

std::string HelpFormat::make_option_desc(const CLI::Option* option) const {
  std::string text = option->get_description();
  if (option->nonpositional() && option->get_required()) text += " (required)";
  if (!option->get_needs().empty()) text += " (needs " + Names(option->get_needs()) + ")";
  if (!option->get_excludes().empty()) text += " (not with " + Names(option->get_excludes()) + ")";
  return text;
}

std::string HelpFormat::make_option_usage(const CLI::Option* option) const {
  const std::string name = ValueName(*option);
  return option->get_required() ? name : "[" + name + "]";
}

}  // namespace rasterkit::tool
