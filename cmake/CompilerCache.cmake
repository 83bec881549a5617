# A compiler cache where the machine has one and nobody chose something else with CMAKE_CXX_COMPILER_LAUNCHER: what was
# compiled before from the same text with the same options, in this folder or one that was deleted, is not compiled
# again. As it is by default it never keeps what names the time of its compilation, as the build stamp does.
if(NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  find_program(PRODUCTION_CCACHE ccache)
  mark_as_advanced(PRODUCTION_CCACHE)
  if(PRODUCTION_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${PRODUCTION_CCACHE})
  endif()
endif()

# Lets it keep the targets of this folder as well when they share precompiled headers: it does so only where it may
# disregard what they define, their time, and the time at which a file names that it is compiled.
macro(cache_precompiled_headers)
  if(PRODUCTION_CCACHE AND CMAKE_CXX_COMPILER_LAUNCHER STREQUAL PRODUCTION_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${PRODUCTION_CCACHE})
  endif()
endmacro()
