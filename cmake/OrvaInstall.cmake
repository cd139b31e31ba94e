# What `cmake --install` installs, in three components:
# - runtime: the library that a host loads;
# - development: its headers, their manual pages, the documents, and what CMake's
#   find_package(OrvaLanguage) and pkg-config need;
# - tools: the command, and the manual pages of it and of strings files.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

install(TARGETS OrvaLanguage
    EXPORT OrvaLanguageTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        COMPONENT runtime
        NAMELINK_COMPONENT development
    INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(DIRECTORY include/OrvaLanguage
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
install(FILES README.md CHANGELOG.md SECURITY.md
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development)
install(DIRECTORY docs
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
    FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg" PATTERN docs/man EXCLUDE)
# Beside the documents, which link to them.
install(DIRECTORY examples
    DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT development
    PATTERN CMakeLists.txt EXCLUDE
    PATTERN "*.xcodeproj" EXCLUDE)  # its paths are those of the sources
install(CODE "set(orva_source \"${PROJECT_SOURCE_DIR}\")
set(orva_docdir \"${CMAKE_INSTALL_DOCDIR}\")" COMPONENT development)
install(SCRIPT cmake/OrvaMendLinks.cmake COMPONENT development)
install(DIRECTORY docs/man/
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man3" COMPONENT development
    FILES_MATCHING PATTERN "*.3")

set(orva_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/OrvaLanguage")
install(EXPORT OrvaLanguageTargets
    NAMESPACE OrvaLanguage::
    DESTINATION "${orva_package_dir}" COMPONENT development)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaLanguageConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES packaging/OrvaLanguageConfig.cmake packaging/OrvaLanguageStrings.cmake
    "${PROJECT_BINARY_DIR}/OrvaLanguageConfigVersion.cmake"
    DESTINATION "${orva_package_dir}" COMPONENT development)

# The .pc file's prefix is relative to the file, so that the installed tree can be moved. The
# system's own prefixes are not moved: there it is absolute, since pkg-config leaves out /usr/include
# only if it is spelt so. The prefix is known at the installation, not before.
set(orva_pc_prefix "@prefix@")  # for the second step
set(orva_pc_libdir "\${prefix}")
cmake_path(APPEND orva_pc_libdir "${CMAKE_INSTALL_LIBDIR}")
set(orva_pc_includedir "\${prefix}")
cmake_path(APPEND orva_pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(packaging/OrvaLanguage.pc.in "${PROJECT_BINARY_DIR}/OrvaLanguage.pc.in" @ONLY)
install(CODE "set(orva_build \"${PROJECT_BINARY_DIR}\")
set(orva_libdir \"${CMAKE_INSTALL_LIBDIR}\")" COMPONENT development)
install(SCRIPT cmake/OrvaWritePc.cmake COMPONENT development)
install(FILES "${PROJECT_BINARY_DIR}/OrvaLanguage.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

if(PROJECT_IS_TOP_LEVEL)
    add_custom_target(uninstall
        COMMAND "${CMAKE_COMMAND}" -D "BUILD=${PROJECT_BINARY_DIR}"
            -P "${PROJECT_SOURCE_DIR}/cmake/OrvaUninstall.cmake"
        VERBATIM)
endif()
