#include "errors_in_a_pipe.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>

namespace test_support {
namespace {

HANDLE HandleOf(std::intptr_t value) { return reinterpret_cast<HANDLE>(value); }

}  // namespace

ErrorsInAPipe::ErrorsInAPipe() : m_before(reinterpret_cast<std::intptr_t>(GetStdHandle(STD_ERROR_HANDLE))) {
    HANDLE reader = nullptr, writer = nullptr;
    EXPECT_TRUE(CreatePipe(&reader, &writer, nullptr, 0));
    m_reader = reinterpret_cast<std::intptr_t>(reader);
    m_writer = reinterpret_cast<std::intptr_t>(writer);
    SetStdHandle(STD_ERROR_HANDLE, writer);
}

ErrorsInAPipe::~ErrorsInAPipe() {
    EndWriting();
    CloseHandle(HandleOf(m_reader));
}

void ErrorsInAPipe::EndWriting() {
    if (m_writer == 0) return;
    SetStdHandle(STD_ERROR_HANDLE, HandleOf(m_before));
    CloseHandle(HandleOf(m_writer));
    m_writer = 0;
}

std::string ErrorsInAPipe::ReadAll() {
    std::string all;
    std::array<char, 65536> buffer{};
    for (DWORD got = 0; ReadFile(HandleOf(m_reader), buffer.data(), buffer.size(), &got, nullptr) && got != 0;) {
        all.append(buffer.data(), got);
    }
    return all;
}

std::size_t ErrorsInAPipe::Readable() const {
    DWORD bytes = 0;
    EXPECT_TRUE(PeekNamedPipe(HandleOf(m_reader), nullptr, 0, nullptr, &bytes, nullptr));
    return bytes;
}

}  // namespace test_support
