#pragma once

#include <functional>

namespace rasterkit::tool {

class CommandLine;

/// Runs a verb after the command line was parsed. Returns the exit code.
using VerbRunner = std::function<int()>;

/// Each function adds a verb with its options and its help to the command line.
VerbRunner AddInfoVerb(CommandLine& line);
VerbRunner AddEditVerb(CommandLine& line);
VerbRunner AddSaveAsVerb(CommandLine& line);
VerbRunner AddConvertVerb(CommandLine& line);
VerbRunner AddApplyVerb(CommandLine& line);
VerbRunner AddRotateVerb(CommandLine& line);
VerbRunner AddMirrorVerb(CommandLine& line);
VerbRunner AddCropVerb(CommandLine& line);
VerbRunner AddResizeVerb(CommandLine& line);
VerbRunner AddThumbnailVerb(CommandLine& line);
VerbRunner AddGrayVerb(CommandLine& line);
VerbRunner AddMonoVerb(CommandLine& line);
VerbRunner AddBrightnessVerb(CommandLine& line);
VerbRunner AddContrastVerb(CommandLine& line);
VerbRunner AddAdjustVerb(CommandLine& line);
VerbRunner AddWhitenVerb(CommandLine& line);
VerbRunner AddRecolorVerb(CommandLine& line);
VerbRunner AddKeyColorVerb(CommandLine& line);
VerbRunner AddPdfWhiteVerb(CommandLine& line);
VerbRunner AddOpaqueVerb(CommandLine& line);
VerbRunner AddSwapAlphaVerb(CommandLine& line);
VerbRunner AddPaletteVerb(CommandLine& line);
VerbRunner AddCombineVerb(CommandLine& line);
VerbRunner AddWatermarkVerb(CommandLine& line);
VerbRunner AddIconVerb(CommandLine& line);
VerbRunner AddCompareVerb(CommandLine& line);
VerbRunner AddGeoTiffVerb(CommandLine& line);
VerbRunner AddExifVerb(CommandLine& line);
VerbRunner AddPagesVerb(CommandLine& line);
VerbRunner AddPdfVerb(CommandLine& line);

}  // namespace rasterkit::tool
