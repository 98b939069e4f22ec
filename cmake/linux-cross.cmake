# Cross-build for Linux on another processor with Debian's compilers: PGKIT_TRIPLET names it, and what
# is built runs here under qemu.
set(CMAKE_SYSTEM_NAME Linux)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PGKIT_TRIPLET)
string(REGEX REPLACE "-.*" "" CMAKE_SYSTEM_PROCESSOR "${PGKIT_TRIPLET}")
set(CMAKE_C_COMPILER ${PGKIT_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${PGKIT_TRIPLET}-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-${CMAKE_SYSTEM_PROCESSOR} -L /usr/${PGKIT_TRIPLET})
