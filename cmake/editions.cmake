# Reads the edition table of app/edition.h and the language codes of i18n/language.cpp, so that the build has
# no list of its own.
#
# Sets EDITIONS to the oem values and, for each, EDITION_TITLE_<oem> and EDITION_IDENTIFIER_<oem>: the
# bundle identifier of the utility, derived from that of the agent's profile.
#
# Writes the table to ${CMAKE_BINARY_DIR}/editions.tsv for scripts, lab and tests.

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             "${CMAKE_SOURCE_DIR}/app/edition.h" "${CMAKE_SOURCE_DIR}/i18n/language.cpp")

function(_read_column name result)
  file(STRINGS "${CMAKE_SOURCE_DIR}/app/edition.h" lines REGEX "\\.${name} = \"")
  list(TRANSFORM lines REPLACE "^.*\\.${name} = \"([^\"]*)\".*$" "\\1")
  set(${result} "${lines}" PARENT_SCOPE)
endfunction()

_read_column(oem EDITIONS)
_read_column(appName _titles)
_read_column(captionName _names)
_read_column(installFolder _folders)
_read_column(profileIdentifier _identifiers)

# "i18n::Language::En, i18n::Language::Ge" becomes "En,Ge" and then, row by row of the codes, "en,de".
file(READ "${CMAKE_SOURCE_DIR}/app/edition.h" _header)
string(REGEX MATCHALL "\\.languages = {[^}]*}" _languages "${_header}")
list(TRANSFORM _languages REPLACE "^[^{]*{" "")
list(TRANSFORM _languages REPLACE "[^,]*::|[ \n}]" "")
file(STRINGS "${CMAKE_SOURCE_DIR}/i18n/language.cpp" _rows REGEX "{Language::[A-Za-z]+, \"[a-z]+\"}")
foreach(_row IN LISTS _rows)
  string(REGEX MATCH "::([A-Za-z]+), \"([a-z]+)\"" _match "${_row}")
  list(TRANSFORM _languages REPLACE "${CMAKE_MATCH_1}" "${CMAKE_MATCH_2}")
endforeach()

list(LENGTH EDITIONS _count)
foreach(_column _titles _names _folders _identifiers _languages)
  list(LENGTH ${_column} _length)
  if(NOT _count OR NOT _length EQUAL _count)
    message(FATAL_ERROR "app/edition.h: cannot read the edition table")
  endif()
endforeach()

set(_table "# oem\tname\twindow title\tinstall folder\tidentifier of the agent's profile\tlanguages\n")
foreach(_oem _name _title _folder _identifier _codes
        IN ZIP_LISTS EDITIONS _names _titles _folders _identifiers _languages)
  set(EDITION_TITLE_${_oem} "${_title}")
  string(REGEX REPLACE "\\.agent$" ".configuration-utility" EDITION_IDENTIFIER_${_oem} "${_identifier}")
  string(APPEND _table "${_oem}\t${_name}\t${_title}\t${_folder}\t${_identifier}\t${_codes}\n")
endforeach()
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/editions.tsv" CONTENT "${_table}" @ONLY)
