#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace test_support {

// Standard error is a pipe while this lives.
class ErrorsInAPipe {
public:
    ErrorsInAPipe();
    ~ErrorsInAPipe();
    ErrorsInAPipe(const ErrorsInAPipe&) = delete;
    ErrorsInAPipe& operator=(const ErrorsInAPipe&) = delete;

    // Standard error is what it was before. Not while a thread writes.
    void EndWriting();

    // To the end of writing.
    std::string ReadAll();

    // Bytes that are in the pipe now.
    std::size_t Readable() const;

private:
    // Descriptors, on Windows handles.
    std::intptr_t m_before = 0;
    std::intptr_t m_reader = 0;
    std::intptr_t m_writer = 0;  // 0: ended
};

}  // namespace test_support
