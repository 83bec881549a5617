# What `cmake --install` installs, in one component for each program, and the Debian packages that CPack makes
# of them. headunit is a developer's tool, so there is no package of it.
install(TARGETS production DESTINATION sbin COMPONENT production)
install(FILES docs/man/production.8 DESTINATION share/man/man8 COMPONENT production)
install(SCRIPT packaging/install_service.cmake COMPONENT production)
set(CPACK_COMPONENTS_ALL production)

if(TARGET station)
  install(TARGETS station DESTINATION bin COMPONENT station)
  install(FILES docs/man/station.1 DESTINATION share/man/man1 COMPONENT station)
endif()

# A simulated unit has the folder of headunit in its PATH, and headunit finds what belongs to it there.
if(TARGET headunit)
  set(headunit_folder libexec/headunit)
  install(TARGETS headunit slay deva-nvaudio showimage dmdt mv8787bt
    RUNTIME DESTINATION ${headunit_folder} COMPONENT headunit
    LIBRARY DESTINATION ${headunit_folder} COMPONENT headunit)
  install(FILES docs/man/headunit.1 DESTINATION share/man/man1 COMPONENT headunit)
  install(SCRIPT packaging/install_headunit_links.cmake COMPONENT headunit)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME production)
set(CPACK_PACKAGE_VENDOR "production")
set(CPACK_PACKAGE_CONTACT "production maintainers <maintainers@localhost>")
set(CPACK_OUTPUT_FILE_PREFIX ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
# The service unit names the daemon's final place, so that has to be the prefix while it is installed.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION misc)
set(CPACK_DEBIAN_PRODUCTION_PACKAGE_NAME production)
set(CPACK_COMPONENT_PRODUCTION_DESCRIPTION "Factory test daemon of a car head unit
Drives the unit's hardware for a test station, which reaches it over a serial line and over TCP on the loopback
address. Whoever reaches it runs commands as root: the service is not enabled by itself.")
set(CPACK_DEBIAN_PRODUCTION_PACKAGE_CONTROL_EXTRA
  ${CMAKE_SOURCE_DIR}/packaging/postinst
  ${CMAKE_SOURCE_DIR}/packaging/prerm
  ${CMAKE_SOURCE_DIR}/packaging/postrm)
set(CPACK_DEBIAN_STATION_PACKAGE_NAME station)
set(CPACK_COMPONENT_STATION_DESCRIPTION "Test station's side of a car head unit's factory test
Sends test commands to a unit, over TCP or a serial line, prints the answers, and moves whole files.")

if(CMAKE_CROSSCOMPILING)
  # This machine's package system does not know the board's libraries.
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6 (>= 2.36), libgcc-s1, libstdc++6 (>= 12), zlib1g")
else()
  list(APPEND CPACK_COMPONENTS_ALL station)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
include(CPack)
