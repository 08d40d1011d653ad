# Cell libraries are compiled from text sources by mccel.

# mclib_cell_library(NAME SOURCES...): NAME.cel from sources in the current folder, at build time. It goes to the folder
# "cell" beside mclib.rsc, where the library looks by default. The target is NAME-cells.
function(mclib_cell_library name)
  set(library ${CMAKE_BINARY_DIR}/lib/cell/${name}.cel)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  add_custom_command(OUTPUT ${library}
                     COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/lib/cell
                     COMMAND mccel -o ${library} ${ARGN}
                     DEPENDS mccel ${ARGN} VERBATIM)
  add_custom_target(${name}-cells ALL DEPENDS ${library})
  add_dependencies(product ${name}-cells)
endfunction()
