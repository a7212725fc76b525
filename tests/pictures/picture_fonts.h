#pragma once

#include <string>

// Whether this process draws with the fonts of the reference pictures (fonts.conf). Empty when it does, else what is
// missing and what to do about it.
std::string WhatFontsLack();
