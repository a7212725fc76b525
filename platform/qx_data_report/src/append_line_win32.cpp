#include <windows.h>

#include "append_line.h"

// A handle that may only append: the system puts each write at the file's end, whoever else writes.
bool AppendWhole(const std::filesystem::path& file, const std::string& text) {
    const HANDLE handle = CreateFileW(file.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const BOOL success = WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    const BOOL closed = CloseHandle(handle);
    return success && closed && written == text.size();
}
