#pragma once

#include <functional>

namespace CLI {
class App;
}

namespace rasterkit::tool {

/// Does a verb's work once the command line is parsed and returns the exit code.
using VerbRunner = std::function<int()>;

/// Each verb adds its subcommand, options and help to the command line.
VerbRunner AddInfoVerb(CLI::App& app);
VerbRunner AddConvertVerb(CLI::App& app);
VerbRunner AddRotateVerb(CLI::App& app);
VerbRunner AddGeoTiffVerb(CLI::App& app);
VerbRunner AddExifVerb(CLI::App& app);

}  // namespace rasterkit::tool
