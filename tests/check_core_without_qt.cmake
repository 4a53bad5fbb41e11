# Fails when a core source includes a Qt header.
file(GLOB_RECURSE core_files
  ${SOURCE_DIR}/src/engine/* ${SOURCE_DIR}/src/shell/* ${SOURCE_DIR}/src/catalogue/*
  ${SOURCE_DIR}/src/imagefiles/* ${SOURCE_DIR}/src/effects/* ${SOURCE_DIR}/src/composition/*
  ${SOURCE_DIR}/src/tools/*)
set(offenders "")
foreach(f IN LISTS core_files)
  if(f MATCHES "/ui/")
    continue()
  endif()
  file(STRINGS "${f}" hits REGEX "#[ \t]*include[ \t]*[<\"]Q")
  if(hits)
    list(APPEND offenders "${f}")
  endif()
endforeach()
if(offenders)
  message(FATAL_ERROR "core files include Qt: ${offenders}")
endif()
