# Resource files are compiled from text sources by mcrsc. mclib.rsc lies beside the programs and applications; the numbers
# in it have names in resources/ids.h, which is written anew only when it changes.
file(GLOB MCLIB_RESOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.toml)
set(MCLIB_RSC ${CMAKE_BINARY_DIR}/lib/mclib.rsc)
set(MCLIB_IDS ${CMAKE_BINARY_DIR}/generated/resources/ids.h)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/generated/resources)
add_custom_command(OUTPUT ${MCLIB_RSC} ${MCLIB_IDS} COMMAND mcrsc -o ${MCLIB_RSC} -n ${MCLIB_IDS} ${MCLIB_RESOURCES}
                   DEPENDS mcrsc ${MCLIB_RESOURCES} VERBATIM)
add_custom_target(mclib-resources ALL DEPENDS ${MCLIB_RSC} ${MCLIB_IDS})
add_dependencies(product mclib-resources)
add_dependencies(mclib-objects mclib-resources)
target_include_directories(mclib-objects PUBLIC ${CMAKE_BINARY_DIR}/generated)
