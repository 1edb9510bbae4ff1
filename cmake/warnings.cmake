# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# The compiler flags are an interface target that all targets of this project link privately, so programs that use the
# library do not inherit the flags.
add_library(database_client_warnings INTERFACE)
target_compile_options(database_client_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # Property has virtual functions but no virtual destructor; that is part of the binary interface. A node is always
  # destroyed as the class that it was created as. clang also shows this warning for the standard headers.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-delete-non-abstract-non-virtual-dtor>
  $<$<BOOL:${DATABASE_CLIENT_WARNINGS_AS_ERRORS}>:-Werror>)
