# One interface target, linked privately by everything compiled here, so that no consumer inherits the flags.
add_library(database_client_warnings INTERFACE)
target_compile_options(database_client_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${DATABASE_CLIENT_WARNINGS_AS_ERRORS}>:-Werror>)
