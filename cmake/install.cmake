# What `cmake --install` puts in place, by component: runtime (onvifCtrl),
# doc (its manual page and the notes), host (onvif-shm and its manual page,
# only with ONVIFCTRL_HOST_TOOLS). A firmware image that keeps no manuals
# installs `--component runtime` alone.
include(GNUInstallDirs)

set(ONVIFCTRL_COMPONENTS runtime doc)
if(ONVIFCTRL_HOST_TOOLS)
  list(APPEND ONVIFCTRL_COMPONENTS host)
endif()

# A cross-built binary belongs in the target's root, never in the build
# machine's own /usr.
if(CMAKE_CROSSCOMPILING)
  foreach(component IN LISTS ONVIFCTRL_COMPONENTS)
    install(CODE [[
      if("$ENV{DESTDIR}" STREQUAL "")
        message(FATAL_ERROR "onvifCtrl is cross-built: install it into the target's root "
                            "with DESTDIR=<root> cmake --install ...")
      endif()]] COMPONENT ${component})
  endforeach()
endif()

install(TARGETS onvifCtrl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)
install(FILES man/onvifCtrl.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT doc)
file(GLOB ONVIFCTRL_NOTES ${PROJECT_SOURCE_DIR}/docs/*.md)
install(FILES README.md ${ONVIFCTRL_NOTES} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT doc)

if(ONVIFCTRL_HOST_TOOLS)
  install(TARGETS onvif-shm RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT host)
  install(FILES man/onvif-shm.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT host)
endif()
