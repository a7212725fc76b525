// First of all: without its fonts, no picture says anything.
#include "picture_fonts.h"

#include <gtest/gtest.h>

namespace {

TEST(Fonts, ThoseOfTheReferencePicturesAreThere) { EXPECT_EQ(WhatFontsLack(), ""); }

}  // namespace
