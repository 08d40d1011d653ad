# Cell libraries are compiled from text sources by mccel.
add_executable(mccel ${PROJECT_SOURCE_DIR}/host/mccel.cpp ${PROJECT_SOURCE_DIR}/host/mccel_values.cpp)
target_link_libraries(mccel PRIVATE mchost CLI11::CLI11)
add_dependencies(product mccel)
target_compile_definitions(mccel PRIVATE MCHOST_VERSION="${PROJECT_VERSION}")
# A malformed source has a message; the asserts of toml++ in front of some of them would end the program.
target_compile_options(mccel PRIVATE "-DTOML_ASSERT(expr)=static_assert(true)")

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
