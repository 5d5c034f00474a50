# cmake --install <build> --prefix P
#
# TARABIX_INSTALL_LAYOUT chooses where the program and its data go:
#   bundle (default)  P/lib/tarabix/ holds tarabix, tarabix-cli and the data beside them, exactly as
#                     in the build's bin/; P/bin/ has links to both. The program folder is where the
#                     executable really lives, so the data is found through the links too.
#   share             P/bin/ holds the executables, P/share/tarabix/ the data (the program looks in
#                     ../share/tarabix when its own folder has no tunings.ini).
# Either way the desktop entry, the icons and the .mzf file type go to P/share/.
include(GNUInstallDirs)

set(TARABIX_INSTALL_LAYOUT bundle CACHE STRING "Where the program and its data are installed: bundle or share")
set_property(CACHE TARABIX_INSTALL_LAYOUT PROPERTY STRINGS bundle share)

if(TARABIX_INSTALL_LAYOUT STREQUAL "share")
  set(TARABIX_INSTALL_PROGRAM_DIR ${CMAKE_INSTALL_BINDIR})
  set(TARABIX_INSTALL_DATA_DIR ${CMAKE_INSTALL_DATADIR}/tarabix)
elseif(TARABIX_INSTALL_LAYOUT STREQUAL "bundle")
  set(TARABIX_INSTALL_PROGRAM_DIR ${CMAKE_INSTALL_LIBDIR}/tarabix)
  set(TARABIX_INSTALL_DATA_DIR ${TARABIX_INSTALL_PROGRAM_DIR})
else()
  message(FATAL_ERROR "TARABIX_INSTALL_LAYOUT is '${TARABIX_INSTALL_LAYOUT}'; use bundle or share")
endif()

set(TARABIX_PACKAGING_DIR ${CMAKE_SOURCE_DIR}/packaging)

install(TARGETS tarabix tarabix-cli RUNTIME DESTINATION ${TARABIX_INSTALL_PROGRAM_DIR})
install(DIRECTORY ${CMAKE_SOURCE_DIR}/data/ DESTINATION ${TARABIX_INSTALL_DATA_DIR} PATTERN ".*" EXCLUDE)

install(FILES ${TARABIX_PACKAGING_DIR}/tarabix-mzf.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES ${TARABIX_PACKAGING_DIR}/icons/tarabix.svg
        DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 16 24 32 48 64 128 256)
  install(FILES ${TARABIX_PACKAGING_DIR}/icons/${size}x${size}/tarabix.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps)
endforeach()

# What is known only at install time: the prefix given to --install (for the desktop entry's
# Exec line and the links), and whether the files land in a live system (no DESTDIR), where the
# desktop's caches are refreshed so a double-click on a piece opens it at once.
install(CODE "
  set(layout \"${TARABIX_INSTALL_LAYOUT}\")
  set(programDir \"${TARABIX_INSTALL_PROGRAM_DIR}\")
  set(binDir \"${CMAKE_INSTALL_BINDIR}\")
  set(dataRoot \"${CMAKE_INSTALL_DATADIR}\")
  set(template \"${TARABIX_PACKAGING_DIR}/tarabix.desktop.in\")
  include(\"${CMAKE_CURRENT_LIST_DIR}/InstallDesktop.cmake\")
")
