#pragma once

/// Pictures that keep pixels, metadata, position and form together, and reading of picture files,
/// also of untrusted ones in a worker process.
#include <rasterkit/pictures/document/document.h>
#include <rasterkit/pictures/load_bitmap.h>
#include <rasterkit/pictures/open_options.h>
#include <rasterkit/pictures/picture.h>
#include <rasterkit/pictures/recipes/apply_recipe.h>
#include <rasterkit/pictures/recipes/recipe.h>
#include <rasterkit/pictures/recipes/recipe_output.h>
#include <rasterkit/pictures/recipes/recipe_text.h>
#include <rasterkit/pictures/recipes/steps_of_picture.h>
#include <rasterkit/pictures/report.h>
#include <rasterkit/pictures/row_sink.h>
#include <rasterkit/pictures/run.h>
#include <rasterkit/pictures/saving_options.h>
#include <rasterkit/pictures/steps.h>
