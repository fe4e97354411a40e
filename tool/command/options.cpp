#include "tool/command/options.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "tool/arguments/near_word.h"
#include "tool/command/option_parts.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

std::optional<int> ReadWhole(const std::string& text) {
  int value = 0;
  if (!CLI::detail::lexical_cast(text, value)) return std::nullopt;
  return value;
}

std::string WrongValue(const std::string& expected, const std::string& text) {
  return "must be " + expected + ", not '" + text + "'";
}

TextCheck CheckRange(const NumberRange& range) {
  return [range](const std::string& text) {
    const auto value = ReadWhole(text);
    if (value && *value >= range.least && *value <= range.most) return std::string();
    return WrongValue(
        "a whole number from " + std::to_string(range.least) + " to " + std::to_string(range.most),
        text);
  };
}

TextCheck CheckNumberChoice(const std::vector<int>& choices) {
  return [choices](const std::string& text) {
    const auto value = ReadWhole(text);
    if (value && std::count(choices.begin(), choices.end(), *value) > 0) return std::string();
    std::vector<std::string> names;
    names.reserve(choices.size());
    for (const int choice : choices) names.push_back(std::to_string(choice));
    return WrongValue("one of " + Joined(names), text);
  };
}

OptionParts& AddOption(VerbParts& verb, CLI::Option* option, const std::string& name,
                       const std::string& valueName, const std::string& description) {
  OptionParts& parts = verb.options.emplace_back();
  parts.parsed = option;
  parts.name = name;
  parts.entry = {valueName.empty() ? name : name + ' ' + valueName, description};
  parts.section = "Options";
  return parts;
}

OptionParts& AddFiles(VerbParts& verb, CLI::Option* option, const std::string& valueName,
                      const std::string& description, bool isRequired) {
  OptionParts& parts = AddOption(verb, option, {}, {}, description);
  parts.entry.name = valueName;
  parts.section = "Files";
  parts.isRequired = isRequired;
  return parts;
}

}  // namespace

std::string Joined(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : ", ") + text;
  return joined;
}

std::optional<double> ReadReal(const std::string& text) {
  double value = 0;
  if (!CLI::detail::lexical_cast(text, value)) return std::nullopt;
  return value;
}

TextCheck CheckChoice(const std::vector<std::string>& choices) {
  return [choices](const std::string& text) {
    if (std::count(choices.begin(), choices.end(), text) > 0) return std::string();
    return WrongValue("one of " + Joined(choices), text) + DidYouMean(text, choices);
  };
}

Option Option::Required() const {
  parts_->isRequired = true;
  return *this;
}

Option Option::In(const std::string& section) const {
  parts_->section = section;
  return *this;
}

Option Option::Hidden() const {
  parts_->isHidden = true;
  return *this;
}

Option Option::TakesWordAfter(const std::vector<std::string>& words) const {
  parts_->openWords = words;
  return *this;
}

Option Option::Needs(const Option& other) const {
  parts_->parsed->needs(other.parts_->parsed);
  parts_->needed.push_back(other.parts_->name);
  return *this;
}

Option Option::Excludes(const Option& other) const {
  parts_->parsed->excludes(other.parts_->parsed);
  parts_->excluded.push_back(other.parts_->name);
  if (!parts_->isHidden) other.parts_->excluded.push_back(parts_->name);
  return *this;
}

const std::string& Verb::Name() const {
  return parts_->help.name;
}

Option Verb::Flag(const std::string& name, bool& value, const std::string& description) {
  return Option(AddOption(*parts_, parts_->parsed->add_flag(name, value), name, {}, description));
}

Option Verb::Flag(const std::string& letter, const std::string& name, bool& value,
                  const std::string& description) {
  const std::string names = letter + ", " + name;
  OptionParts& parts = AddOption(*parts_, parts_->parsed->add_flag(letter + ',' + name, value),
                                 name, {}, description);
  parts.entry.name = names;
  return Option(parts);
}

Option Verb::FlagOrWord(const std::string& name, const std::string& word,
                        const std::function<void(bool hasWord)>& take,
                        const std::string& description) {
  // The parser stores the text there; the check, which lives as long as the option, keeps it.
  const auto stored = std::make_shared<std::string>();
  CLI::Option* const option = parts_->parsed->add_flag(name, *stored);
  option->check([stored, word, take](const std::string& text) {
    if (text != "true" && text != word) return WrongValue("given alone or as =" + word, text);
    take(text == word);
    return std::string();
  });
  OptionParts& parts = AddOption(*parts_, option, name, {}, description);
  parts.entry.name = name + "[=" + word + "]";
  return Option(parts);
}

Option Verb::Parsed(const std::string& name, const std::string& valueName,
                    const std::function<void(const std::string& text)>& take,
                    const TextCheck& check, const std::string& description) {
  CLI::Option* const option = parts_->parsed->add_option_function(name, take);
  if (check) option->check(check);
  option->type_name(valueName);
  return Option(AddOption(*parts_, option, name, valueName, description));
}

Option Verb::Number(const std::string& name, const std::string& valueName, int& value,
                    const NumberRange& range, const std::string& description) {
  const auto take = [&value](const std::string& text) { value = ReadWhole(text).value(); };
  return Parsed(name, valueName, take, CheckRange(range), description);
}

Option Verb::Number(const std::string& name, const std::string& valueName,
                    std::optional<int>& value, const NumberRange& range,
                    const std::string& description) {
  const auto take = [&value](const std::string& text) { value = ReadWhole(text); };
  return Parsed(name, valueName, take, CheckRange(range), description);
}

Option Verb::OneOf(const std::string& name, const std::string& valueName, int& value,
                   const std::vector<int>& choices, const std::string& description) {
  const auto take = [&value](const std::string& text) { value = ReadWhole(text).value(); };
  return Parsed(name, valueName, take, CheckNumberChoice(choices), description);
}

Option Verb::OneOf(const std::string& name, const std::string& valueName, std::string& value,
                   const std::vector<std::string>& choices, const std::string& description) {
  return Text(name, valueName, value, CheckChoice(choices), description);
}

Option Verb::Real(const std::string& name, const std::string& valueName, double& value,
                  const TextCheck& check, const std::string& description) {
  const auto take = [&value](const std::string& text) { value = ReadReal(text).value(); };
  return Parsed(name, valueName, take, check, description);
}

Option Verb::Text(const std::string& name, const std::string& valueName, std::string& value,
                  const TextCheck& check, const std::string& description) {
  const auto take = [&value](const std::string& text) { value = text; };
  return Parsed(name, valueName, take, check, description);
}

Option Verb::Texts(const std::string& name, const std::string& valueName,
                   std::vector<std::string>& values, const TextCheck& check,
                   const std::string& description) {
  CLI::Option* const option = parts_->parsed->add_option(name, values);
  if (check) option->check(check);
  option->allow_extra_args(false)->type_name(valueName);
  return Option(AddOption(*parts_, option, name, valueName, description));
}

void Verb::File(const std::string& valueName, std::string& file, const std::string& description,
                bool isRequired) {
  AddFiles(*parts_, parts_->parsed->add_option("file", file), valueName, description, isRequired);
}

void Verb::Files(const std::string& valueName, std::vector<std::string>& files,
                 const std::string& description) {
  AddFiles(*parts_, parts_->parsed->add_option("files", files), valueName, description, true);
}

void Verb::Files(const std::string& valueName, std::vector<std::string>& files, int count,
                 const std::string& description) {
  CLI::Option* const option = parts_->parsed->add_option("files", files)->expected(count);
  AddFiles(*parts_, option, valueName, description, true);
}

}  // namespace rasterkit::tool
