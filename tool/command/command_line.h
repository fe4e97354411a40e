#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tool/command/options.h"

namespace rasterkit::tool {

/// The arguments of the process: one verb, its options and its files.
class CommandLine {
 public:
  /// `help` is the page of the tool; the list of verbs and the options are added to it.
  /// `version` is printed for --version.
  CommandLine(const HelpPage& help, const std::string& version);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  Verb AddVerb(const VerbHelp& help);
  /// Calls `add` for each verb that was added so far, for options that all of them have.
  void AddToAllVerbs(const std::function<void(Verb& verb)>& add);

  /// Sets the variables of the options. Returns an exit code if there is nothing left to do: help
  /// or the version was printed on stdout, or what is wrong with the arguments on stderr.
  std::optional<int> Parse(int argc, char** argv);

  /// The verb that was given, counted from 0 in the order in which verbs were added. Valid after
  /// Parse returned nothing.
  size_t ChosenVerb() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace rasterkit::tool
