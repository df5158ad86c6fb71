# Links karno_platform with the system's frameworks, or with what stands in for them.
if(APPLE)
  target_link_libraries(karno_platform PUBLIC "-framework AppKit" "-framework Foundation"
    "-framework CoreFoundation" "-framework Security" "-lobjc")
else()
  # Debian keeps the Objective-C runtime's headers with the compiler that made them. Only their own folder is linked
  # into the build: next to it lie headers that fit no other compiler.
  find_path(KARNO_OBJC_INCLUDE objc/runtime.h
    PATHS /usr/lib/gcc/${CMAKE_LIBRARY_ARCHITECTURE}/12/include REQUIRED)
  set(objc_headers ${CMAKE_BINARY_DIR}/objc-headers)
  file(MAKE_DIRECTORY ${objc_headers})
  file(CREATE_LINK ${KARNO_OBJC_INCLUDE}/objc ${objc_headers}/objc SYMBOLIC)
  find_library(KARNO_OBJC_LIBRARY objc PATHS /usr/lib/gcc/${CMAKE_LIBRARY_ARCHITECTURE}/12 REQUIRED)
  # Only the headers of libcurl: the library is loaded when it is needed.
  target_include_directories(karno_platform SYSTEM PUBLIC ${objc_headers} ${CURL_INCLUDE_DIRS})
  # Classes are looked up by name at run time, so nothing refers to the libraries when the program is linked.
  target_link_libraries(karno_platform PUBLIC
    -Wl,--no-as-needed gnustep-gui gnustep-base ${KARNO_OBJC_LIBRARY} -Wl,--as-needed
    SDBusCpp::sdbus-c++ PkgConfig::fontconfig pugixml::pugixml nlohmann_json::nlohmann_json Threads::Threads ${CMAKE_DL_LIBS})
endif()
