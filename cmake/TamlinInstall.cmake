# What `cmake --install` (make install) puts where, and the Debian packages made of it.
# The layout is chosen in TamlinLayout.cmake. Components, one package each:
#   tamlin  the provider, its message catalogs, the sample configuration, tamlinctl
#   dev     the kit for other providers: headers, CMake package and pkg-config file
#   evasim  the array simulator; installed only on demand (--component evasim), since it has no
#           place on a backup host
include(CMakePackageConfigHelpers)

set(TAMLIN_HELP_DIR ${CMAKE_BINARY_DIR}/share)
set(TAMLIN_DOC_SOURCES ${PROJECT_SOURCE_DIR}/packaging)

# Manual pages and bash completion, from the programs' own help texts.
function(tamlin_help_pages program summary)
  # tamlinctl names its provider's default path, which is the installed one in an install.
  get_filename_component(provider ${CMAKE_INSTALL_FULL_BINDIR}/${TAMLIN_BIN_TO_LIB}/libtamlin.so ABSOLUTE)
  get_filename_component(built ${CMAKE_BINARY_DIR}/lib/libtamlin.so REALPATH)
  set(extra "-DREPLACE_FROM=${built}" "-DREPLACE_TO=${provider}")
  if(EXISTS ${TAMLIN_DOC_SOURCES}/${program}.1.in)
    configure_file(${TAMLIN_DOC_SOURCES}/${program}.1.in ${TAMLIN_HELP_DIR}/${program}.1.extra @ONLY)
    list(APPEND extra -DEXTRA=${TAMLIN_HELP_DIR}/${program}.1.extra)
  endif()
  set(page ${TAMLIN_HELP_DIR}/man/man1/${program}.1)
  add_custom_command(
    OUTPUT ${page}.gz
    COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:${program}> -DNAME=${program} -DMODE=man -DOUTPUT=${page}
            "-DSUMMARY=${summary}" "-DVERSION=tamlin ${PROJECT_VERSION}" ${extra} -P
            ${PROJECT_SOURCE_DIR}/cmake/HelpPages.cmake
    # Compressed without a name or time stamp, so the same page gives the same file.
    COMMAND gzip -9nf ${page}
    DEPENDS ${program} ${PROJECT_SOURCE_DIR}/cmake/HelpPages.cmake ${TAMLIN_DOC_SOURCES}/${program}.1.in
    COMMENT "Writing the manual page of ${program}"
    VERBATIM)
  add_custom_target(${program}_manual ALL DEPENDS ${page}.gz)
endfunction()
tamlin_help_pages(tamlinctl "a command-line host for the Tamlin snapshot provider")
tamlin_help_pages(evasim "simulator of HP's SSSU and the EVA arrays behind it")

set(TAMLIN_COMPLETION ${TAMLIN_HELP_DIR}/bash-completion/completions/tamlinctl)
add_custom_command(
  OUTPUT ${TAMLIN_COMPLETION}
  COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:tamlinctl> -DNAME=tamlinctl -DMODE=bash -DOUTPUT=${TAMLIN_COMPLETION}
          -P ${PROJECT_SOURCE_DIR}/cmake/HelpPages.cmake
  DEPENDS tamlinctl ${PROJECT_SOURCE_DIR}/cmake/HelpPages.cmake
  COMMENT "Writing the bash completion of tamlinctl"
  VERBATIM)
add_custom_target(tamlinctl_completion ALL DEPENDS ${TAMLIN_COMPLETION})

