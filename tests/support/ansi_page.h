#pragma once

#include <gtest/gtest.h>

#include "kernel/code_pages.h"

// Another ANSI code page while this object lives; UTF-8 again afterwards.
class AnsiPage {
public:
    explicit AnsiPage(unsigned page) { EXPECT_TRUE(kernel::SetAnsiCodePage(page)); }
    ~AnsiPage() { kernel::SetAnsiCodePage(kernel::kCodePageUtf8); }
    AnsiPage(const AnsiPage&) = delete;
    AnsiPage& operator=(const AnsiPage&) = delete;
};
