# Installation: headers, modules with their import libraries, pgtool, documentation and examples, and
# what other projects find the library by: a CMake package with the targets pgkit::pgkit and
# pgkit::pgview32 (find_package(pgkit)) and a pkg-config file. Everything may be moved together
# afterwards: no file names the prefix.
include(CMakePackageConfigHelpers)

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/pgkit
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
  FILES_MATCHING PATTERN "*.h" PATTERN "*.hpp")

# Windows wants the modules in bin/ and their import libraries in lib/; other systems want the
# modules in lib/. The imaging module lies beside the library, where that and hosts find it.
set(modules pgkit)
if(TARGET pgview32)
  list(APPEND modules pgview32)
endif()
install(TARGETS ${modules} EXPORT pgkitTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
# The private elements that pgtool and the Python module know: beside the tool on Windows, where
# everything of a program lies in its folder.
if(WIN32)
  set(private_elements_dir ${CMAKE_INSTALL_BINDIR})
else()
  set(private_elements_dir ${CMAKE_INSTALL_DATADIR}/pgkit)
endif()
install(FILES ${PROJECT_SOURCE_DIR}/data/private.dic DESTINATION ${private_elements_dir})
if(TARGET pgtool)
  install(TARGETS pgtool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(NOT WIN32)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/pgtool.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/pgtool.bash
      DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME pgtool)
    install(FILES ${PROJECT_SOURCE_DIR}/tools/pgtool.zsh
      DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions RENAME _pgtool)
  endif()
endif()
if(WIN32)
  # The export table, for the import libraries of other toolchains. The linker writes it for a module
  # that is not linked by one.
  foreach(module ${modules})
    set(definitions ${PROJECT_SOURCE_DIR}/src/${module}.def)
    if(NOT EXISTS ${definitions})
      set(definitions ${PROJECT_BINARY_DIR}/lib/${module}.def)
      target_link_options(${module} PRIVATE "LINKER:--output-def,${definitions}")
    endif()
    install(FILES ${definitions} DESTINATION ${CMAKE_INSTALL_LIBDIR})
  endforeach()
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

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH PGKIT_PREFIX_FROM_PKGCONFIG /prefix/${pkgconfig_dir} /prefix)
# Linkers look for a companion module, whose name has no "lib", by its file name.
if(WIN32)
  set(PGKIT_PGVIEW32_LIBRARY -lpgview32)
else()
  set(PGKIT_PGVIEW32_LIBRARY -l:pgview32.so)
endif()
foreach(module ${modules})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${module}.pc.in ${PROJECT_BINARY_DIR}/${module}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${module}.pc DESTINATION ${pkgconfig_dir})
endforeach()

install(FILES
  ${PROJECT_SOURCE_DIR}/LICENSE
  ${PROJECT_SOURCE_DIR}/NOTICE
  ${PROJECT_SOURCE_DIR}/README.md
  ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  ${PROJECT_SOURCE_DIR}/SECURITY.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.md" PATTERN "*.png")
# The public headers as one page. A machine without Python installs them alone.
find_package(Python3 COMPONENTS Interpreter)
if(Python3_FOUND)
  file(GLOB public_headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/pgkit/*.h)
  set(api_page ${PROJECT_BINARY_DIR}/docs/api.md)
  set(make_api_page ${PROJECT_SOURCE_DIR}/scripts/make-api-docs.py)
  add_custom_command(OUTPUT ${api_page}
    COMMAND Python3::Interpreter ${make_api_page} ${api_page}
    DEPENDS ${make_api_page} ${public_headers} VERBATIM)
  add_custom_target(pgkit_api_page ALL DEPENDS ${api_page})
  install(FILES ${api_page} DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/bindings/python
  DESTINATION ${CMAKE_INSTALL_DATADIR}/pgkit
  FILES_MATCHING PATTERN "*.py" PATTERN "*.toml" PATTERN "*.md" PATTERN "py.typed"
  PATTERN "__pycache__" EXCLUDE)
if(WIN32 AND EXISTS ${PROJECT_SOURCE_DIR}/bindings/python/setup.py)
  include(PgkitWheel)
endif()
if(TARGET pgkit_python_speed)
  install(TARGETS pgkit_python_speed
    LIBRARY DESTINATION ${CMAKE_INSTALL_DATADIR}/pgkit/python/pgkit)
endif()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/tools/debugger DESTINATION ${CMAKE_INSTALL_DATADIR}/pgkit
  FILES_MATCHING PATTERN "*.py" PATTERN "*.natvis"
  PATTERN "__pycache__" EXCLUDE)
