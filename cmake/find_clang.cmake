# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# Finds clang. scripts/setup installs the versioned package of the release, so the programs have a version in their names.
set(database_client_clang_versions 14 18 19 21)
list(TRANSFORM database_client_clang_versions PREPEND clang- OUTPUT_VARIABLE c_names)
list(TRANSFORM database_client_clang_versions PREPEND clang++- OUTPUT_VARIABLE cxx_names)
find_program(DATABASE_CLIENT_CLANG NAMES ${c_names} clang)
find_program(DATABASE_CLIENT_CLANGXX NAMES ${cxx_names} clang++)
