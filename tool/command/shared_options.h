// Options that several verbs have. Each means the same everywhere.

#pragma once

#include <string>

#include "tool/command/options.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Adds the files and the options about files and results, except --format. `valueName` names the
/// files in the help.
void AddOutputOptions(
    Verb& verb, OutputOptions& options, const std::string& valueName = "IN OUT",
    const std::string& description =
        "one input, then the output; with --out-dir any number of inputs and no output");
/// --format, and --type as another name of it.
void AddFormat(Verb& verb, OutputOptions& options);

/// Check of options that are angles.
std::string CheckAngle(const std::string& text);

/// Each function adds the option of that name.
Option AddAngle(Verb& verb, PictureOptions& options);
/// --fill, --filter and --background of verbs that uncover corners.
void AddCorners(Verb& verb, PictureOptions& options);
/// `choices` is the end of the description: "nearest or linear [nearest]".
void AddFilter(Verb& verb, PictureOptions& options, const std::string& choices,
               const std::vector<std::string>& words);
/// --background of verbs that uncover no corners.
void AddBackground(Verb& verb, PictureOptions& options);
void AddBits(Verb& verb, PictureOptions& options);
/// --stretch of pictures with numbers of more than 8 bits.
void AddStretch(Verb& verb, PictureOptions& options);
void AddQuality(Verb& verb, PictureOptions& options);
void AddSampling(Verb& verb, PictureOptions& options);
void AddPngLevel(Verb& verb, PictureOptions& options);
void AddLossless(Verb& verb, PictureOptions& options);
/// --world-file and --position-from.
void AddPosition(Verb& verb, PictureOptions& options);
/// --strip, --strip-gps and --strip-maker-note.
void AddStrip(Verb& verb, PictureOptions& options);
void AddCompression(Verb& verb, PictureOptions& options);
void AddPages(Verb& verb, PictureOptions& options);
/// --dpi and --size of metafiles, which exclude each other.
void AddMetafileSize(Verb& verb, PictureOptions& options);
void AddThreads(Verb& verb, PictureOptions& options);
/// --scratch, and --band-rows for tests.
void AddFlow(Verb& verb, PictureOptions& options);

}  // namespace rasterkit::tool
