# Install rules: libraries laid out for glibc-hwcaps, headers, CMake package, pkg-config, the command
# and its data.
include(CMakePackageConfigHelpers)

set(cmake_folder ${CMAKE_INSTALL_LIBDIR}/cmake/qor_ark_base)
list(GET QOR_LEVELS 0 first)
foreach(level IN LISTS QOR_LEVELS)
  qor_level_folder(${level} folder)
  if(level STREQUAL first)
    set_target_properties(qor_ark_base_${level} PROPERTIES EXPORT_NAME qor_ark_base)
    install(TARGETS qor_ark_base_${level} qor_core EXPORT qor_ark_base
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  else()
    # Only the loader looks here: the SONAME link, no development link.
    # The services lie with the first level.
    set_target_properties(qor_ark_base_${level} PROPERTIES INSTALL_RPATH "$ORIGIN:$ORIGIN/../..")
    install(TARGETS qor_ark_base_${level}
      LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}${folder} NAMELINK_SKIP)
  endif()
endforeach()
install(DIRECTORY include/qor DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET qor_team)
  install(TARGETS qor_team EXPORT qor_ark_base LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES front/team/team.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qor)
endif()
install(EXPORT qor_ark_base NAMESPACE qor:: FILE qor_ark_base-targets.cmake
  DESTINATION ${cmake_folder})

file(WRITE ${CMAKE_BINARY_DIR}/qor_ark_base-config.cmake
  "include(\${CMAKE_CURRENT_LIST_DIR}/qor_ark_base-targets.cmake)\n")
write_basic_package_version_file(${CMAKE_BINARY_DIR}/qor_ark_base-config-version.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/qor_ark_base-config.cmake
  ${CMAKE_BINARY_DIR}/qor_ark_base-config-version.cmake DESTINATION ${cmake_folder})

configure_file(cmake/qor_ark_base.pc.in ${CMAKE_BINARY_DIR}/qor_ark_base.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/qor_ark_base.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(QOR_FRONT)
  install(FILES front/cpp/qor.hpp DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/qor)
  install(TARGETS qor RUNTIME)
  install(DIRECTORY examples/data DESTINATION ${CMAKE_INSTALL_DATADIR}/qor_ark_base)
endif()
