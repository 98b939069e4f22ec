# Cross-build for 64-bit Windows with Debian's g++-mingw-w64-x86-64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

# The flavour whose threads are Windows' own: the other one's library of threads needs a function
# that the universal C runtime lacks.
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-win32)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-win32)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# The C runtime: "ucrt", the universal one, which hosts of current compilers have, or "msvcrt", the
# old one, which this compiler takes by itself. Streams and memory are shared with hosts of the same.
set(PGKIT_WINDOWS_RUNTIME ucrt CACHE STRING "C runtime of the Windows build: ucrt or msvcrt")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PGKIT_WINDOWS_RUNTIME)
if(PGKIT_WINDOWS_RUNTIME STREQUAL "ucrt")
  set(CMAKE_C_FLAGS_INIT "-D_UCRT -specs=${CMAKE_CURRENT_LIST_DIR}/ucrt.specs")
  set(CMAKE_CXX_FLAGS_INIT
    "${CMAKE_C_FLAGS_INIT} -include ${CMAKE_CURRENT_LIST_DIR}/ucrt_mbstate.h")
endif()

# Compiler runtimes are linked in: the module depends on the system's own libraries only.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
