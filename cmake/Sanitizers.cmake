set(PRODUCTION_SANITIZE "" CACHE STRING
  "Sanitizers for everything that is built: empty, 'address,undefined' or 'thread'")

if(PRODUCTION_SANITIZE)
  add_compile_options(-fsanitize=${PRODUCTION_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${PRODUCTION_SANITIZE})
endif()

option(PRODUCTION_FUZZ "Link the programs in fuzz/ with clang's fuzzer, and count what they reach" OFF)
if(PRODUCTION_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
