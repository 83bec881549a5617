# The command 'headunit' in the user's PATH, and the other programs where headunit and its units look for them.
foreach(link
    "bin/headunit;../libexec/headunit/headunit"
    "libexec/headunit/production;../../sbin/production"
    "libexec/headunit/station;../../bin/station")
  list(GET link 0 name)
  list(GET link 1 destination)
  set(path ${CMAKE_INSTALL_PREFIX}/${name})
  get_filename_component(folder $ENV{DESTDIR}${path} DIRECTORY)
  message(STATUS "Installing: $ENV{DESTDIR}${path}")
  file(MAKE_DIRECTORY ${folder})
  file(CREATE_LINK ${destination} $ENV{DESTDIR}${path} SYMBOLIC)
  list(APPEND CMAKE_INSTALL_MANIFEST_FILES ${path})
endforeach()
