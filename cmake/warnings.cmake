# One interface target that every target of ours links: warnings are errors, sanitizers where asked for, and small
# programs in a release.
add_library(karno_flags INTERFACE)
target_compile_options(karno_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
  $<$<BOOL:${KARNO_WARNINGS_AS_ERRORS}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # Both see things in std::string and std::variant that are not there once g++ 12 optimises (GCC bugs 105651 and
  # 105562). The other compiler and the sanitizers look for the real ones.
  target_compile_options(karno_flags INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(KARNO_SANITIZE STREQUAL "address")
  # Whether an object is what it is said to be is asked by way of a pipe, which is not to be had where descriptors are
  # short.
  target_compile_options(karno_flags INTERFACE
    -fsanitize=address,undefined -fno-sanitize=vptr -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(karno_flags INTERFACE -fsanitize=address,undefined)
elseif(KARNO_SANITIZE STREQUAL "fuzzer")
  # The fuzz targets themselves bring the fuzzer's entry.
  target_compile_options(karno_flags INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  target_link_options(karno_flags INTERFACE -fsanitize=address,undefined)
elseif(KARNO_SANITIZE STREQUAL "thread")
  target_compile_options(karno_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(karno_flags INTERFACE -fsanitize=thread)
endif()
if(NOT APPLE AND CMAKE_BUILD_TYPE STREQUAL "Release")
  # What nothing calls is left out of the programs, as the linker for macOS is told, too.
  target_compile_options(karno_flags INTERFACE -ffunction-sections -fdata-sections)
  target_link_options(karno_flags INTERFACE LINKER:--gc-sections)
endif()
