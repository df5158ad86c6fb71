# A build on a Mac, with the compiler and the C++ library of Apple's tools. The cross compiler brings a library of its
# own inside the programs, so what it builds reaches back further.
set(system_min 10.15)
# From these on the library has all algorithms of std::ranges. Apple's numbers are those of its tools.
set(apple_compiler_min 15)
set(clang_min 16)

set(compiler "${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}")
if(CMAKE_CXX_COMPILER_ID STREQUAL "AppleClang")
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS ${apple_compiler_min})
    message(FATAL_ERROR "${compiler} is too old for the C++20 of these sources: the Command Line Tools "
      "${apple_compiler_min} or later are needed. \"softwareupdate --list\" shows the newest for this Mac and "
      "\"xcode-select --install\" installs them; \"xcode-select --print-path\" tells which ones are used. They need "
      "macOS 13.5; on an older Mac, scripts/cross-macos builds the same on Linux.")
  endif()
elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS ${clang_min})
    message(FATAL_ERROR "${compiler} is too old for the C++20 of these sources: clang ${clang_min} or later is needed, "
      "or Apple's compiler from the Command Line Tools ${apple_compiler_min} on, without CMAKE_CXX_COMPILER.")
  endif()
else()
  message(FATAL_ERROR "${compiler} cannot read the headers of macOS, which have blocks: Apple's compiler from the "
    "Command Line Tools ${apple_compiler_min} on is needed, without CMAKE_CXX_COMPILER.")
endif()

if(NOT CMAKE_OSX_DEPLOYMENT_TARGET)
  message(FATAL_ERROR "A build on a Mac says in CMAKE_OSX_DEPLOYMENT_TARGET which macOS it needs, for Info.plist has "
    "to say the same: \"cmake --preset macos-native\".")
elseif(CMAKE_OSX_DEPLOYMENT_TARGET VERSION_LESS ${system_min})
  message(FATAL_ERROR "A build on a Mac needs macOS ${system_min} or later as its CMAKE_OSX_DEPLOYMENT_TARGET, since "
    "Apple's C++ library has std::filesystem only from then on. scripts/cross-macos on Linux builds for 10.14.")
endif()
set(KARNO_SYSTEM_MIN ${CMAKE_OSX_DEPLOYMENT_TARGET})
