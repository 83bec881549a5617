# The warnings our own code is held to. Generated code (the scanner) is exempt.
option(PRODUCTION_WERROR "Refuse to build what the compiler warns of" ON)
add_library(project_warnings INTERFACE)
target_compile_options(project_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion $<$<BOOL:${PRODUCTION_WERROR}>:-Werror>
  # An empty format is how a response without a message is written.
  -Wno-format-zero-length
  # Fields that are part of a given interface stay where nothing reads them yet.
  $<$<CXX_COMPILER_ID:Clang>:-Wno-unused-private-field>)
