# A build on a Mac, with the compiler and the C++ library of Apple's tools. The cross compiler brings a library of its
# own inside the programs, so what it builds reaches back further.
set(system_min 10.15)
set(compiler_min 14)
if(CMAKE_OSX_DEPLOYMENT_TARGET AND CMAKE_OSX_DEPLOYMENT_TARGET VERSION_LESS ${system_min})
  message(FATAL_ERROR "A build on a Mac needs macOS ${system_min} or later as its CMAKE_OSX_DEPLOYMENT_TARGET, since "
    "Apple's C++ library has std::filesystem only from then on. scripts/cross-macos on Linux builds for 10.14.")
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "AppleClang" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS ${compiler_min})
  message(FATAL_ERROR "The Command Line Tools ${compiler_min} or later are needed, for C++20: "
    "\"softwareupdate --list\" shows the newest, \"xcode-select --install\" installs them.")
endif()
