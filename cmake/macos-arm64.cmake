# Apple silicon, which starts with macOS 11.0.
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(KARNO_ZIG_TARGET aarch64-macos.11.0)
include(${CMAKE_CURRENT_LIST_DIR}/macos-common.cmake)
