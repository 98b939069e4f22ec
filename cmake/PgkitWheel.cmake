# The wheel of the Python module that the archive for Windows brings along: pip installs it on a machine
# with nothing else of pgkit. It has the modules of this build and lacks the part in C++, for which there
# are no headers of a Python for Windows. A machine without setuptools and wheel makes archives without it.
set(PGKIT_WHEEL_PYTHON "" CACHE FILEPATH "Python with setuptools and wheel, which makes the wheel")
mark_as_advanced(PGKIT_WHEEL_PYTHON)

# The first Python in the path need not be the system's, which has its packages. Asked for "wheel" alone,
# it takes the folder below, once that is there, for the package.
find_package(Python3 COMPONENTS Interpreter)
set(wheel_python)
foreach(candidate ${PGKIT_WHEEL_PYTHON} ${Python3_EXECUTABLE} /usr/bin/python3)
  execute_process(COMMAND ${candidate} -c "import setuptools, wheel.bdist_wheel"
    RESULT_VARIABLE unable OUTPUT_QUIET ERROR_QUIET)
  if(unable EQUAL 0)
    set(wheel_python ${candidate})
    break()
  endif()
endforeach()
if(NOT wheel_python)
  message(STATUS "No Python with setuptools and wheel: the archive has no wheel")
  return()
endif()

set(wheel_sources ${PROJECT_SOURCE_DIR}/bindings/python)
set(wheel_work ${PROJECT_BINARY_DIR}/wheel)
set(wheel ${wheel_work}/pgkit-${PROJECT_VERSION}-py3-none-win_amd64.whl)
file(GLOB wheel_inputs CONFIGURE_DEPENDS ${wheel_sources}/*.* ${wheel_sources}/pgkit/*.*)
# Nothing is written beside the sources, and no file of an earlier wheel stays in the next one.
add_custom_command(OUTPUT ${wheel}
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${wheel_work}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${wheel_work}
  COMMAND ${CMAKE_COMMAND} -E chdir ${wheel_sources}
    ${CMAKE_COMMAND} -E env PYTHONDONTWRITEBYTECODE=1
      PGKIT_LIBRARY=$<TARGET_FILE:pgkit> STRIP=${CMAKE_STRIP}
    ${wheel_python} setup.py --quiet egg_info --egg-base ${wheel_work} build --build-base ${wheel_work}/build
      bdist_wheel --bdist-dir ${wheel_work}/content --dist-dir ${wheel_work}
  DEPENDS pgkit ${modules} ${wheel_inputs} ${PROJECT_SOURCE_DIR}/data/private.dic
  COMMENT "Making the wheel for Windows" VERBATIM)
add_custom_target(pgkit_wheel ALL DEPENDS ${wheel})
install(FILES ${wheel} DESTINATION ${CMAKE_INSTALL_DATADIR}/pgkit)
