# What a client of a Wayland protocol is made of is generated from the protocol's description.

pkg_get_variable(WAYLAND_SCANNER wayland-scanner wayland_scanner)
if(NOT WAYLAND_SCANNER)
  message(FATAL_ERROR "wayland-scanner is missing")
endif()

# tessery_wayland_protocols(NAME XML...): a static library with the client's side of each protocol,
# and its header NAME-OF-THE-XML-client-protocol.h.
function(tessery_wayland_protocols name)
  set(generated "")
  foreach(description IN LISTS ARGN)
    cmake_path(ABSOLUTE_PATH description)
    cmake_path(GET description STEM protocol)
    set(header "${CMAKE_CURRENT_BINARY_DIR}/${protocol}-client-protocol.h")
    set(code "${CMAKE_CURRENT_BINARY_DIR}/${protocol}-protocol.c")
    add_custom_command(OUTPUT "${header}"
      COMMAND "${WAYLAND_SCANNER}" client-header "${description}" "${header}"
      DEPENDS "${description}" VERBATIM)
    add_custom_command(OUTPUT "${code}"
      COMMAND "${WAYLAND_SCANNER}" private-code "${description}" "${code}"
      DEPENDS "${description}" VERBATIM)
    list(APPEND generated "${header}" "${code}")
  endforeach()
  add_library(${name} STATIC ${generated})
  set_target_properties(${name} PROPERTIES AUTOMOC OFF)
  target_include_directories(${name} SYSTEM INTERFACE "${CMAKE_CURRENT_BINARY_DIR}")
  target_link_libraries(${name} PUBLIC PkgConfig::WAYLAND_CLIENT PRIVATE tessery_hardening)
endfunction()
