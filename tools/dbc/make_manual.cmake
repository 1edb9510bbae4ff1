# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# usage: cmake -DPROGRAM=dbc -DTEMPLATE=dbc.1.in -DPROJECT_VERSION=1.2.3 -DPAGE=dbc.1 -P make_manual.cmake
# Replaces @COMMANDS@ in the template of the manual page by the program's own description of its options and commands.
execute_process(COMMAND ${PROGRAM} --manual OUTPUT_VARIABLE COMMANDS OUTPUT_STRIP_TRAILING_WHITESPACE
  RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "${PROGRAM} --manual ended with ${status}")
endif()
configure_file(${TEMPLATE} ${PAGE} @ONLY)
