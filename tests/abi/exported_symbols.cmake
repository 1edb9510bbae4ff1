# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# cmake -DNM=... -DLIBRARY=... -DLIST=... [-DUPDATE=ON] -P exported_symbols.cmake
# Compares the symbols that the library exports with the list, and every one of them with what may be exported at all.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${NM} --dynamic --demangle --defined-only ${LIBRARY}
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
# Brackets and semicolons mean something to CMake's lists; no symbol has a semicolon.
string(REPLACE "[" "<" output "${output}")
string(REPLACE "]" ">" output "${output}")
string(REPLACE "\n" ";" lines "${output}")
set(found "")
foreach(line IN LISTS lines)
  if(line MATCHES "^[0-9a-f]+ [A-Za-z] (.*)$")
    list(APPEND found "${CMAKE_MATCH_1}")
  endif()
endforeach()
list(SORT found)
list(REMOVE_DUPLICATES found)

if(UPDATE)
  list(JOIN found "\n" text)
  file(WRITE ${LIST} "${text}\n")
endif()
file(STRINGS ${LIST} expected)
list(LENGTH found count)

set(faults "")
foreach(symbol IN LISTS found)
  if(NOT symbol IN_LIST expected)
    string(APPEND faults "\n  new:     ${symbol}")
  endif()
  if(NOT symbol MATCHES "^(typeinfo for |typeinfo name for |vtable for )?(DataBaseClient|ObjectFilter|ObjectProperties|Property)(::.*)?$"
      AND NOT symbol MATCHES "^(typeinfo for |typeinfo name for |vtable for )?dbc::v1::"
      AND NOT symbol MATCHES "^(typeinfo for |typeinfo name for |vtable for )?dbc::(Bulk|BulkError|Collection|Cursor|Database|FileReader|FileStore|ServerError)(::.*)?$"
      AND NOT symbol MATCHES "^(BsonToProperties|JsonToProperties|PropertiesToBson|PropertiesToJson)::"
      AND NOT symbol MATCHES "^(createDataBaseClient|createObjectFilter|createObjectProperties|parseOldCollectionName\\(.*)$"
      AND NOT symbol MATCHES "^dbc::(driverVersion|libraryVersion|nameOf|setLogHandler|useDefaultLog)\\(.*$")
    string(APPEND faults "\n  private: ${symbol}")
  endif()
endforeach()
foreach(symbol IN LISTS expected)
  if(NOT symbol IN_LIST found)
    string(APPEND faults "\n  gone:    ${symbol}")
  endif()
endforeach()
if(faults)
  message(FATAL_ERROR "the exported symbols differ from ${LIST}:${faults}")
endif()
message(STATUS "${count} exported symbols, as listed")
