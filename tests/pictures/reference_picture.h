#pragma once

#include <gtest/gtest.h>

#include <string>

#include "duilib/paint_surface.h"

// Compares a picture with the one that is kept as reference/NAME.png. What fails says why, and leaves NAME.actual.png,
// NAME.expected.png and NAME.difference.png in the folder "pictures" of the build. With the environment variable
// BRINDLE_UPDATE_PICTURES=1 the picture becomes the reference instead.
testing::AssertionResult MatchesReference(const std::string& name, const DuiLib::PaintSurface& actual);
