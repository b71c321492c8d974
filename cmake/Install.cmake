# cmake --install: the library, its headers under include/orvikqzds, a CMake
# package, a pkg-config file, what gdb needs, documents and examples. Included once
# for the build tree and once for the packages, which have directories of their own.
include(CMakePackageConfigHelpers)
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)

# The pkg-config file finds everything from where it stands.
foreach(directory CMAKE_INSTALL_LIBDIR CMAKE_INSTALL_INCLUDEDIR)
    if(IS_ABSOLUTE "${${directory}}")
        message(FATAL_ERROR "${directory} is relative to the installation prefix")
    endif()
endforeach()

if(NOT DEFINED export_set)
    set(export_set orvikqzds)
    set(printers_dir ${CMAKE_INSTALL_LIBDIR})
endif()
install(TARGETS orvikqzds EXPORT ${export_set}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    COMPONENT library NAMELINK_COMPONENT development)
foreach(header IN LISTS public_headers)
    get_filename_component(directory ${header} DIRECTORY)
    install(FILES ${PROJECT_SOURCE_DIR}/${header}
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orvikqzds/${directory})
endforeach()

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/orvikqzds)
install(EXPORT ${export_set} NAMESPACE orvikqzds:: FILE orvikqzds-targets.cmake
    DESTINATION ${package_dir})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/orvikqzds-config.cmake.in
    orvikqzds-config.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(orvikqzds-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/orvikqzds-config.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/orvikqzds-config-version.cmake
    DESTINATION ${package_dir})

# Relative, so that the installed tree can be moved.
file(RELATIVE_PATH prefix_from_pc /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
configure_file(${PROJECT_SOURCE_DIR}/cmake/orvikqzds.pc.in orvikqzds.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/orvikqzds.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# gdb looks for a file of this name in its own tree, where packages put it, and
# beside the library, where it wants the directory declared safe.
install(FILES ${PROJECT_SOURCE_DIR}/tools/gdb/orvikqzds.py
    DESTINATION ${printers_dir} RENAME liborvikqzds.so.${PROJECT_VERSION}-gdb.py
    COMPONENT library)

install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
    DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DOCDIR}
    FILES_MATCHING PATTERN *.md PATTERN *.cxx PATTERN CMakeLists.txt)
