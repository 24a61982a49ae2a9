# The Debian package, as scripts/package builds it with `cpack`.
set(KESTRUNE_DEB_REVISION 1)
set(KESTRUNE_MAINTAINER "Kestrune maintainers <maintainers@kestrune.invalid>" CACHE STRING
  "Who answers for the package, as a name and an address")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrune)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT ${KESTRUNE_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "time shifter for XM PCR satellite radio")
file(READ ${CMAKE_CURRENT_LIST_DIR}/description CPACK_DEBIAN_PACKAGE_DESCRIPTION)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${KESTRUNE_DEB_REVISION})
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pulseaudio | pipewire-pulse, libcanberra-pulse, sound-theme-freedesktop, qt6-wayland, xdg-utils")
if(KESTRUNE_WEB_SITE)
  set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${KESTRUNE_WEB_SITE})
endif()
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Debian's own files of a package. They are the package's alone, no part of `cmake --install`.
set(packageFiles ${CMAKE_CURRENT_BINARY_DIR}/deb)
file(MAKE_DIRECTORY ${packageFiles})
configure_file(${CMAKE_CURRENT_LIST_DIR}/copyright ${packageFiles}/copyright COPYONLY)
add_custom_command(OUTPUT ${packageFiles}/changelog.Debian.gz ${packageFiles}/changelog.gz
  COMMAND ${KESTRUNE_GZIP} -9nc ${CMAKE_CURRENT_LIST_DIR}/changelog > ${packageFiles}/changelog.Debian.gz
  COMMAND ${KESTRUNE_GZIP} -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md > ${packageFiles}/changelog.gz
  DEPENDS ${CMAKE_CURRENT_LIST_DIR}/changelog ${PROJECT_SOURCE_DIR}/CHANGELOG.md VERBATIM)
add_custom_target(package_files DEPENDS
  ${packageFiles}/changelog.Debian.gz ${packageFiles}/changelog.gz)
set(CPACK_INSTALLED_DIRECTORIES ${packageFiles} usr/share/doc/kestrune)

include(CPack)
