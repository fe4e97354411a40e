#include "tool/command/command_line.h"

#include <algorithm>
#include <cstdio>
#include <deque>
#include <utility>

#include "tool/arguments/near_word.h"
#include "tool/command/exit_code.h"
#include "tool/command/option_parts.h"
#include "tool/command/printable.h"
#include "tool/command/terminal.h"

#include <CLI/CLI.hpp>

namespace rasterkit::tool {
namespace {

const HelpEntry kHelpFlag = {"-h, --help", "print this text"};

/// The description, and which options go together.
std::string TextOf(const OptionParts& option) {
  std::string text = option.entry.text;
  if (option.isRequired && !option.name.empty()) text += " (required)";
  if (!option.needed.empty()) text += " (needs " + Joined(option.needed) + ")";
  if (!option.excluded.empty()) text += " (not with " + Joined(option.excluded) + ")";
  return text;
}

HelpSection& SectionOf(HelpPage& page, const std::string& title) {
  for (HelpSection& section : page.sections) {
    if (section.title == title) return section;
  }
  return page.sections.emplace_back(HelpSection{title, {}});
}

/// "Cut a rectangle out of a picture."
std::string Sentence(std::string description) {
  if (description[0] >= 'a' && description[0] <= 'z') description[0] -= 'a' - 'A';
  return description + '.';
}

HelpPage PageOf(const VerbParts& verb) {
  HelpPage page;
  page.description = Sentence(verb.help.description);
  page.usage = "rasterkit " + verb.help.name + " [OPTIONS]";
  page.paragraphs = verb.help.paragraphs;
  page.sections = {{"Files", {}}, {"Options", {kHelpFlag}}};
  for (const OptionParts& option : verb.options) {
    if (option.isHidden) continue;
    SectionOf(page, option.section).entries.push_back({option.entry.name, TextOf(option)});
    if (!option.name.empty()) continue;
    page.usage += option.isRequired ? ' ' + option.entry.name : " [" + option.entry.name + ']';
  }
  page.sections.push_back(verb.help.terms);
  page.examples = verb.help.examples;
  return page;
}

/// "--angle", or how the help names the files.
const std::string& NameOf(const OptionParts& option) {
  return option.name.empty() ? option.entry.name : option.name;
}

void Print(const HelpPage& page) {
  std::fputs(HelpText(page, OutputColumns()).c_str(), stdout);
}

}  // namespace

struct CommandLine::Parts {
  CLI::App app;
  HelpPage help;
  /// Not a vector: verbs point to them.
  std::deque<VerbParts> verbs;

  const VerbParts* Chosen() const {
    for (const VerbParts& verb : verbs) {
      if (verb.parsed->parsed()) return &verb;
    }
    return nullptr;
  }

  int PrintHelp() const {
    if (const VerbParts* const verb = Chosen()) {
      Print(PageOf(*verb));
      return exitDone;
    }
    HelpPage page = help;
    std::vector<HelpEntry> list;
    for (const VerbParts& verb : verbs) list.push_back({verb.help.name, verb.help.description});
    page.sections.insert(
        page.sections.begin(),
        {{"Verbs", list},
         {"Options",
          {kHelpFlag,
           {"--version", "print the version; with -v also how untrusted files are read"}}}});
    Print(page);
    return exitDone;
  }

  /// Says which option has too few or too many values; `what` begins with its name and a colon.
  std::string Mismatch(const std::string& what) const {
    const std::string name = what.substr(0, what.find(':'));
    const VerbParts* const verb = Chosen();
    if (verb == nullptr) return what;
    for (const OptionParts& option : verb->options) {
      if (option.parsed->get_name() != name) continue;
      if (option.name.empty()) return "the required files are " + option.entry.name;
      return name + (option.parsed->count() > 1 ? " was given more than once" : " needs a value");
    }
    return what;
  }

