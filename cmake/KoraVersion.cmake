# Sets KORA_VERSION ("major.minor.patch") from the three KORA_VERSION_* lines
# of include/koradata.h, the one place the version is defined. Included
# before project(), so it uses nothing but the source directory.
file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/../include/koradata.h" kora_version_lines
     REGEX "^#define KORA_VERSION_(MAJOR|MINOR|PATCH) +[0-9]+$")
set(KORA_VERSION)
foreach(part MAJOR MINOR PATCH)
  if(NOT kora_version_lines MATCHES "#define KORA_VERSION_${part} +([0-9]+)")
    message(FATAL_ERROR "include/koradata.h does not define KORA_VERSION_${part}")
  endif()
  list(APPEND KORA_VERSION ${CMAKE_MATCH_1})
endforeach()
list(JOIN KORA_VERSION "." KORA_VERSION)
unset(kora_version_lines)
