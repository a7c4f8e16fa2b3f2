# What every target of the project has in common, and the two shapes of target that it has:
# one static library per folder, and tests that link libraries.

add_library(tessery_options INTERFACE)
target_compile_features(tessery_options INTERFACE cxx_std_20)
target_include_directories(tessery_options INTERFACE "${PROJECT_SOURCE_DIR}/src")
target_compile_definitions(tessery_options INTERFACE
  QT_NO_CAST_FROM_ASCII
  QT_NO_CAST_TO_ASCII
  QT_NO_CAST_FROM_BYTEARRAY
  QT_NO_URL_CAST_FROM_STRING
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_FOREACH
  QT_NO_KEYWORDS
  QT_NO_JAVA_STYLE_ITERATORS
  QT_USE_QSTRINGBUILDER
  QT_DISABLE_DEPRECATED_BEFORE=0x060400)
target_compile_options(tessery_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
  -Wcast-qual -Wformat=2 -Wimplicit-fallthrough -Wextra-semi
  -Wnull-dereference
  $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override -Wlogical-op -Wduplicated-cond
    -Wduplicated-branches -Wuseless-cast>)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_AUTOMOC ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(TESSERY_SANITIZE)
  # gcc's null-dereference analysis reports paths that only the instrumentation makes.
  target_compile_options(tessery_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
    -Wno-null-dereference)
  target_link_options(tessery_options INTERFACE -fsanitize=address,undefined)
endif()

# tessery_library(NAME SOURCES... HEADERS... LINKS...): the static library of one folder. Headers
# without a source of the same name, which would include them first, are set apart so that each can
# be compiled alone (target all_verify_interface_header_sets).
function(tessery_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;HEADERS;LINKS;PRIVATE_LINKS")
  set(lone_headers "")
  foreach(header IN LISTS arg_HEADERS)
    string(REGEX REPLACE "\\.h$" ".cpp" source "${header}")
    if(NOT source IN_LIST arg_SOURCES)
      list(APPEND lone_headers ${header})
    endif()
  endforeach()
  list(REMOVE_ITEM arg_HEADERS ${lone_headers})

  add_library(${name} STATIC ${arg_SOURCES})
  target_sources(${name} PUBLIC
    FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${arg_HEADERS}
    FILE_SET lone_headers TYPE HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${lone_headers})
  set_target_properties(${name} PROPERTIES
    VERIFY_INTERFACE_HEADER_SETS ON
    INTERFACE_HEADER_SETS_TO_VERIFY lone_headers)
  target_link_libraries(${name} PUBLIC tessery_options ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
endfunction()

# tessery_test(NAME LINKS... [LABELS...] [TIMEOUT seconds]): one test program, built from NAME.cpp.
function(tessery_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SERIAL" "TIMEOUT" "LINKS;LABELS;SOURCES;ENVIRONMENT")
  add_executable(${name} ${name}.cpp ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE tessery_test_support ${arg_LINKS})
  add_test(NAME ${name} COMMAND ${name})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 60)
  endif()
  set_tests_properties(${name} PROPERTIES
    TIMEOUT ${arg_TIMEOUT} LABELS "${arg_LABELS}" ENVIRONMENT "${arg_ENVIRONMENT}")
  if(arg_SERIAL)
    set_tests_properties(${name} PROPERTIES RUN_SERIAL ON)
  endif()
endfunction()
