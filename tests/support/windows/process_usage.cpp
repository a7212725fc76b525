#include "process_usage.h"

#include <windows.h>
// Behind it:
#include <psapi.h>
#include <tlhelp32.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>

#include "base/handle.h"
#include "base/reason.h"

namespace test_support {

namespace {

[[noreturn]] void Fail(int process) {
    throw std::runtime_error("process " + std::to_string(process) + " cannot be looked at: " + base::LastReason());
}

int ThreadsOf(int process) {
    const base::OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    if (!snapshot) Fail(process);
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    int threads = 0;
    for (BOOL found = Thread32First(snapshot.Handle(), &thread); found;
         found = Thread32Next(snapshot.Handle(), &thread)) {
        if (thread.th32OwnerProcessID == static_cast<DWORD>(process)) ++threads;
    }
    return threads;
}

}  // namespace

ProcessUsage UsageOf(int process) {
    const base::OwnedHandle handle(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, static_cast<DWORD>(process)));
    PROCESS_MEMORY_COUNTERS_EX memory{};
    DWORD handles = 0;
    const bool known =
        handle &&
        GetProcessMemoryInfo(handle.Handle(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory), sizeof memory) &&
        GetProcessHandleCount(handle.Handle(), &handles);
    if (!known) Fail(process);
    return {memory.PrivateUsage, ThreadsOf(process), static_cast<int>(handles)};
}

ProcessUsage OwnUsage() { return UsageOf(static_cast<int>(GetCurrentProcessId())); }

// Runtime libraries have heaps of their own.
std::uint64_t HeapInUse() {
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(std::size(heaps), heaps), std::size(heaps));
    std::uint64_t bytes = 0;
    for (DWORD i = 0; i < count; ++i) {
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) bytes += entry.cbData + entry.cbOverhead;
        }
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

}  // namespace test_support
