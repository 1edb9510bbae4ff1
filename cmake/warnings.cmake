# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# One interface target, linked privately by everything compiled here, so that no consumer inherits the flags.
add_library(database_client_warnings INTERFACE)
target_compile_options(database_client_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # Nodes have virtual functions but no virtual destructor, which is part of the interface; they are only ever destroyed
  # as what they were made. clang shows this one warning inside the standard headers too.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>
  $<$<BOOL:${DATABASE_CLIENT_WARNINGS_AS_ERRORS}>:-Werror>)
