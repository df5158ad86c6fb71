# Cross-compiles for macOS with zig's clang. The including file says for which processor and lowest version.
set(CMAKE_SYSTEM_NAME Darwin)

# The projects that CMake makes to try the compiler read this file too, and use the same tools.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KARNO_CROSS_TOOLS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
if(NOT KARNO_CROSS_TOOLS)
  set(KARNO_CROSS_TOOLS ${CMAKE_BINARY_DIR}/cross-tools)
  execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../tools/cross/find-zig
    OUTPUT_VARIABLE zig OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  # Each tool is a sub-command of the one program, and CMake wants a program per tool. -s leaves out the paths of
  # object files that a debugger would follow. It stands here, as the optimisation does, where CMake's first look at
  # the compiler gets it too, since the compiler makes its C++ library anew for a link with another word on it.
  foreach(command c++ ar ranlib)
    set(arguments ${command})
    if(command STREQUAL "c++")
      string(APPEND arguments " -target ${KARNO_ZIG_TARGET} -s -Os")
    endif()
    file(CONFIGURE OUTPUT ${KARNO_CROSS_TOOLS}/${command}
      CONTENT "#!/bin/sh\nexec '${zig}' ${arguments} \"$@\"\n" @ONLY)
    file(CHMOD ${KARNO_CROSS_TOOLS}/${command} FILE_PERMISSIONS
      OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  endforeach()
endif()
set(CMAKE_CXX_COMPILER ${KARNO_CROSS_TOOLS}/c++)
set(CMAKE_AR ${KARNO_CROSS_TOOLS}/ar CACHE FILEPATH "Archiver")
set(CMAKE_RANLIB ${KARNO_CROSS_TOOLS}/ranlib CACHE FILEPATH "Archive indexer")
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool llvm-install-name-tool-14 REQUIRED)

# The target says the lowest version, and the compiler brings its own headers.
set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "Said by the compiler's target")
set(CMAKE_OSX_SYSROOT "" CACHE STRING "The compiler's own")

# The launcher waits more than it computes, so what is downloaded is small.
set(CMAKE_CXX_FLAGS_RELEASE "-Os -DNDEBUG" CACHE STRING "Flags of a release")

# Whatever find_package() and its kin see of this machine belongs to Linux.
set(CMAKE_FIND_ROOT_PATH ${KARNO_CROSS_TOOLS})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# A function newer than the lowest version would be missing when the program is loaded there. No path of the
# building machine goes into the program.
get_filename_component(source_folder ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
set(CMAKE_CXX_FLAGS_INIT
  "-Wunguarded-availability -fvisibility=hidden -fvisibility-inlines-hidden -ffile-prefix-map=${source_folder}/=")

# The text stubs stand for the system's libraries and declare all that is imported from them; what they lack does
# not link.
set(stubs ${CMAKE_CURRENT_LIST_DIR}/macos_stubs)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-dead_strip -F${stubs} -L${stubs}")