  /// Names the first argument that nothing takes, and the word that it may stand for.
  std::string Unknown(const std::vector<std::string>& arguments) const {
    const VerbParts* const verb = Chosen();
    const std::string& text = arguments.front();
    const bool isOption = text.starts_with('-');
    std::vector<std::string> words;
    if (isOption) {
      words.emplace_back("--help");
      if (verb == nullptr) words.emplace_back("--version");
      for (const OptionParts& option :
           verb != nullptr ? verb->options : std::deque<OptionParts>()) {
        if (!option.isHidden && !option.name.empty()) words.push_back(option.name);
      }
    } else if (verb == nullptr) {
      for (const VerbParts& other : verbs) words.push_back(other.help.name);
    }
    const char* const kind = isOption          ? "unknown option: "
                             : verb == nullptr ? "unknown verb: "
                                               : "unknown argument: ";
    return kind + text + DidYouMean(text.substr(0, text.find('=')), words);
  }

  /// True if the value goes on in the next argument.
  bool IsOpen(const std::string& name, const std::string& value) const {
    for (const VerbParts& verb : verbs) {
      for (const OptionParts& option : verb.options) {
        const auto& words = option.openWords;
        if (option.name == name && std::count(words.begin(), words.end(), value) > 0) return true;
      }
    }
    return false;
  }

  /// The arguments after the program's name, with values of two words in one.
  std::vector<std::string> WholeArguments(int argc, char** argv) const {
    std::vector<std::string> arguments;
    bool hasOptions = true;
    for (int i = 1; i < argc; ++i) {
      std::string text = argv[i];
      hasOptions = hasOptions && text != "--";
      const size_t equals = text.find('=');
      const std::string name = equals != std::string::npos ? text.substr(0, equals)
                               : arguments.empty()         ? std::string()
                                                           : arguments.back();
      const std::string value = equals != std::string::npos ? text.substr(equals + 1) : text;
      if (hasOptions && i + 1 < argc && IsOpen(name, value)) {
        text += ' ';
        text += argv[++i];
      }
      arguments.push_back(std::move(text));
    }
    return arguments;
  }

  int Refuse(const std::string& what) const {
    const VerbParts* const verb = Chosen();
    const std::string name = verb == nullptr ? "rasterkit" : "rasterkit " + verb->help.name;
    std::fprintf(stderr, "%s: %s\nRun '%s --help' for help.\n", name.c_str(),
                 OnOneLine(what).c_str(), name.c_str());
    return exitWrongUsage;
  }
};

CommandLine::CommandLine(const HelpPage& help, const std::string& version)
    : parts_(std::make_unique<Parts>()) {
  parts_->help = help;
  parts_->app.set_version_flag("--version", version);
  parts_->app.set_help_flag("-h,--help");
}

CommandLine::~CommandLine() = default;

Verb CommandLine::AddVerb(const VerbHelp& help) {
  VerbParts& verb = parts_->verbs.emplace_back();
  verb.parsed = parts_->app.add_subcommand(help.name);
  verb.help = help;
  return Verb(verb);
}

void CommandLine::AddToAllVerbs(const std::function<void(Verb& verb)>& add) {
  for (VerbParts& parts : parts_->verbs) {
    Verb verb(parts);
    add(verb);
  }
}

std::optional<int> CommandLine::Parse(int argc, char** argv) {
  try {
    std::vector<std::string> arguments = parts_->WholeArguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end());
    parts_->app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return parts_->PrintHelp();
  } catch (const CLI::CallForVersion& version) {
    std::printf("%s\n", version.what());
    return exitDone;
  } catch (const CLI::ExtrasError&) {
    return parts_->Refuse(parts_->Unknown(parts_->app.remaining(true)));
  } catch (const CLI::ArgumentMismatch& error) {
    return parts_->Refuse(parts_->Mismatch(error.what()));
  } catch (const CLI::ParseError& error) {
    return parts_->Refuse(error.what());
  }
  const VerbParts* const verb = parts_->Chosen();
  if (verb == nullptr) return parts_->Refuse("a verb is required");
  for (const OptionParts& option : verb->options) {
    if (option.isRequired && option.parsed->count() == 0) {
      return parts_->Refuse(NameOf(option) + " is required");
    }
  }
  return std::nullopt;
}

size_t CommandLine::ChosenVerb() const {
  size_t index = 0;
  while (index < parts_->verbs.size() && !parts_->verbs[index].parsed->parsed()) ++index;
  return index;
}

}  // namespace rasterkit::tool
