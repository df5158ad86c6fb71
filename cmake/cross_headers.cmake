# Header-only libraries are the same text for every system, so a cross build takes this machine's. Only their
# own folders are linked into the build: next to them lie the C headers of the wrong system.
set(cross_headers ${CMAKE_BINARY_DIR}/cross-headers)
file(MAKE_DIRECTORY ${cross_headers})
foreach(header fmt/format.h nlohmann/json.hpp)
  get_filename_component(library ${header} DIRECTORY)
  find_path(KARNO_${library}_HEADERS ${header} PATHS /usr/local/include /usr/include
    REQUIRED NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  file(CREATE_LINK ${KARNO_${library}_HEADERS}/${library} ${cross_headers}/${library} SYMBOLIC)
endforeach()

add_library(fmt::fmt-header-only INTERFACE IMPORTED)
target_include_directories(fmt::fmt-header-only SYSTEM INTERFACE ${cross_headers})

add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${cross_headers})
