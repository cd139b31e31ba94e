# What `cmake --install` installs, in three components:
# - runtime: the library that a host loads;
# - development: its headers, and what CMake's find_package(OrvaLanguage) and pkg-config need;
# - tools: the command and its manual page.
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

set(orva_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/OrvaLanguage")
install(EXPORT OrvaLanguageTargets
    NAMESPACE OrvaLanguage::
    DESTINATION "${orva_package_dir}" COMPONENT development)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaLanguageConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES packaging/OrvaLanguageConfig.cmake packaging/OrvaLanguageStrings.cmake
    "${PROJECT_BINARY_DIR}/OrvaLanguageConfigVersion.cmake"
    DESTINATION "${orva_package_dir}" COMPONENT development)

# Relative to the .pc file, so that the installed tree can be moved.
file(RELATIVE_PATH orva_pc_prefix
    "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
set(orva_pc_libdir "\${prefix}")
cmake_path(APPEND orva_pc_libdir "${CMAKE_INSTALL_LIBDIR}")
set(orva_pc_includedir "\${prefix}")
cmake_path(APPEND orva_pc_includedir "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(packaging/OrvaLanguage.pc.in "${PROJECT_BINARY_DIR}/OrvaLanguage.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/OrvaLanguage.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
