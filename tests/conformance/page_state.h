#pragma once

#include <nlohmann/json.hpp>

#include "duilib/paint_manager.h"

// The named controls of a page as a JSON object: name -> properties that differ from a fresh control's, and always
// "visible". A name means the control that took it last.
nlohmann::json PageState(DuiLib::CPaintManagerUI& manager);

struct PageDifference {
    nlohmann::json controls = nlohmann::json::object();  // changed properties of each changed or new control
    nlohmann::json removed = nlohmann::json::array();    // names that no control has any more, sorted
};

PageDifference Compare(const nlohmann::json& before, const nlohmann::json& after);
