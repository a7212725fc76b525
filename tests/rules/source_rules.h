#pragma once

#include <string>
#include <vector>

#include "room_table.h"
#include "source_tree.h"

namespace source_rules {

// Each rule gives one text for each place that breaks it: "FILE: what is wrong"; none when all is well.
using Violations = std::vector<std::string>;

// Every file stands in a room, every room holds a file, and nothing is included that the table does not allow. Headers
// of the system, which no room names, are for files below linux/ and windows/ only.
Violations CheckIncludes(const SourceTree& sources, const RoomTable& rooms);

// No header asks for the system that it is compiled for, nor does a source that is not a test; what belongs to one
// system stands below linux/ or windows/ and carries no system in its name.
Violations CheckSystems(const SourceTree& sources);

// Who checks where fields of a class stand (offsetof) checks all of them; the compiler sees to their order.
Violations CheckFieldOrders(const SourceTree& sources);

// No file has more than 400 lines.
Violations CheckLengths(const SourceTree& sources);

}  // namespace source_rules
