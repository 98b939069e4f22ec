# GoogleTest's targets GTest::gtest, GTest::gtest_main and GTest::gmock: the installed libraries, or, for
# another system than this one, its sources.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest CONFIG QUIET)
  if(GTest_FOUND)
    return()
  endif()
endif()

find_path(PGKIT_GOOGLETEST_SOURCE googletest/CMakeLists.txt
  PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH
  DOC "Directory of the GoogleTest sources (Debian's package googletest)" REQUIRED)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
add_subdirectory(${PGKIT_GOOGLETEST_SOURCE} googletest EXCLUDE_FROM_ALL)
foreach(target gtest gtest_main gmock)
  target_compile_options(${target} PRIVATE -O0 -g1)
endforeach()
if(MINGW)
  # One of its classes wants <mutex>, which this compiler's library lacks.
  target_sources(gtest PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/notification_win32.cpp)
  target_include_directories(gtest PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(gtest PUBLIC GTEST_HAS_NOTIFICATION_=1)
  target_compile_options(gtest PUBLIC
    -include ${PROJECT_SOURCE_DIR}/tests/support/notification_win32.h)
endif()
