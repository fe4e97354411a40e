#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace rasterkit::tool {

/// The help of a verb: values by the name that stands for them (descriptions say their ranges), and
/// which options need or exclude which others in words.
class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat();

  std::string make_group(std::string group, bool isPositional,
                         std::vector<const CLI::Option*> options) const override;
  std::string make_option_name(const CLI::Option* option, bool isPositional) const override;
  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_option_desc(const CLI::Option* option) const override;
  std::string make_option_usage(const CLI::Option* option) const override;
};

}  // namespace rasterkit::tool
