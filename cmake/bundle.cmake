# Stages the launcher's bundle, in the Mac's layout on every system. Each staged file is an output of its own,
# so a build copies just what changed.
set(bundle_folder ${CMAKE_BINARY_DIR}/Karno.app)
set(bundle_texts ${CMAKE_BINARY_DIR}/bundle-texts)
set(bundle_files)

include(${CMAKE_CURRENT_LIST_DIR}/lowest_system.cmake)

# Copies `source`, which `dependency` makes, to `destination` inside the bundle.
function(karno_stage source dependency destination)
  set(staged "${bundle_folder}/${destination}")
  add_custom_command(OUTPUT "${staged}"
    COMMAND ${CMAKE_COMMAND} -E copy "${source}" "${staged}"
    DEPENDS ${dependency} "${source}" COMMENT "Staging ${destination}" VERBATIM)
  list(APPEND bundle_files "${staged}")
  set(bundle_files ${bundle_files} PARENT_SCOPE)
endfunction()

function(karno_stage_program target destination)
  karno_stage("$<TARGET_FILE:${target}>" ${target} "${destination}")
  set(bundle_files ${bundle_files} PARENT_SCOPE)
endfunction()

# A build of the embedded application: a bundle inside the bundle.
function(karno_stage_helper helper_name helper_identifier)
  set(helper "Contents/Helpers/${helper_name}.app/Contents")
  configure_file(${PROJECT_SOURCE_DIR}/resources/HelperInfo.plist.in "${bundle_texts}/${helper_name}.plist" @ONLY)
  karno_stage("${bundle_texts}/${helper_name}.plist" "" "${helper}/Info.plist")
  karno_stage_program(embedded_client "${helper}/MacOS/${helper_name}")
  karno_stage(${bundle_texts}/${icon} "" "${helper}/Resources/${icon}")
  set(bundle_files ${bundle_files} PARENT_SCOPE)
endfunction()

karno_stage_program(karno Contents/MacOS/Karno)
karno_stage_program(karnoctl Contents/MacOS/karnoctl)
if(NOT APPLE)
  karno_stage_program(karno-installer Contents/Helpers/karno-installer)
endif()
configure_file(${PROJECT_SOURCE_DIR}/resources/Info.plist.in ${bundle_texts}/Info.plist @ONLY)
karno_stage(${bundle_texts}/Info.plist "" Contents/Info.plist)
file(CONFIGURE OUTPUT ${bundle_texts}/PkgInfo CONTENT "APPL????" @ONLY)
karno_stage(${bundle_texts}/PkgInfo "" Contents/PkgInfo)

set(resources ${PROJECT_SOURCE_DIR}/resources)
file(GLOB_RECURSE localised_resources CONFIGURE_DEPENDS RELATIVE ${resources} ${resources}/*.lproj/*)
if(APPLE)
  # The framework that updates there brings its own.
  list(FILTER localised_resources EXCLUDE REGEX "/Updater\\.json$")
endif()
foreach(resource IN LISTS localised_resources)
  karno_stage(${resources}/${resource} "" Contents/Resources/${resource})
endforeach()

# The icon is drawn once, as vectors. macOS reads its own kind of file.
find_program(KARNO_RSVG_CONVERT rsvg-convert)
if(NOT KARNO_RSVG_CONVERT)
  message(FATAL_ERROR "rsvg-convert, which draws the icon, is missing. It comes with librsvg: "
    "\"apt-get install librsvg2-bin\" on Debian, \"brew install librsvg\" on macOS.")
endif()
set(vectors ${resources}/icon/karno.svg)
if(APPLE)
  set(icon Karno.icns)
  set(style ${resources}/icon/small.css)
  set(drawing ${PROJECT_SOURCE_DIR}/tools/icon/draw-icns)
  file(GLOB drawing_sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tools/icon/icns/*.py)
  set(draw ${drawing} ${KARNO_RSVG_CONVERT} ${vectors} ${style} ${bundle_texts}/${icon})
else()
  set(icon karno.png)
  set(draw ${KARNO_RSVG_CONVERT} --width 128 --height 128 --output ${bundle_texts}/${icon} ${vectors})
endif()
add_custom_command(OUTPUT ${bundle_texts}/${icon} COMMAND ${draw}
  DEPENDS ${vectors} ${style} ${drawing} ${drawing_sources} COMMENT "Drawing ${icon}" VERBATIM)
karno_stage(${bundle_texts}/${icon} "" Contents/Resources/${icon})
karno_stage_helper("Karno" it.vantul.Karno)
karno_stage_helper("Karno(Fuse)" it.vantul.KarnoFuse)
include(${CMAKE_CURRENT_LIST_DIR}/notices.cmake)
karno_stage(${bundle_texts}/Notices.txt "" Contents/Resources/Notices.txt)
set(other_resources ${icon} Notices.txt)
if(NOT APPLE)
  # What AppKit puts on the icon of a critical alert by itself.
  add_custom_command(OUTPUT ${bundle_texts}/caution.png
    COMMAND ${KARNO_RSVG_CONVERT} --width 60 --height 60 --output ${bundle_texts}/caution.png ${resources}/icon/caution.svg
    DEPENDS ${resources}/icon/caution.svg COMMENT "Drawing caution.png" VERBATIM)
  karno_stage(${bundle_texts}/caution.png "" Contents/Resources/caution.png)
  list(APPEND other_resources caution.png)
endif()

# What a shell takes from the bundle: karnoctl's manual page, and its completions under the names that shells look for.
karno_stage(${PROJECT_SOURCE_DIR}/docs/man/karnoctl.1 "" Contents/Resources/man/man1/karnoctl.1)
set(completions ${PROJECT_SOURCE_DIR}/src/karnoctl/completions)
karno_stage(${completions}/karnoctl.bash "" Contents/Resources/completions/bash/karnoctl)
karno_stage(${completions}/_karnoctl "" Contents/Resources/completions/zsh/_karnoctl)
list(APPEND other_resources man/man1/karnoctl.1 completions/bash/karnoctl completions/zsh/_karnoctl)

# A resource that is gone from the sources must not stay behind in the bundle.
set(staged_resources ${bundle_folder}/Contents/Resources)
file(GLOB_RECURSE old_resources RELATIVE ${staged_resources} ${staged_resources}/*)
list(REMOVE_ITEM old_resources ${localised_resources} ${other_resources} "")
list(TRANSFORM old_resources PREPEND ${staged_resources}/)
if(old_resources)
  file(REMOVE ${old_resources})
endif()

# Frameworks is filled when a release is packaged.
add_custom_target(bundle ALL
  COMMAND ${CMAKE_COMMAND} -E make_directory ${bundle_folder}/Contents/Frameworks
  DEPENDS ${bundle_files} COMMENT "Karno.app is complete" VERBATIM)