# The package's change log, in Debian's format, and each package's copyright.
string(TIMESTAMP TAMLIN_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(TAMLIN_PACKAGE_CONTACT "Tamlin maintainers <tamlin-maintainers@example.org>"
    CACHE STRING "Maintainer named in the Debian packages")
configure_file(${TAMLIN_DOC_SOURCES}/changelog.in ${CMAKE_BINARY_DIR}/share/doc/changelog @ONLY)
add_custom_command(
  OUTPUT ${CMAKE_BINARY_DIR}/share/doc/changelog.gz
  COMMAND gzip -9nkf ${CMAKE_BINARY_DIR}/share/doc/changelog
  DEPENDS ${CMAKE_BINARY_DIR}/share/doc/changelog
  VERBATIM)
add_custom_target(tamlin_changelog ALL DEPENDS ${CMAKE_BINARY_DIR}/share/doc/changelog.gz)
foreach(package tamlin tamlin-dev evasim)
  set(component ${package})
  if(package STREQUAL "tamlin-dev")
    set(component dev)
  endif()
  set(exclude)
  if(component STREQUAL "evasim")
    set(exclude EXCLUDE_FROM_ALL)
  endif()
  install(FILES ${TAMLIN_DOC_SOURCES}/copyright ${CMAKE_BINARY_DIR}/share/doc/changelog.gz
          DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${package} COMPONENT ${component} ${exclude})
endforeach()

# The provider. Its libraries find each other beside themselves.
set_target_properties(tamlin qorinutil PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS tamlin qorinutil LIBRARY DESTINATION ${TAMLIN_LIB_DIR} COMPONENT tamlin NAMELINK_SKIP)
install(TARGETS tamlinctl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tamlin)
install(DIRECTORY ${CMAKE_BINARY_DIR}/Messages/libtamlin DESTINATION ${TAMLIN_MESSAGES_DIR} COMPONENT tamlin
        FILES_MATCHING PATTERN "*.res")
install(FILES ${TAMLIN_HELP_DIR}/man/man1/tamlinctl.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tamlin)
install(FILES ${TAMLIN_COMPLETION} DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        COMPONENT tamlin)

# The sample configuration, never over one that is there: it may hold the logins already. It
# will hold passwords, so it is the owner's alone from the start.
# Below /opt it moves with the prefix given at install time.
if(TAMLIN_LAYOUT STREQUAL "opt")
  set(config_destination "\${CMAKE_INSTALL_PREFIX}/ConfigFiles")
else()
  set(config_destination "${TAMLIN_CONFIG_DIR}")
endif()
install(
  CODE "set(sample \"${TAMLIN_DOC_SOURCES}/tamlin.conf\")
        set(target \"\$ENV{DESTDIR}${config_destination}/tamlin.conf\")
        if(EXISTS \"\${target}\" OR IS_SYMLINK \"\${target}\")
          message(STATUS \"Kept: \${target}\")
        else()
          file(INSTALL \"\${sample}\" DESTINATION \"${config_destination}\"
               FILE_PERMISSIONS OWNER_READ OWNER_WRITE)
        endif()"
  COMPONENT tamlin)

# In the file system's layout the install root gathers the places of the provider's files: a
# link within one top-level directory is relative, one across them absolute.
if(TAMLIN_LAYOUT STREQUAL "fhs")
  install(DIRECTORY DESTINATION ${TAMLIN_LOG_DIR} COMPONENT tamlin)
  install(DIRECTORY DESTINATION ${TAMLIN_ROOT_DIR}/CacheFiles COMPONENT tamlin)
  set(links)
  foreach(link ConfigFiles=${TAMLIN_CONFIG_DIR} Messages=${CMAKE_INSTALL_PREFIX}/${TAMLIN_MESSAGES_DIR}
               Logs=${TAMLIN_LOG_DIR})
    string(REGEX REPLACE "=.*" "" name "${link}")
    string(REGEX REPLACE "^[^=]*=" "" target "${link}")
    string(REGEX MATCH "^/[^/]*" top "${target}")
    string(REGEX MATCH "^/[^/]*" root_top "${TAMLIN_ROOT_DIR}")
    if(top STREQUAL root_top)
      file(RELATIVE_PATH target ${TAMLIN_ROOT_DIR} ${target})
    endif()
    list(APPEND links "${name}=${target}")
  endforeach()
  install(
    CODE "foreach(link ${links})
            string(REGEX REPLACE \"=.*\" \"\" name \"\${link}\")
            string(REGEX REPLACE \"^[^=]*=\" \"\" target \"\${link}\")
            set(path \"\$ENV{DESTDIR}${TAMLIN_ROOT_DIR}/\${name}\")
            if(NOT EXISTS \"\${path}\" AND NOT IS_SYMLINK \"\${path}\")
              message(STATUS \"Linking: \${path} -> \${target}\")
              file(CREATE_LINK \"\${target}\" \"\${path}\" SYMBOLIC)
            endif()
          endforeach()"
    COMPONENT tamlin)
endif()

# The kit: its headers, and the library that exports its classes, libtamlin.so.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/pdk/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qorinpdk COMPONENT dev
        FILES_MATCHING PATTERN "*.h")
set(TAMLIN_PDK_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR}/qorinpdk)
configure_package_config_file(
  ${TAMLIN_DOC_SOURCES}/QorinPdkConfig.cmake.in ${CMAKE_BINARY_DIR}/cmake/QorinPdkConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QorinPdk
  PATH_VARS TAMLIN_LIB_DIR TAMLIN_PDK_INCLUDE_DIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cmake/QorinPdkConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/cmake/QorinPdkConfig.cmake ${CMAKE_BINARY_DIR}/cmake/QorinPdkConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/QorinPdk COMPONENT dev)
configure_file(${TAMLIN_DOC_SOURCES}/qorinpdk.pc.in ${CMAKE_BINARY_DIR}/share/qorinpdk.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/share/qorinpdk.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# The simulator, apart.
set_target_properties(evasim PROPERTIES INSTALL_RPATH "")
install(TARGETS evasim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT evasim EXCLUDE_FROM_ALL)
install(FILES ${TAMLIN_HELP_DIR}/man/man1/evasim.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT evasim
        EXCLUDE_FROM_ALL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/tools/evasim/scenarios/ DESTINATION ${CMAKE_INSTALL_DATADIR}/evasim/scenarios
        COMPONENT evasim EXCLUDE_FROM_ALL FILES_MATCHING PATTERN "*.scn")

# Debian packages: `make package` builds them in a tree of the file system's layout (prefix /usr);
# an /opt install is one tree, packed as it stands.
set(CPACK_PACKAGE_NAME tamlin)
set(CPACK_PACKAGE_VENDOR "Tamlin")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${TAMLIN_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL tamlin dev evasim)
if(TAMLIN_LAYOUT STREQUAL "fhs")
  set(CPACK_GENERATOR DEB)
else()
  set(CPACK_GENERATOR TGZ)
  set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SOURCE tamlin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# libqorinutil.so comes with the provider; dpkg-shlibdeps looks for it in the package itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${TAMLIN_LIB_DIR})
set(CPACK_DEBIAN_TAMLIN_PACKAGE_NAME tamlin)
set(CPACK_DEBIAN_TAMLIN_PACKAGE_SECTION admin)
configure_file(${TAMLIN_DOC_SOURCES}/conffiles.in ${CMAKE_BINARY_DIR}/share/conffiles @ONLY)
configure_file(${TAMLIN_DOC_SOURCES}/postrm.in ${CMAKE_BINARY_DIR}/share/postrm @ONLY)
set(CPACK_DEBIAN_TAMLIN_PACKAGE_CONTROL_EXTRA ${CMAKE_BINARY_DIR}/share/conffiles ${CMAKE_BINARY_DIR}/share/postrm)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_TAMLIN_PACKAGE_SUGGESTS evasim)
set(CPACK_COMPONENT_TAMLIN_DESCRIPTION
    "snapshot provider for HP EVA storage arrays
Tamlin is the library a host backup framework loads to make point-in-time
copies (vsnaps, snapshots, snapclones) of virtual disks on HP EVA arrays,
present them to hosts and restore disks from them. It drives the arrays
through HP's command-line tool SSSU.
.
This package holds the provider, its message catalogs, a sample
configuration and tamlinctl, a command-line host that loads the provider
as a backup framework does; `tamlinctl setup` configures it.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME tamlin-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
    "tamlin (= ${PROJECT_VERSION}), libace-dev, libicu-dev, libxerces-c-dev")
set(CPACK_DEBIAN_DEV_PACKAGE_SUGGESTS "cmake, pkg-config")
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "development kit for providers of the Qorin backup framework
The headers of the plug-in development kit that the Tamlin provider
library exports (namespace qorin_pdk_4_4): plug-in base classes, private
data, result lists, configuration, trace log, messages, exec pipe and
parameter documents. find_package(QorinPdk) gives the CMake target
QorinPdk::pdk; pkg-config knows it as qorinpdk.")
set(CPACK_DEBIAN_EVASIM_PACKAGE_NAME evasim)
set(CPACK_DEBIAN_EVASIM_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_EVASIM_DESCRIPTION
    "simulator of HP's SSSU and EVA storage arrays
evasim answers SSSU scripts from a simulated site of Command View servers,
storage cells, disks, hosts and DR groups kept in SQLite, with faults and
a clock a test controls. Installed under an SSSU file name it stands in
for SSSU, so the Tamlin provider can be tried and tested without an array.")
include(CPack)
