# What `cmake --install` puts where. Components: runtime (libraries and program), desktop (the window), development (headers,
# pkg-config and CMake packages), documentation, and simcard, which only `--component simcard` installs: it is for
# demonstrations.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zvRenew)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/zvrenew)
set(origin $<IF:$<BOOL:${APPLE}>,@loader_path,$ORIGIN>)
file(RELATIVE_PATH bin_to_lib /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
file(RELATIVE_PATH pc_to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)

set_target_properties(zvRenew min_zvCrypt zvhost PROPERTIES INSTALL_RPATH ${origin})
set_target_properties(zvrenew zvsimcard-tool PROPERTIES INSTALL_RPATH ${origin}/${bin_to_lib})
# A path that is changed at installation is padded with empty elements until then, and the loader takes each for the
# working folder.
set_target_properties(zvRenew min_zvCrypt zvhost zvrenew zvsimcard zvsimcard-tool PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
if(ZV_DESKTOP)
  set_target_properties(zvrenew-desktop PROPERTIES INSTALL_RPATH ${origin}/${bin_to_lib} BUILD_WITH_INSTALL_RPATH ON)
endif()

install(TARGETS zvRenew min_zvCrypt zvhost EXPORT zvRenew COMPONENT runtime INCLUDES DESTINATION ${header_dir})
install(TARGETS zvfront LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/zvrenew COMPONENT runtime)
install(TARGETS zvrenew COMPONENT runtime)
install(TARGETS zvsimcard zvsimcard-tool
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT simcard EXCLUDE_FROM_ALL
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT simcard EXCLUDE_FROM_ALL)
if(APPLE)
  install(FILES ${PROJECT_BINARY_DIR}/lib/libzvRenew.dylib DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endif()

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${header_dir} COMPONENT development
  FILES_MATCHING PATTERN *.h)

configure_file(${PROJECT_SOURCE_DIR}/packaging/zvrenew.pc.in ${PROJECT_BINARY_DIR}/zvrenew.pc @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/packaging/zvrenew-host.pc.in ${PROJECT_BINARY_DIR}/zvrenew-host.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zvrenew.pc ${PROJECT_BINARY_DIR}/zvrenew-host.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(EXPORT zvRenew NAMESPACE zvRenew:: FILE zvRenewConfig.cmake DESTINATION ${package_dir} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/zvRenewConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zvRenewConfigVersion.cmake DESTINATION ${package_dir} COMPONENT development)

# As in the sources, so that the links from page to page lead somewhere.
file(GLOB pages CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/*.md)
list(FILTER pages EXCLUDE REGEX "\\.in\\.md$") # what scripts make pages from
install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation)
install(FILES docs/host/renew.c docs/host/renew.cpp docs/host/renew.py DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs/host
  COMPONENT documentation)
install(DIRECTORY docs/window DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation)
configure_file(${PROJECT_SOURCE_DIR}/packaging/zvcrypt.conf.in ${PROJECT_BINARY_DIR}/zvcrypt.conf @ONLY)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md ${PROJECT_BINARY_DIR}/zvcrypt.conf
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation)
install(FILES simcard/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/simcard COMPONENT simcard EXCLUDE_FROM_ALL)

foreach(page zvrenew.1 zvsimcard-tool.1 zvRenew.3 zvcrypt.conf.5)
  configure_file(${PROJECT_SOURCE_DIR}/docs/man/${page}.in ${PROJECT_BINARY_DIR}/man/${page} @ONLY)
endforeach()
set(man ${PROJECT_BINARY_DIR}/man)
install(FILES ${man}/zvrenew.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT runtime)
install(FILES ${man}/zvcrypt.conf.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT runtime)
install(FILES ${man}/zvRenew.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT development)
install(FILES ${man}/zvsimcard-tool.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT simcard EXCLUDE_FROM_ALL)

# The reminders' timer and the desktop's entry; both are off until a user turns them on. They name the program, and where
# that is, is known when it is installed.
function(zv_install_naming_program file folder)
  set(program ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/zvrenew)
  configure_file(packaging/remind/${file}.in ${PROJECT_BINARY_DIR}/${folder}/${file} @ONLY)
  install(CODE "
    set(program \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/zvrenew\")
    configure_file(\"${PROJECT_SOURCE_DIR}/packaging/remind/${file}.in\"
      \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/${file}\" @ONLY)
    list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${CMAKE_INSTALL_PREFIX}/${folder}/${file}\")" COMPONENT runtime)
endfunction()
if(NOT APPLE)
  zv_install_naming_program(zvrenew-remind.service lib/systemd/user)
  zv_install_naming_program(zvrenew-remind.timer lib/systemd/user)
  zv_install_naming_program(zvrenew-remind.desktop ${CMAKE_INSTALL_DATADIR}/zvrenew)
endif()

if(ZV_DESKTOP)
  install(TARGETS zvrenew-desktop COMPONENT desktop)
  set(desktop ${PROJECT_SOURCE_DIR}/packaging/desktop/zvrenew-desktop)
  set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
  configure_file(${desktop}.svg ${PROJECT_BINARY_DIR}/${icons}/scalable/apps/zvrenew-desktop.svg COPYONLY)
  configure_file(docs/man/zvrenew-desktop.1.in ${man}/zvrenew-desktop.1 @ONLY)
  install(FILES ${man}/zvrenew-desktop.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT desktop)
  if(NOT APPLE)
    install(FILES ${desktop}.svg DESTINATION ${icons}/scalable/apps COMPONENT desktop)
    install(FILES ${desktop}-symbolic.svg DESTINATION ${icons}/symbolic/apps COMPONENT desktop)
    install(FILES ${desktop}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT desktop)
    install(FILES ${desktop}.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo COMPONENT desktop)
  endif()
endif()

set(completion packaging/completion)
install(FILES ${completion}/zvrenew.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME zvrenew
  COMPONENT runtime)
install(FILES ${completion}/_zvrenew DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT runtime)
install(FILES ${completion}/zvrenew.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
  COMPONENT runtime)
