# What is installed besides the executable and its media module, and the Debian package that CPack makes of all of it
# (scripts/package). The local App Store Connect and the executable that speaks to it are for building and trying; they
# are never installed.

install(FILES completions/kestrin.bash RENAME kestrin
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES completions/kestrin.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
install(FILES completions/_kestrin DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)

install(FILES docs/kestrin.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# With the README above the folder that its links lead to, as here.
install(FILES README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs FILES_MATCHING PATTERN "*.md")
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)

set(KESTRIN_MAINTAINER "Kestrin developers <kestrin@localhost>" CACHE STRING
    "Who answers for the Debian package, as `Name <address>`")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrin)
set(CPACK_PACKAGE_VENDOR Kestrin)
set(CPACK_PACKAGE_CONTACT ${KESTRIN_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "keeps an App Store listing as a folder in version control")
set(CPACK_PACKAGE_DESCRIPTION "Kestrin keeps an app's App Store listing - texts of every locale and
platform, screenshots and previews, custom product pages and tests - as a
plain folder. It compares that folder with App Store Connect, brings the
live listing in with a three-way merge, pushes changes and reads back what
it wrote, uploads builds, submits to App Review, and converts to and from
fastlane deliver folders.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianLayout.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
# The libraries of the executable and of the media module, which is opened at run time, are found in the files; nothing
# in them tells that certificates are checked against those of the system.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS ca-certificates)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS bash-completion)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
