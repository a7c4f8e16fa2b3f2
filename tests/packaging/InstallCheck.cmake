# Installs the program into a folder of its own and fails when a file is missing, is one too many,
# or is not what its place says.
cmake_minimum_required(VERSION 3.25)

file(REMOVE_RECURSE ${STAGE})
execute_process(COMMAND ${CMAKE_COMMAND} -E env DESTDIR=${STAGE} ${CMAKE_COMMAND} --install ${BUILD}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

set(root "${STAGE}${PREFIX}")
set(id org.tessery.Tessery)
set(sizes 16 22 24 32 48 64 128 256)

set(expected
  bin/tessery
  share/applications/${id}.desktop
  share/dbus-1/services/${id}.service
  share/doc/tessery/LICENSE
  share/doc/tessery/README.md
  share/doc/tessery/docs/architecture.md
  share/icons/hicolor/scalable/apps/${id}.svg
  share/icons/hicolor/symbolic/apps/${id}-symbolic.svg
  share/man/man1/tessery.1
  share/metainfo/${id}.metainfo.xml)
foreach(size IN LISTS sizes)
  list(APPEND expected share/icons/hicolor/${size}x${size}/apps/${id}.png)
endforeach()

file(GLOB_RECURSE installed RELATIVE ${STAGE} LIST_DIRECTORIES false "${STAGE}/*")
list(TRANSFORM installed PREPEND "/")
list(TRANSFORM expected PREPEND "${PREFIX}/")
set(missing ${expected})
list(REMOVE_ITEM missing ${installed})
set(unknown ${installed})
list(REMOVE_ITEM unknown ${expected})
# Further documents may come and go.
list(FILTER unknown EXCLUDE REGEX "^${PREFIX}/share/doc/tessery/([A-Z]+|docs/.*)\\.(md|png)$")
if(missing OR unknown)
  message(FATAL_ERROR "missing: ${missing}\nnot to be installed: ${unknown}")
endif()

foreach(size IN LISTS sizes)
  set(pixmap "${root}/share/icons/hicolor/${size}x${size}/apps/${id}.png")
  # Width and height follow the signature and the header's name, four bytes each.
  file(READ "${pixmap}" bytes HEX OFFSET 16 LIMIT 8)
  math(EXPR hex "(${size} << 32) + ${size}" OUTPUT_FORMAT HEXADECIMAL)
  string(SUBSTRING "${hex}" 2 -1 hex)
  if(NOT bytes MATCHES "^0*${hex}$")
    message(FATAL_ERROR "${pixmap}: not ${size} pixels wide and high")
  endif()
endforeach()

file(READ "${root}/share/dbus-1/services/${id}.service" service)
if(NOT service MATCHES "\nExec=${PREFIX}/bin/tessery\n")
  message(FATAL_ERROR "the bus would not start the installed program:\n${service}")
endif()

file(REMOVE_RECURSE ${STAGE})
