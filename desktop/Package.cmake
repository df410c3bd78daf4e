# The Debian packages: `cpack --preset package`, or tools/release, which checks them as well.
set(CPACK_PACKAGE_VENDOR "Veltrane developers")
set(CPACK_PACKAGE_CONTACT "Veltrane developers <veltrane@veltrane.invalid>")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program symbols)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME veltrane)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION non-free/graphics) # while the owner has chosen no licence
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
# A window on Wayland, fonts, and what is read by the toolkit's plug-ins: SVG, WebP and others.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS
    "qt6-wayland, fonts-dejavu-core, libqt6svg6, qt6-image-formats-plugins, shared-mime-info")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION "drop pictures on a window, get JPEG and PNG copies
Pictures that are dropped on its window, or opened with it, get a JPEG copy,
a PNG copy or both beside them. Two check boxes say which, a slider sets the
JPEG quality, a preview shows the last picture. Nothing else is asked.

JPEG, PNG, GIF, TIFF and PICT are read as they were meant to be seen, upright
and in their right colours. The source file is never changed, and a copy
appears whole or not at all.")

set(CPACK_DEBIAN_SYMBOLS_PACKAGE_NAME veltrane-dbgsym)
set(CPACK_DEBIAN_SYMBOLS_PACKAGE_SECTION non-free/debug)
set(CPACK_DEBIAN_SYMBOLS_PACKAGE_DEPENDS "veltrane (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_SYMBOLS_DESCRIPTION "debug symbols for veltrane
What a debugger needs to name the functions and lines of Veltrane: the same
build's symbols, found by the mark that the program carries.")

# The one file of Debian's that tells a time: that of the commit, when tools/release packs.
string(TIMESTAMP released "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(debian/changelog.in debian/changelog @ONLY)
install_compressed(${CMAKE_CURRENT_BINARY_DIR}/debian/changelog changelog ${CMAKE_INSTALL_DATADIR}/doc/veltrane)
install(FILES debian/copyright DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/veltrane)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/veltrane RENAME NEWS.md)

configure_file(DebugSymbols.cmake.in DebugSymbols.cmake @ONLY)
install(SCRIPT ${CMAKE_CURRENT_BINARY_DIR}/DebugSymbols.cmake COMPONENT symbols EXCLUDE_FROM_ALL)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz debian/copyright
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/veltrane-dbgsym COMPONENT symbols EXCLUDE_FROM_ALL)

include(CPack)
