#include "known_violations.h"

namespace source_rules {

const std::vector<std::string_view>& KnownViolations() {
    static const std::vector<std::string_view> known = {
        // Rooms that are being made.
        "apps/app_system/*: stands in no room",
        "apps/app_system/*: may not include apps/app_system/*",
        "apps/stop_signal/*: stands in no room",
        "apps/stop_signal/*: may not include *",
        "*: may not include apps/app_system/*",
        "*: may not include apps/stop_signal/*",
        // Sources of one system that are not yet in its folder.
        "*_posix.cpp: *",
        "*_posix_test.cpp: *",
        "*_win32.cpp: *",
        "*_win32.h: *",
        "*_win32_test.cpp: *",
        "apps/settings_host/sleep_inhibitor_logind.cpp: *",
        "apps/update_service/sha256_digest_openssl.cpp: *",
        "apps/settings_host/child_programs.h: asks for the system",
        "apps/update_service/catalogue.cpp: asks for the system",
        "apps/update_service/work_files.cpp: asks for the system",
        // What tests share, in rooms of the product.
        "apps/settings_host/fake_login_service.*: *",
        "apps/settings_host/private_bus.*: *",
        "apps/update_service/service_test_support.h: *",
        "apps/update_service/test_*: *",
        "plugin/*_fixture.h: *",
        "tests/fakes/seam.h: asks for the system",
        "tests/support/portable/own_folder.h: asks for the system",
    };
    return known;
}

}  // namespace source_rules
