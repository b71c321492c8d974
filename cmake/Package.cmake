# cpack: Debian packages of the library, of what programs are built with, and of
# the tools, for the target of the build tree.
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
    set(debian_libdir lib/i386-linux-gnu)
else()
    set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
    set(debian_libdir lib/x86_64-linux-gnu)
endif()

# Debian's directories are not those of cmake --install: the rules for the library
# run a second time, in a directory that cmake --install leaves out.
add_subdirectory(cmake/package EXCLUDE_FROM_ALL)
set(CPACK_INSTALL_CMAKE_PROJECTS ${CMAKE_CURRENT_BINARY_DIR}/cmake/package orvikqzds ALL /)
set(CPACK_COMPONENTS_ALL library development)
if(ORVIKQZDS_TOOLS)
    list(APPEND CPACK_INSTALL_CMAKE_PROJECTS ${CMAKE_CURRENT_BINARY_DIR}/tools orvikqzds ALL /)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR "orvikqzds")
set(CPACK_PACKAGE_CONTACT "The orvikqzds maintainers <maintainers@orvikqzds.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)

# At least what the build machine has. dpkg-shlibdeps would not do: on a machine of
# the other architecture it names the packages of that one.
execute_process(COMMAND getconf GNU_LIBC_VERSION OUTPUT_VARIABLE libc_version
    OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
string(REGEX REPLACE ".* " "" libc_version "${libc_version}")
set(runtime "libc6 (>= ${libc_version}), libgcc-s1, libstdc++6")
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    string(REGEX MATCH "^[0-9]+" gcc_version ${CMAKE_CXX_COMPILER_VERSION})
    string(APPEND runtime " (>= ${gcc_version})")
endif()

set(library_package liborvikqzds${PROJECT_VERSION_MAJOR})
set(library "${library_package} (= ${PROJECT_VERSION})")

# What programs that are packaged themselves depend on; and that dpkg runs ldconfig.
set(control_dir ${CMAKE_CURRENT_BINARY_DIR}/cmake/package/control)
file(WRITE ${control_dir}/shlibs
    "liborvikqzds ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION})\n")
file(WRITE ${control_dir}/triggers "activate-noawait ldconfig\n")

# CPack has had no variable for the field Multi-Arch for long: it goes in behind
# another one. The packages of both targets can be installed side by side.
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION "libs\nMulti-Arch: same")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "${runtime}")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${control_dir}/shlibs ${control_dir}/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The shared library, with what gdb needs to show its objects.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvikqzds-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION "libdevel\nMulti-Arch: same")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${library}")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, CMake package, documents and examples.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orvikqzds-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION "utils\nMulti-Arch: foreign")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${library}, ${runtime}")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "Programs built on the library, with their manual pages.")

include(CPack)
