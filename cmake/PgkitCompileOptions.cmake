# One interface target with the warnings and sanitizers that all of this project's own code is
# built with. Third-party sources (GoogleTest) do not link it.
add_library(pgkit_compile_options INTERFACE)

target_compile_options(pgkit_compile_options INTERFACE
  -Wall -Wextra -Wconversion -Wshadow -Werror
  $<$<CXX_COMPILER_ID:Clang>:-Wno-sign-conversion>  # part of -Wconversion with this compiler alone
  $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
  $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>)

# What a debugger is told takes a third of the time of compiling the modules. In a build that is not
# delivered, and in which no test starts a debugger, it is the lines.
if(PGKIT_UNITY AND WIN32)
  target_compile_options(pgkit_compile_options INTERFACE -g1)
endif()

if(WIN32)
  # The same files whenever they are built.
  target_link_options(pgkit_compile_options INTERFACE -Wl,--no-insert-timestamp)
endif()

# A host's thread may have little stack. Sanitizers put gaps between variables.
if(NOT PGKIT_SANITIZE AND NOT PGKIT_SANITIZE_THREADS)
  target_compile_options(pgkit_compile_options INTERFACE -Wframe-larger-than=8192)
endif()

if(PGKIT_SANITIZE)
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(pgkit_compile_options INTERFACE ${sanitizers})
  target_link_options(pgkit_compile_options INTERFACE ${sanitizers})
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # Programs in C bring the runtime for a module in C++.
    target_link_options(pgkit_compile_options INTERFACE -fsanitize-link-c++-runtime)
    target_link_libraries(pgkit_compile_options INTERFACE stdc++)
  endif()
  if(NOT PGKIT_FUZZ)
    # Tests run for seconds what takes minutes to optimise.
    target_compile_options(pgkit_compile_options INTERFACE -O1 -g1)
  endif()
endif()

if(PGKIT_FUZZ)
  target_compile_options(pgkit_compile_options INTERFACE -fsanitize=fuzzer-no-link)
  target_link_options(pgkit_compile_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

if(PGKIT_SANITIZE_THREADS)
  target_compile_options(pgkit_compile_options INTERFACE -fsanitize=thread)
  target_compile_options(pgkit_compile_options INTERFACE -O0 -g1)  # its few tests are short
  target_link_options(pgkit_compile_options INTERFACE -fsanitize=thread)
endif()

# Of programs that use the modules; linked behind the options above. They spend their time in the
# modules: in a build that is not delivered, optimising them would take longer than it saves.
add_library(pgkit_program_options INTERFACE)
if(PGKIT_UNITY)
  if(PGKIT_SANITIZE)
    target_compile_options(pgkit_program_options INTERFACE -O0)
  else()
    target_compile_options(pgkit_program_options INTERFACE -O1 -g1)
  endif()
endif()
