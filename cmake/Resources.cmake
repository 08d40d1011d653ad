# Resource files are compiled from text sources by mcrsc. mclib.rsc lies beside the programs and applications.
file(GLOB MCLIB_RESOURCES CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/*.toml)
add_executable(mcrsc ${PROJECT_SOURCE_DIR}/host/mcrsc.cpp)
target_link_libraries(mcrsc PRIVATE mchost CLI11::CLI11)
target_compile_definitions(mcrsc PRIVATE MCHOST_VERSION="${PROJECT_VERSION}")
# A malformed source has a message; the asserts of toml++ in front of some of them would end the program.
target_compile_options(mcrsc PRIVATE "-DTOML_ASSERT(expr)=static_assert(true)")
set(MCLIB_RSC ${CMAKE_BINARY_DIR}/lib/mclib.rsc)
add_custom_command(OUTPUT ${MCLIB_RSC} COMMAND mcrsc -o ${MCLIB_RSC} ${MCLIB_RESOURCES}
                   DEPENDS mcrsc ${MCLIB_RESOURCES} VERBATIM)
add_custom_target(mclib-resources ALL DEPENDS ${MCLIB_RSC})
add_dependencies(product mcrsc mclib-resources)
