# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# Toolchain file: builds with clang.
include(${CMAKE_CURRENT_LIST_DIR}/find_clang.cmake)
if(NOT DATABASE_CLIENT_CLANG OR NOT DATABASE_CLIENT_CLANGXX)
  message(FATAL_ERROR "clang is missing (scripts/setup test)")
endif()
set(CMAKE_C_COMPILER ${DATABASE_CLIENT_CLANG})
set(CMAKE_CXX_COMPILER ${DATABASE_CLIENT_CLANGXX})
