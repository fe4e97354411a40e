// The command line as the verbs see it: a verb lists its options and positional files, each bound
// to a variable. Variables must live as long as the command line.

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tool/command/help_page.h"

namespace rasterkit::tool {

struct OptionParts;
struct VerbParts;

/// Inclusive.
struct NumberRange {
  int least = 0, most = 0;
};

/// Says what is wrong with a text, or returns an empty string.
using TextCheck = std::function<std::string(const std::string& text)>;

/// What the help says about a verb. Texts are plain paragraphs without line breaks.
struct VerbHelp {
  std::string name;
  /// What the verb does, for the list of verbs: "cut a rectangle out of a picture".
  std::string description;
  std::vector<std::string> paragraphs;
  std::vector<std::string> examples;
  /// Terms explained after the options, such as the choices of one of them.
  HelpSection terms = {};
};

/// An option of a verb: a handle that is cheap to copy. Each function returns the same option.
class Option {
 public:
  Option Required() const;
  /// Moves the option to a section of the help; options without one stand in "Options".
  Option In(const std::string& section) const;
  /// Keeps the option out of the help: another name of an option, for command lines that use it.
  Option Hidden() const;
  /// After one of these words the next argument belongs to the value: "percent 2".
  Option TakesWordAfter(const std::vector<std::string>& words) const;
  /// Makes it wrong usage to give this option without the other one.
  Option Needs(const Option& other) const;
  /// Makes it wrong usage to give both options.
  Option Excludes(const Option& other) const;

 private:
  friend class Verb;
  explicit Option(OptionParts& parts) : parts_(&parts) {}

  OptionParts* parts_;
};

/// A verb of the command line: a handle that is cheap to copy. Options appear in the help in the
/// order in which they are added. `name` begins with "--"; `valueName` stands for the value in the
/// help.
class Verb {
 public:
  /// "convert".
  const std::string& Name() const;

  Option Flag(const std::string& name, bool& value, const std::string& description);
  /// A flag that also has a name of one letter, such as "-q".
  Option Flag(const std::string& letter, const std::string& name, bool& value,
              const std::string& description);
  /// A flag to which one word can be added: "--strip" or "--strip=all". `take` is told whether it
  /// was.
  Option FlagOrWord(const std::string& name, const std::string& word,
                    const std::function<void(bool hasWord)>& take, const std::string& description);
  Option Number(const std::string& name, const std::string& valueName, int& value,
                const NumberRange& range, const std::string& description);
  Option Number(const std::string& name, const std::string& valueName, std::optional<int>& value,
                const NumberRange& range, const std::string& description);
  /// A real number. `check` sees it as typed.
  Option Real(const std::string& name, const std::string& valueName, double& value,
              const TextCheck& check, const std::string& description);
  /// Any text if `check` is empty.
  Option Text(const std::string& name, const std::string& valueName, std::string& value,
              const TextCheck& check, const std::string& description);
  /// A text that may be given several times.
  Option Texts(const std::string& name, const std::string& valueName,
               std::vector<std::string>& values, const TextCheck& check,
               const std::string& description);
  /// A text that `take` reads; `check` has accepted it by then.
  Option Parsed(const std::string& name, const std::string& valueName,
                const std::function<void(const std::string& text)>& take, const TextCheck& check,
                const std::string& description);
  /// One of a few whole numbers or words.
  Option OneOf(const std::string& name, const std::string& valueName, int& value,
               const std::vector<int>& choices, const std::string& description);
  Option OneOf(const std::string& name, const std::string& valueName, std::string& value,
               const std::vector<std::string>& choices, const std::string& description);

  /// The positional argument of a verb that takes one file at most.
  void File(const std::string& valueName, std::string& file, const std::string& description,
            bool isRequired);
  /// The positional arguments of a verb that takes one file or more.
  void Files(const std::string& valueName, std::vector<std::string>& files,
             const std::string& description);
  /// The positional arguments of a verb that takes exactly `count` files.
  void Files(const std::string& valueName, std::vector<std::string>& files, int count,
             const std::string& description);

 private:
  friend class CommandLine;
  explicit Verb(VerbParts& parts) : parts_(&parts) {}

  VerbParts* parts_;
};

/// A check that accepts only the given words.
TextCheck CheckChoice(const std::vector<std::string>& choices);

/// Reads a real number as the options do; nothing if the text is not one.
std::optional<double> ReadReal(const std::string& text);

}  // namespace rasterkit::tool
