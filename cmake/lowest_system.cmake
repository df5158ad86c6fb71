# The lowest macOS, which Info.plist says. The cross-compiled programs begin at 10.14, whose last version has what the
# launcher asks of the system; a build on a Mac has set its own. There is no Apple silicon before macOS 11.
if(NOT KARNO_SYSTEM_MIN)
  set(KARNO_SYSTEM_MIN 10.14.6)
endif()
set(KARNO_SYSTEM_MIN_APPLE_SILICON 11.0)
if(KARNO_SYSTEM_MIN VERSION_GREATER KARNO_SYSTEM_MIN_APPLE_SILICON)
  set(KARNO_SYSTEM_MIN_APPLE_SILICON ${KARNO_SYSTEM_MIN})
endif()
