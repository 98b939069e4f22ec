# What the built files offer against exploits of a bug that is left: checked buffers and stacks,
# memory that is either written or executed, addresses that cannot be foretold. Builds with
# sanitizers check more themselves and are not delivered.
get_target_property(options pgkit_compile_options INTERFACE_COMPILE_OPTIONS)
if(options MATCHES "-fsanitize")
  return()
endif()

# Checked buffers exist in optimised builds only; some compilers define the macro by themselves.
target_compile_options(pgkit_compile_options INTERFACE
  -fstack-protector-strong
  $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE>
  $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
if(WIN32)
  # Here the checks come from a library of the compiler's, which this option links too.
  target_link_options(pgkit_compile_options INTERFACE
    -fstack-protector-strong
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--high-entropy-va)
else()
  target_link_options(pgkit_compile_options INTERFACE
    -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
endif()
