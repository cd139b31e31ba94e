# Packages, which scripts/package makes with CPack: an archive of everything, and a Debian package of
# each install component. Debian's name of a library has its SOVERSION.
set(ORVA_MAINTAINER "Not decided yet <maintainer@not-decided.invalid>" CACHE STRING
    "Maintainer of the Debian packages, as NAME <ADDRESS>")
set(CPACK_GENERATOR TGZ)
set(CPACK_PACKAGE_NAME "${PROJECT_NAME}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each component has its own
set(CPACK_PACKAGE_FILE_NAME
    "${PROJECT_NAME}-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL runtime development)
if(ORVA_BUILD_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${ORVA_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)  # in exactly this version

set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "user-interface texts in the user's language
A small shared library that gives an application its texts from a strings
file, which has a section for each language. Texts that are not meant for
casual readers can be shipped encrypted.

This build decodes texts that are protected with ${orva_key_description}.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "liborvalanguage${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "user-interface texts: files for development
The headers of libOrvaLanguage, its documents, and what CMake and pkg-config
need to find it.")
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvalanguage-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS orva-strings)  # for most of the CMake functions

set(CPACK_COMPONENT_TOOLS_DESCRIPTION "protect, check and print strings files
The command orva-strings encrypts the protected texts of strings files for
libOrvaLanguage, makes them readable again, checks and mends files, and
prints what the library answers.

Without a key file, it uses ${orva_key_description}.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orva-strings)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)

set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/packaging/cpack.cmake")
include(CPack)
