#pragma once

#include <string>
#include <vector>

namespace source_rules {

// One row of the table of rooms. Names are patterns (source_tree.h).
struct Room {
    std::string folder;                    // with all that is below it; the innermost room of a file counts
    std::vector<std::string> may_include;  // rooms, files, and in angle brackets headers that are not the project's
};

class RoomTable {
public:
    // Reads the table of a Markdown page whose heads are "room", "what it is" and "may include": names stand in
    // backticks. The row whose name starts with "*" holds for files of that name in all rooms, beside what their room
    // allows. Throws std::runtime_error when there is no such table.
    static RoomTable FromMarkdown(const std::vector<std::string>& lines);

    const std::vector<Room>& Rooms() const { return rooms_; }

    // The room that a file stands in; null when it stands in none.
    const Room* RoomOf(const std::string& file) const;

    // Whether `file` may include `included`, another file of the project.
    bool MayInclude(const std::string& file, const std::string& included) const;

    // Whether the room of `file` names that header, which is neither the project's nor the standard library's.
    bool MayIncludeForeign(const std::string& file, const std::string& header) const;

private:
    bool Allows(const Room& room, const std::string& included) const;
    std::vector<const Room*> RowsFor(const std::string& file) const;

    std::vector<Room> rooms_;
    std::vector<Room> everywhere_;
};

}  // namespace source_rules
