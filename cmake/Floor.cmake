option(PRODUCTION_LTO "Optimise the daemon across its files" OFF)

# add_floor(TARGET FOLDER [SOURCES ...] [DEPENDS ...] [PRIVATE_DEPENDS ...])
#
# A static library for the current source folder whose headers are reached as "FOLDER/Header.h", and
# only by targets that name it in DEPENDS: every floor has an include root of its own, so that an
# include of a floor which was not declared does not build.
function(add_floor target folder)
  cmake_parse_arguments(FLOOR "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  set(root ${CMAKE_BINARY_DIR}/include-roots/${target})
  file(MAKE_DIRECTORY ${root})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${root}/${folder} SYMBOLIC)

  add_library(${target} STATIC ${FLOOR_SOURCES})
  target_include_directories(${target} PUBLIC ${root})
  target_link_libraries(${target}
    PUBLIC ${FLOOR_DEPENDS}
    PRIVATE ${FLOOR_PRIVATE_DEPENDS} project_warnings)
  optimise_across_files(${target})
endfunction()

# Lets a program that is linked with -flto optimise across the target's files; other programs (the tests)
# link its ordinary code, which is quicker.
function(optimise_across_files target)
  if(PRODUCTION_LTO)
    target_compile_options(${target} PRIVATE -flto=auto -ffat-lto-objects)
  endif()
endfunction()

# compile_quickly(SOURCES ...): for sources of the current folder that read the headers of the command line's parser.
# Those are all templates: the optimiser takes longer over them than over anything else that is built, and their code
# runs once at a program's start.
function(compile_quickly)
  if(NOT CMAKE_BUILD_TYPE STREQUAL Debug AND NOT CMAKE_CROSSCOMPILING)
    set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "-O0;-g1")
  endif()
endfunction()
