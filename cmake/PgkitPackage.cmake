# Archives, made by cpack in a build directory: zip for Windows, tar elsewhere. Debian packages are made
# by scripts/make-debian-packages.sh.
set(CPACK_PACKAGE_NAME pgkit)
set(CPACK_PACKAGE_VENDOR "the pgkit authors")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)
# The same archive whenever it is made.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/PgkitPackageTimes.cmake)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME windows-x64)
else()
  set(CPACK_GENERATOR TGZ)
  set(CPACK_SYSTEM_NAME linux-${CMAKE_SYSTEM_PROCESSOR})
endif()
include(CPack)
