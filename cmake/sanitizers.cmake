# Everything in the build is instrumented alike: mixed instrumentation hides errors.
if(DATABASE_CLIENT_SANITIZE)
  add_compile_options(-fsanitize=${DATABASE_CLIENT_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${DATABASE_CLIENT_SANITIZE})
endif()
