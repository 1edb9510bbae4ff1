# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# database_client_package(NAME DEBIAN [ARGUMENT...])
# The same as find_package(NAME ARGUMENT... REQUIRED), but the error message has the Debian packages to install.
macro(database_client_package name debian)
  find_package(${name} ${ARGN} QUIET)
  if(NOT ${name}_FOUND)
    message(FATAL_ERROR "${name} is missing or too old. On Debian: apt install ${debian}")
  endif()
endmacro()
