# Writes the .pc file, during the installation. OrvaInstall.cmake sets orva_build and orva_libdir.
if(CMAKE_INSTALL_PREFIX MATCHES "^(/usr(/local)?)?$")
    set(prefix "${CMAKE_INSTALL_PREFIX}")
else()
    cmake_path(ABSOLUTE_PATH orva_libdir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
    file(RELATIVE_PATH prefix "${orva_libdir}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
    string(REGEX REPLACE "/$" "" prefix "\${pcfiledir}/${prefix}")
endif()
configure_file("${orva_build}/OrvaLanguage.pc.in" "${orva_build}/OrvaLanguage.pc" @ONLY)
