# Writes the service unit with the place that the daemon is installed at, which only the installation knows.
set(DAEMON ${CMAKE_INSTALL_PREFIX}/sbin/production)
set(unit ${CMAKE_INSTALL_PREFIX}/lib/systemd/system/production.service)
message(STATUS "Installing: $ENV{DESTDIR}${unit}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/production.service.in $ENV{DESTDIR}${unit} @ONLY)
list(APPEND CMAKE_INSTALL_MANIFEST_FILES ${unit})
