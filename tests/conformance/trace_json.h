#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "seam.h"

// One recorded event in the form of the scenarios, for example ["post", 11665409, 11665447, null]. A post whose fixed
// header fields are not what every post has carries a note of it.
nlohmann::json TraceEntry(const seam::Event& event);

// Whether an expected entry matches a seen one: `*` in an expected log line stands for a run of digits.
bool EntryMatches(const nlohmann::json& expected, const nlohmann::json& seen);
