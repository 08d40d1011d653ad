# Resource files are compiled from text sources by mcrsc. mclib.rsc lies beside the programs and applications.
file(GLOB MCLIB_RESOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.toml)
set(MCLIB_RSC ${CMAKE_BINARY_DIR}/lib/mclib.rsc)
add_custom_command(OUTPUT ${MCLIB_RSC} COMMAND mcrsc -o ${MCLIB_RSC} ${MCLIB_RESOURCES}
                   DEPENDS mcrsc ${MCLIB_RESOURCES} VERBATIM)
add_custom_target(mclib-resources ALL DEPENDS ${MCLIB_RSC})
add_dependencies(product mclib-resources)
