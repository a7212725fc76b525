#include "pipe_security.h"

#include <sddl.h>

#include <memory>
#include <system_error>

#include "base/handle.h"

namespace ipc_client {
namespace {

[[noreturn]] void FailWithLastError(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

struct LocalDeleter {
    void operator()(void* memory) const { LocalFree(memory); }
};

}  // namespace

std::wstring UserOf(HANDLE process) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(process, TOKEN_QUERY, &opened)) FailWithLastError("OpenProcessToken");
    const base::OwnedHandle token(opened);
    alignas(TOKEN_USER) char user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    DWORD size = 0;
    if (!GetTokenInformation(token.Handle(), TokenUser, user, sizeof user, &size))
        FailWithLastError("GetTokenInformation");
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(user)->User.Sid, &text)) {
        FailWithLastError("ConvertSidToStringSid");
    }
    const std::unique_ptr<wchar_t, LocalDeleter> owned(text);
    return text;
}

OwnUserAlone::OwnUserAlone() {
    // A protected list with one entry: everything is allowed to this user, nothing to anybody else.
    const std::wstring rule = L"D:P(A;;GA;;;" + UserOf(GetCurrentProcess()) + L")";
    m_attributes.nLength = sizeof m_attributes;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(rule.c_str(), SDDL_REVISION_1,
                                                              &m_attributes.lpSecurityDescriptor, nullptr)) {
        FailWithLastError("ConvertStringSecurityDescriptorToSecurityDescriptor");
    }
}

OwnUserAlone::~OwnUserAlone() { LocalFree(m_attributes.lpSecurityDescriptor); }

}  // namespace ipc_client
