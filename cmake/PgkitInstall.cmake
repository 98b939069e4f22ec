# Installation: headers, modules with their import libraries, pgtool, and a package that gives other
# CMake projects the targets pgkit::pgkit and pgkit::pgview32 (find_package(pgkit)).
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/pgkit
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h")

# Windows wants the module in bin/ and its
# import library in lib/; other systems want the module in lib/.
install(TARGETS pgkit EXPORT pgkitTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(TARGET pgtool)
  install(TARGETS pgtool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# Beside the library, where that and hosts find it.
if(TARGET pgview32)
  install(TARGETS pgview32 EXPORT pgkitTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
endif()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/pgkit)
install(EXPORT pgkitTargets NAMESPACE pgkit:: DESTINATION ${package_dir})
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/pgkitConfig.cmake.in ${PROJECT_BINARY_DIR}/pgkitConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/pgkitConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/pgkitConfig.cmake
  ${PROJECT_BINARY_DIR}/pgkitConfigVersion.cmake
  DESTINATION ${package_dir})
