# With fmt's headers, as Debian packages both.
add_library(spdlog::spdlog_header_only INTERFACE IMPORTED)
target_include_directories(spdlog::spdlog_header_only INTERFACE ${CMAKE_CURRENT_LIST_DIR}/../../../include)
target_compile_definitions(spdlog::spdlog_header_only INTERFACE SPDLOG_FMT_EXTERNAL FMT_HEADER_ONLY)
