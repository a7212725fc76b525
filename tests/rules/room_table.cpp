#include "room_table.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <stdexcept>

#include "source_tree.h"

namespace source_rules {
namespace {

std::vector<std::string> Cells(const std::string& line) {
    std::vector<std::string> cells;
    if (!line.starts_with('|')) return cells;
    std::istringstream in(line.substr(1));
    for (std::string cell; std::getline(in, cell, '|');) {
        const std::size_t start = cell.find_first_not_of(' ');
        if (start == std::string::npos) continue;
        cells.push_back(cell.substr(start, cell.find_last_not_of(' ') - start + 1));
    }
    return cells;
}

// The words in backticks.
std::vector<std::string> Names(const std::string& cell) {
    std::vector<std::string> names;
    std::istringstream in(cell);
    std::string text;
    for (bool quoted = false; std::getline(in, text, '`'); quoted = !quoted) {
        if (quoted) names.push_back(text);
    }
    return names;
}

// The room's folder as a pattern of what stands in it.
bool Holds(const Room& room, const std::string& file) { return Matches(room.folder + "/*", file); }

}  // namespace

RoomTable RoomTable::FromMarkdown(const std::vector<std::string>& lines) {
    RoomTable table;
    const std::vector<std::string> heads = {"room", "what it is", "may include"};
    auto row = std::find_if(lines.begin(), lines.end(), [&](const auto& line) { return Cells(line) == heads; });
    if (row == lines.end()) throw std::runtime_error("the page has no table of rooms");
    for (row += 2; row < lines.end() && row->starts_with('|'); ++row) {
        const std::vector<std::string> cells = Cells(*row);
        if (cells.size() != heads.size()) throw std::runtime_error("not a row of the table of rooms: " + *row);
        for (const std::string& name : Names(cells[0])) {
            auto& rows = name.starts_with('*') ? table.everywhere_ : table.rooms_;
            rows.push_back({name, Names(cells[2])});
        }
    }
    return table;
}

const Room* RoomTable::RoomOf(const std::string& file) const {
    const Room* innermost = nullptr;
    for (const Room& room : rooms_) {
        if (!Holds(room, file)) continue;
        if (innermost == nullptr || room.folder.size() > innermost->folder.size()) innermost = &room;
    }
    return innermost;
}

std::vector<const Room*> RoomTable::RowsFor(const std::string& file) const {
    std::vector<const Room*> rows;
    if (const Room* room = RoomOf(file)) rows.push_back(room);
    for (const Room& row : everywhere_) {
        if (Matches(row.folder, NameOf(file))) rows.push_back(&row);
    }
    return rows;
}

bool RoomTable::Allows(const Room& room, const std::string& included) const {
    const Room* target = RoomOf(included);
    if (target == &room) return true;
    return std::any_of(room.may_include.begin(), room.may_include.end(), [&](const std::string& name) {
        return Matches(name, included) || (target != nullptr && Matches(name, target->folder));
    });
}

bool RoomTable::MayInclude(const std::string& file, const std::string& included) const {
    const auto rows = RowsFor(file);
    return std::any_of(rows.begin(), rows.end(), [&](const Room* room) { return Allows(*room, included); });
}

bool RoomTable::MayIncludeForeign(const std::string& file, const std::string& header) const {
    const auto rows = RowsFor(file);
    return std::any_of(rows.begin(), rows.end(), [&](const Room* room) {
        return std::any_of(room->may_include.begin(), room->may_include.end(),
                           [&](const std::string& name) { return Matches(name, '<' + header + '>'); });
    });
}

}  // namespace source_rules
