# Headers, library, package files, host and man page.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Framewright)

install(TARGETS framewright EXPORT FramewrightTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# find_package(Framewright), target Framewright::framewright
install(EXPORT FramewrightTargets NAMESPACE Framewright:: DESTINATION ${package_dir})
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/FramewrightConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/FramewrightConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
  ${CMAKE_CURRENT_BINARY_DIR}/FramewrightConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/FramewrightConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/FramewrightConfigVersion.cmake
  DESTINATION ${package_dir})

# pkg-config framewright. The prefix is found from where the file lies, so an installed tree can be moved; an absolute
# library folder cannot, and is written out.
set(pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} OR IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
  set(pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH up /${pc_dir} /)
  set(pc_prefix "\${pcfiledir}/${up}")
  string(REGEX REPLACE "/$" "" pc_prefix "${pc_prefix}")
endif()
foreach(part LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE ${CMAKE_INSTALL_${part}})
    set(pc_${part} ${CMAKE_INSTALL_${part}})
  else()
    set(pc_${part} "\${prefix}/${CMAKE_INSTALL_${part}}")
  endif()
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/framewright.pc.in ${CMAKE_CURRENT_BINARY_DIR}/framewright.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/framewright.pc DESTINATION ${pc_dir})

if(TARGET framewright_host)
  # The installed host finds its library wherever the tree stands.
  file(RELATIVE_PATH library_from_host /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
  if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set_target_properties(framewright_host PROPERTIES INSTALL_RPATH "$ORIGIN/${library_from_host}")
  endif()
  install(TARGETS framewright_host RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(EXISTS ${PROJECT_SOURCE_DIR}/host/framewright.1)
    install(FILES ${PROJECT_SOURCE_DIR}/host/framewright.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endif()
