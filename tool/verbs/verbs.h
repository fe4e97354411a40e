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
VerbRunner AddEditVerb(CLI::App& app);
VerbRunner AddSaveAsVerb(CLI::App& app);
VerbRunner AddConvertVerb(CLI::App& app);
VerbRunner AddRotateVerb(CLI::App& app);
VerbRunner AddMirrorVerb(CLI::App& app);
VerbRunner AddCropVerb(CLI::App& app);
VerbRunner AddResizeVerb(CLI::App& app);
VerbRunner AddGrayVerb(CLI::App& app);
VerbRunner AddMonoVerb(CLI::App& app);
VerbRunner AddBrightnessVerb(CLI::App& app);
VerbRunner AddContrastVerb(CLI::App& app);
VerbRunner AddAdjustVerb(CLI::App& app);
VerbRunner AddWhitenVerb(CLI::App& app);
VerbRunner AddRecolorVerb(CLI::App& app);
VerbRunner AddKeyColorVerb(CLI::App& app);
VerbRunner AddPdfWhiteVerb(CLI::App& app);
VerbRunner AddOpaqueVerb(CLI::App& app);
VerbRunner AddSwapAlphaVerb(CLI::App& app);
VerbRunner AddPaletteVerb(CLI::App& app);
VerbRunner AddCombineVerb(CLI::App& app);
VerbRunner AddWatermarkVerb(CLI::App& app);
VerbRunner AddIconVerb(CLI::App& app);
VerbRunner AddCompareVerb(CLI::App& app);
VerbRunner AddGeoTiffVerb(CLI::App& app);
VerbRunner AddExifVerb(CLI::App& app);
VerbRunner AddPdfVerb(CLI::App& app);

}  // namespace rasterkit::tool
