# Intel Macs from macOS 10.14 on.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KARNO_ZIG_TARGET x86_64-macos.10.14)
include(${CMAKE_CURRENT_LIST_DIR}/macos-common.cmake)
