#pragma once

#include <cstddef>

namespace ipc_test {

// While it lives, this process can start no threads. Not while another thread starts one that it needs.
class NoMoreThreads {
public:
    NoMoreThreads();
    ~NoMoreThreads();
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

private:
    std::size_t m_stackSize = 0;  // [bytes] of threads before
};

}  // namespace ipc_test
