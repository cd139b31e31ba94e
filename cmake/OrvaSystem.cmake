# All that the build knows about the system: its sources, libraries, folders and link options. Every
# system but macOS is treated as Linux. docs/porting.md lists the rest that differs.
set(orva_platform_folder "${PROJECT_SOURCE_DIR}/platform")
set(orva_support_folder "${PROJECT_SOURCE_DIR}/support")
set(orva_tool_system_folder "${PROJECT_SOURCE_DIR}/tools/orva-strings/system")
set(orva_tool_host_folder "${PROJECT_SOURCE_DIR}/tools/orva-strings/hosts")

if(APPLE)
    set(orva_platform_sources "${orva_platform_folder}/ResourcePathCoreFoundation.cpp")
    set(orva_support_sources "${orva_support_folder}/OpenBundleCoreFoundation.cpp")
    set(orva_tool_sources
        "${orva_platform_folder}/Sha256CommonCrypto.cpp"
        "${orva_tool_system_folder}/AccessListMacOS.cpp")
    set(orva_tool_host_sources "${orva_tool_host_folder}/MainBundleCoreFoundation.cpp")

    set(orva_system_libraries "-framework CoreFoundation")
    set(orva_static_link_flags "-framework CoreFoundation")
    set(orva_executable_folder MacOS)
    set(orva_program_link_options "")
else()
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(Nettle REQUIRED IMPORTED_TARGET nettle)

    set(orva_platform_sources
        "${orva_platform_folder}/CommonCryptorNettle.cpp"
        "${orva_platform_folder}/ExecutablePathLinux.cpp"
        "${orva_platform_folder}/ResourcePathFolder.cpp")
    set(orva_support_sources "${orva_support_folder}/OpenBundleFolder.cpp")
    set(orva_tool_sources
        "${orva_platform_folder}/Sha256Nettle.cpp"
        "${orva_tool_system_folder}/AccessListLinux.cpp")
    set(orva_tool_host_sources "${orva_tool_host_folder}/MainBundleFolder.cpp")

    set(orva_system_libraries PkgConfig::Nettle)
    # For Libs.private in the .pc file. Not Requires.private: a host links only the shared library
    # and needs no Nettle package.
    list(TRANSFORM Nettle_LIBRARIES PREPEND "-l" OUTPUT_VARIABLE orva_static_link_flags)
    list(JOIN orva_static_link_flags " " orva_static_link_flags)
    set(orva_executable_folder Linux)
    # Lazy binding would save registers to the stack, and with them key bytes.
    set(orva_program_link_options LINKER:-z,relro,-z,now)
endif()

# orva_link_library(TARGET VERSION_SCRIPT EXPORTED_SYMBOLS): the library's name, version, place and
# exports, in the linker's terms. orva_write_export_lists writes the two files. The property
# ORVA_EMBEDDED_FILES names what an application that carries the library has: orva_embed.
function(orva_link_library target version_script exported_symbols)
    set_target_properties(${target} PROPERTIES EXPORT_PROPERTIES ORVA_EMBEDDED_FILES)
    if(APPLE)
        # Where the application's executable finds the library in its bundle.
        set_target_properties(${target} PROPERTIES
            INSTALL_NAME_DIR "@executable_path/../Frameworks"
            BUILD_WITH_INSTALL_NAME_DIR ON
            MACHO_CURRENT_VERSION "${PROJECT_VERSION}"
            MACHO_COMPATIBILITY_VERSION "${PROJECT_VERSION_MAJOR}.0.0"
            LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/Frameworks"
            ORVA_EMBEDDED_FILES "lib${target}.dylib"
            LINK_DEPENDS "${exported_symbols}")
        target_link_options(${target} PRIVATE
            "SHELL:-Xlinker -exported_symbols_list -Xlinker \"${exported_symbols}\"")
    else()
        # The run path: first the library's own folder, for an application that carries a copy of
        # Nettle (in the build tree too, where CMake would otherwise add an empty entry, which means
        # the current folder); then those of CMAKE_INSTALL_RPATH, and that of a Nettle outside the
        # system's library folders.
        set(nettle_folders "${Nettle_LIBRARY_DIRS}")
        list(REMOVE_ITEM nettle_folders "" ${CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES})
        set(embedded "lib${target}.so.${PROJECT_VERSION_MAJOR}")
        foreach(file IN LISTS Nettle_LINK_LIBRARIES)
            file(REAL_PATH "${file}" file)
            if(file MATCHES "/(libnettle\\.so\\.[0-9]+)[^/]*$")
                list(APPEND embedded "${CMAKE_MATCH_1}")
            endif()
        endforeach()
        set_target_properties(${target} PROPERTIES
            ORVA_EMBEDDED_FILES "${embedded}"
            VERSION "${PROJECT_VERSION}"
            SOVERSION "${PROJECT_VERSION_MAJOR}"
            INSTALL_RPATH "$ORIGIN;${CMAKE_INSTALL_RPATH};${nettle_folders}"
            BUILD_WITH_INSTALL_RPATH ON
            LINK_DEPENDS "${version_script}")
        target_link_options(${target} PRIVATE
            ${orva_program_link_options}
            LINKER:-Bsymbolic-functions  # calls stay in this copy, whatever others the process has
            LINKER:--enable-new-dtags  # so that LD_LIBRARY_PATH still comes before the run path
            "SHELL:-Xlinker \"--version-script=${version_script}\"")
    endif()
endfunction()
