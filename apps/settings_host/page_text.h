#pragma once

#include <string>

#include "settings_window.h"

namespace settings_host {

// The page as a person would read it: title, then a line a row with its name, version, button or bar, and tool tip; the
// information text below, when it is opened. UTF-8, lines end with a line feed; empty when nothing is shown. Under the
// UI turn.
std::string PageText(SettingsWindow& window);

}  // namespace settings_host
