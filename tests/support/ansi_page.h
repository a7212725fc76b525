#pragma once

#include <gtest/gtest.h>

#include "kernel/code_pages.h"

// Another ANSI code page while this object lives; UTF-8 again afterwards. On Windows the page is the system's, and the
// only one that can be used.
class AnsiPage {
public:
    static bool CanBe(unsigned page) {
        const bool can = kernel::SetAnsiCodePage(page);
        kernel::SetAnsiCodePage(kernel::kCodePageUtf8);
        return can;
    }

    explicit AnsiPage(unsigned page) { EXPECT_TRUE(kernel::SetAnsiCodePage(page)); }
    ~AnsiPage() { kernel::SetAnsiCodePage(kernel::kCodePageUtf8); }
    AnsiPage(const AnsiPage&) = delete;
    AnsiPage& operator=(const AnsiPage&) = delete;
};
