#pragma once

#include <vector>

#include "tool/pictures/change_picture.h"

namespace rasterkit::tool {

/// The pages of `options.pages`, each once, of a file of `count` pages. Throws Failure if one does
/// not exist.
std::vector<int> ChosenPages(const Job& job, const PictureOptions& options, int count);

/// What of an edit removes things: it must reach every page.
MetadataEdit StripsOf(const MetadataEdit& edit);

/// What the pages lack that are not changed themselves.
MetadataEdit EditOfOthers(const PictureOptions& options);

/// Changes these pages of a document, and strips the others if the options say so, then saves it or
/// says what would be written. Throws Failure.
JobResult ChangePages(Document document, const std::vector<int>& pages, const Job& job,
                      const PictureOptions& options, bool isDryRun, const PictureChange& change);

}  // namespace rasterkit::tool
