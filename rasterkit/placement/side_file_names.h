#pragma once

#include <string>
#include <vector>

#include <rasterkit/runtime/export.h>

/// Names of the files beside a picture. A name is split at its last dot after the last "/"; a name
/// that only begins with a dot (".tif") has the extension "tif" and no stem, as GDAL reads it.
namespace rasterkit::detail {

/// Replaces the extension: "./maps.d/plan" with "prj" gives "./maps.d/plan.prj".
RASTERKIT_EXPORT std::string WithExtension(const std::string& picture,
                                           const std::string& extension);

/// WorldFileNames, and the names whose extension has letters of both cases ("plan.Tfw") behind
/// those of the same letters. Extensions of more than five letters have none.
std::vector<std::string> AllWorldFileNames(const std::string& picture);

/// Those of AllWorldFileNames that exist, in the order in which they count, each file once where
/// the system takes no care of case. Names that the system says nothing about are among them.
std::vector<std::string> WorldFilesBeside(const std::string& picture);

/// "plan.prj" and "plan.PRJ".
std::vector<std::string> ProjectionNames(const std::string& picture);

/// "plan.tif.aux.xml".
std::string AuxXmlName(const std::string& picture);

/// Files that bear the picture's whole name and hold what its pixels are: "plan.tif.aux.xml",
/// "plan.tif.ovr", "plan.tif.msk" and "plan.tif.msk.ovr".
std::vector<std::string> AttachedNames(const std::string& picture);

/// Other pictures in the folder with the same stem: "plan.jpg" and "plan.png" beside "plan.tif".
/// Reads the folder; empty if that fails.
std::vector<std::string> Neighbors(const std::string& picture);

}  // namespace rasterkit::detail
