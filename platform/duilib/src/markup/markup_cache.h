#pragma once

#include <filesystem>
#include <memory>

#include "markup/markup_file.h"

namespace DuiLib {

// The parsed layout of a file, kept from call to call while the file stays the same. A file that changed so lately that
// its time stamp could miss a further change is read and compared again. Throws XmlError. UI turn.
std::shared_ptr<const MarkupFile> LoadMarkup(const std::filesystem::path& path);

}  // namespace DuiLib
