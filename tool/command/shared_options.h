// Options that several verbs have. Each means the same everywhere.

#pragma once

#include <string>

#include "tool/command/options.h"
#include "tool/command/output_options.h"

namespace rasterkit::tool {

/// Adds the files and the options about files and results, except --type. `valueName` names the
/// files in the help.
void AddOutputOptions(
    Verb& verb, OutputOptions& options, const std::string& valueName = "IN OUT",
    const std::string& description =
        "one input, then the output; with --out-dir any number of inputs and no output");
void AddType(Verb& verb, OutputOptions& options);

/// Each function adds the option of that name.
Option AddAngle(Verb& verb, PictureOptions& options);
void AddBackground(Verb& verb, PictureOptions& options);
/// --background of verbs that uncover no corners.
void AddSolidBackground(Verb& verb, PictureOptions& options);
void AddBits(Verb& verb, PictureOptions& options);
void AddQuality(Verb& verb, PictureOptions& options);
void AddCompression(Verb& verb, PictureOptions& options);
/// --dpi and --size of metafiles, which exclude each other.
void AddMetafileSize(Verb& verb, PictureOptions& options);
/// --threads of verbs whose own work runs on several threads.
void AddThreads(Verb& verb, PictureOptions& options);
/// --threads of verbs that use threads only to read and write files.
void AddFileThreads(Verb& verb, PictureOptions& options);

}  // namespace rasterkit::tool
