# Fails when a program lacks something that cmake/Hardening.cmake, or a distribution's compiler
# flags, should have given it. OPTIMISED: whether the compiler optimised it.
cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8
    ${READELF} --wide --file-header --program-headers --dynamic --notes --dyn-syms ${PROGRAM}
  OUTPUT_VARIABLE elf COMMAND_ERROR_IS_FATAL ANY)

set(mistakes "")

function(expect pattern what)
  if(NOT elf MATCHES "${pattern}")
    set(mistakes "${mistakes}\n  ${what}" PARENT_SCOPE)
  endif()
endfunction()

function(expect_not pattern what)
  if(elf MATCHES "${pattern}")
    set(mistakes "${mistakes}\n  ${what}" PARENT_SCOPE)
  endif()
endfunction()

expect("FLAGS_1[^\n]* PIE" "not position-independent")
expect("FLAGS_1[^\n]* NOW" "functions are bound late")
expect("\n *GNU_RELRO " "relocated data stays writable")
expect("\n *GNU_STACK [^\n]* RW  " "the stack can be executed")
expect(" __stack_chk_fail@" "no stack protector")
expect_not("TEXTREL" "code is relocated")
expect_not("\\(R(UN)?PATH\\)" "brings a search path for libraries")
if(OPTIMISED)
  expect(" __(mem|str|read|poll|recv|v?s?n?f?printf|realpath|getcwd)[a-z]*_chk@"
    "no checked forms of the C library's functions")
endif()
if(elf MATCHES "Machine: +(Advanced Micro Devices X86-64|Intel 80386)")
  expect("x86 feature: (IBT, )?SHSTK" "no shadow stack")
  # Whether the linker claims the marks depends on the C run-time; that our code has them does not.
  execute_process(COMMAND ${OBJDUMP} --disassemble --section=.text ${PROGRAM}
    COMMAND grep --count endbr64 OUTPUT_VARIABLE marks)
  if(marks LESS 500)
    string(APPEND mistakes "\n  the targets of indirect jumps are not marked")
  endif()
endif()

if(mistakes)
  message(FATAL_ERROR "${PROGRAM}:${mistakes}")
endif()
