# cmake --install: the library, its headers under include/orvikqzds, a CMake
# package and a pkg-config file.
include(CMakePackageConfigHelpers)

# The pkg-config file finds everything from where it stands.
foreach(directory CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
    if(IS_ABSOLUTE "${${directory}}")
        message(FATAL_ERROR "${directory} is relative to the installation prefix")
    endif()
endforeach()

install(TARGETS orvikqzds EXPORT orvikqzds
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header IN LISTS public_headers)
    get_filename_component(directory ${header} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvikqzds/${directory})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/orvikqzds)
install(EXPORT orvikqzds NAMESPACE orvikqzds:: FILE orvikqzds-targets.cmake
    DESTINATION ${package_dir})
configure_package_config_file(cmake/orvikqzds-config.cmake.in orvikqzds-config.cmake
    INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(orvikqzds-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/orvikqzds-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/orvikqzds-config-version.cmake
    DESTINATION ${package_dir})

# Relative, so that the installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(cmake/orvikqzds.pc.in orvikqzds.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orvikqzds.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
