# What makes a fault in the program harder to exploit, in every build but those with the sanitizers,
# which bring checks of their own: tessery_hardening, which tessery_options brings along.
# tests/packaging/HardeningCheck.cmake proves it on the program.

include(CheckPIESupported)
check_pie_supported()

add_library(tessery_hardening INTERFACE)

if(NOT TESSERY_SANITIZE)
  target_compile_options(tessery_hardening INTERFACE -fstack-protector-strong)
  # The checked forms of the C library's functions exist only where the compiler optimises, which
  # None, the type of build of distributions, does too. They define the macro as well, some with
  # another value.
  target_compile_options(tessery_hardening INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel,None>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  # Relocated data is read-only once the program runs, which takes binding every function at start-up.
  target_link_options(tessery_hardening INTERFACE -Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
    # Indirect jumps only to marked places, and a shadow stack of return addresses (CET). The linker
    # claims either for the program only if every object claims it, and a distribution's C run-time
    # may not. A shadow stack asks nothing of the run-time's few lines, so it is claimed all the same;
    # the marks of jump targets do, for the program begins in them.
    target_compile_options(tessery_hardening INTERFACE -fcf-protection=full)
    target_link_options(tessery_hardening INTERFACE -Wl,-z,shstk)
  endif()
endif()

target_link_libraries(tessery_options INTERFACE tessery_hardening)
