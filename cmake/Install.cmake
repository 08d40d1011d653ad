# What an installed MCLib is: two libraries, the programs, the headers as they stand in the folders, the resource file,
# and the ways to find them (find_package(mclib), pkg-config mclib).
include(CMakePackageConfigHelpers)

install(TARGETS mchost mclib EXPORT mclib-targets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS mchost-program mcrsc mccel mcshell RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

foreach(room mclib mchost/mdl ${ROOMS})
  if(room MATCHES "^mclib" OR room STREQUAL "mchost/mdl")
    file(GLOB headers RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${room}/*.h ${room}/*.hpp)
    foreach(header ${headers})
      # Public ones are plain C with guards, or end in .hpp.
      file(STRINGS ${PROJECT_SOURCE_DIR}/${header} internal REGEX "^#pragma once")
      if(NOT internal OR header MATCHES "hpp$")
        install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${room})
      endif()
    endforeach()
  endif()
endforeach()

install(FILES ${CMAKE_BINARY_DIR}/lib/mclib.rsc DESTINATION ${CMAKE_INSTALL_DATADIR}/mclib)
install(DIRECTORY ${CMAKE_BINARY_DIR}/lib/cell DESTINATION ${CMAKE_INSTALL_DATADIR}/mclib)
install(FILES programs/mchost.cfg DESTINATION ${CMAKE_INSTALL_DATADIR}/mclib)
install(DIRECTORY programs/plotters DESTINATION ${CMAKE_INSTALL_DATADIR}/mclib)

# The documents as they stand in the source tree, so that their links hold, and what they speak of.
set(DOCUMENTS ${CMAKE_INSTALL_DOCDIR})
install(FILES README.md DESTINATION ${DOCUMENTS})
install(DIRECTORY docs examples DESTINATION ${DOCUMENTS} PATTERN CMakeLists.txt EXCLUDE)
install(DIRECTORY apps DESTINATION ${DOCUMENTS} FILES_MATCHING PATTERN README.md PATTERN hello.c PATTERN "examples/*"
        PATTERN common EXCLUDE)
install(DIRECTORY packaging/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

install(EXPORT mclib-targets NAMESPACE mclib:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/mclib)
configure_package_config_file(cmake/mclib-config.cmake.in mclib-config.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/mclib)
write_basic_package_version_file(mclib-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mclib-config.cmake ${CMAKE_CURRENT_BINARY_DIR}/mclib-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/mclib)
configure_file(cmake/mclib.pc.in mclib.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/mclib.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
