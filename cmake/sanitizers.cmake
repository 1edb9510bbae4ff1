# SPDX-FileCopyrightText: 2026 The database_client authors
# SPDX-License-Identifier: MIT

# All targets use the same sanitizers, because code that is not instrumented hides errors.
if(DATABASE_CLIENT_SANITIZE)
  add_compile_options(-fsanitize=${DATABASE_CLIENT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${DATABASE_CLIENT_SANITIZE})
endif()
