# What was compiled once is kept for the next build folder and the next clone, where ccache is there to keep it. It has
# to be told that the precompiled headers hold no time of day, and to take what a source includes from the compiler's
# list in place of a run of the preprocessor.
find_program(KARNO_CCACHE ccache)
if(KARNO_CCACHE AND NOT CMAKE_CROSSCOMPILING AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    env CCACHE_DEPEND=1 CCACHE_SLOPPINESS=pch_defines,time_macros ${KARNO_CCACHE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  endif()
endif()
