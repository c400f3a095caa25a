# Where an installed Tamlin lies; read before the targets are made, since their run paths and
# tamlinctl's idea of where the provider lies follow from it.
#
# The provider finds its configuration, message catalogs, log and LUN records below one install
# root (ConfigFiles/, Messages/, Logs/, CacheFiles/). Two layouts hold that root:
#
#   opt  a prefix below /opt (the default, /opt/tamlin) is itself the install root: bin/, lib/,
#        include/ and share/ lie beside ConfigFiles/ and Messages/.
#   fhs  any other prefix (/usr for the Debian packages, /usr/local): every file in its place in
#        the file system, the libraries in a directory of their own (<libdir>/tamlin), and the
#        install root <localstatedir>/lib/tamlin holds the LUN records and links to the others:
#        ConfigFiles -> <sysconfdir>/tamlin, Messages -> <datadir>/tamlin/Messages,
#        Logs -> <localstatedir>/log/tamlin.
if(CMAKE_INSTALL_PREFIX_INITIALIZED_TO_DEFAULT)
  set(CMAKE_INSTALL_PREFIX /opt/tamlin CACHE PATH "Install prefix; below /opt it is the provider's install root" FORCE)
endif()
include(GNUInstallDirs)

if(CMAKE_INSTALL_PREFIX MATCHES "^/opt/")
  set(TAMLIN_LAYOUT opt)
  set(TAMLIN_LIB_DIR ${CMAKE_INSTALL_LIBDIR})
  set(TAMLIN_MESSAGES_DIR Messages)
  set(TAMLIN_ROOT_DIR ${CMAKE_INSTALL_PREFIX})
  set(TAMLIN_CONFIG_DIR ${CMAKE_INSTALL_PREFIX}/ConfigFiles)
  set(TAMLIN_LOG_DIR ${CMAKE_INSTALL_PREFIX}/Logs)
else()
  set(TAMLIN_LAYOUT fhs)
  set(TAMLIN_LIB_DIR ${CMAKE_INSTALL_LIBDIR}/tamlin)
  set(TAMLIN_MESSAGES_DIR ${CMAKE_INSTALL_DATADIR}/tamlin/Messages)
  set(TAMLIN_ROOT_DIR ${CMAKE_INSTALL_FULL_LOCALSTATEDIR}/lib/tamlin)
  set(TAMLIN_CONFIG_DIR ${CMAKE_INSTALL_FULL_SYSCONFDIR}/tamlin)
  set(TAMLIN_LOG_DIR ${CMAKE_INSTALL_FULL_LOCALSTATEDIR}/log/tamlin)
endif()

# Relative to the directory of tamlinctl, so that an install moved as a whole (DESTDIR, --prefix)
# still finds its own provider and root.
file(RELATIVE_PATH TAMLIN_BIN_TO_LIB ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_PREFIX}/${TAMLIN_LIB_DIR})
file(RELATIVE_PATH TAMLIN_BIN_TO_ROOT ${CMAKE_INSTALL_FULL_BINDIR} ${TAMLIN_ROOT_DIR})
if(TAMLIN_BIN_TO_ROOT STREQUAL "")
  set(TAMLIN_BIN_TO_ROOT .)
endif()
file(RELATIVE_PATH TAMLIN_BIN_TO_MESSAGES ${CMAKE_INSTALL_FULL_BINDIR}
     ${CMAKE_INSTALL_PREFIX}/${TAMLIN_MESSAGES_DIR}/libtamlin)

# Programs find the provider and the host library through their own place, so the install can
# move; the libraries find each other beside themselves.
set(CMAKE_INSTALL_RPATH "$ORIGIN/${TAMLIN_BIN_TO_LIB}")
