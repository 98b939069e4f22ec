# Cross-build for Linux on another processor with Debian's compilers: PGKIT_TRIPLET names it, and what
# is built runs here under qemu. Debian has the C and C++ libraries for it as packages of this machine;
# zlib is fetched below build/cross by scripts/fetch-cross-libraries.sh.
set(CMAKE_SYSTEM_NAME Linux)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PGKIT_TRIPLET)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR "${PGKIT_TRIPLET}")
set(CMAKE_C_COMPILER ${PGKIT_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${PGKIT_TRIPLET}-g++)
# Under the emulator programs see this machine's files, with that processor's loader and libraries where
# its packages have put them.
file(GLOB loader /usr/${PGKIT_TRIPLET}/lib/ld*.so.1)
set(CMAKE_SHARED_LINKER_FLAGS_INIT
  "-Wl,--disable-new-dtags -Wl,-rpath=/usr/${PGKIT_TRIPLET}/lib")
set(CMAKE_EXE_LINKER_FLAGS_INIT
  "${CMAKE_SHARED_LINKER_FLAGS_INIT} -Wl,--dynamic-linker=${loader}")
set(CMAKE_CROSSCOMPILING_EMULATOR
  ${CMAKE_CURRENT_LIST_DIR}/../scripts/run-emulated.sh ${PGKIT_TRIPLET})
set(CMAKE_LIBRARY_ARCHITECTURE ${PGKIT_TRIPLET})
set(CMAKE_FIND_ROOT_PATH ${CMAKE_CURRENT_LIST_DIR}/../build/cross/${PGKIT_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(ZLIB_USE_STATIC_LIBS ON)
