# Reads the edition table of app/edition.h, so that the build has no list of its own.
#
# Sets EDITIONS to the oem values and, for each, EDITION_TITLE_<oem> and EDITION_IDENTIFIER_<oem>: the
# bundle identifier of the utility, which stands beside that of the agent it configures.

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/app/edition.h")

function(_read_column name result)
  file(STRINGS "${CMAKE_SOURCE_DIR}/app/edition.h" lines REGEX "\\.${name} = \"")
  list(TRANSFORM lines REPLACE "^.*\\.${name} = \"([^\"]*)\".*$" "\\1")
  set(${result} "${lines}" PARENT_SCOPE)
endfunction()

_read_column(oem EDITIONS)
_read_column(appName _titles)
_read_column(profileIdentifier _identifiers)
list(LENGTH EDITIONS _count)
list(LENGTH _titles _title_count)
list(LENGTH _identifiers _identifier_count)
if(NOT _count OR NOT _count EQUAL _title_count OR NOT _count EQUAL _identifier_count)
  message(FATAL_ERROR "app/edition.h: cannot read the edition table")
endif()

foreach(_oem _title _identifier IN ZIP_LISTS EDITIONS _titles _identifiers)
  set(EDITION_TITLE_${_oem} "${_title}")
  string(REGEX REPLACE "\\.agent$" ".configuration-utility" EDITION_IDENTIFIER_${_oem} "${_identifier}")
endforeach()
