# The port for vcpkg: the library alone, for the owner to start with.

# PLACEHOLDER: remove this line, and fill in the next ones.
message(FATAL_ERROR "The location of the source is not decided: see docs/decisions.md.")
vcpkg_download_distfile(archive URLS "SOURCE_URL" FILENAME "orvalanguage-${VERSION}.tar.gz" SHA512 0)
vcpkg_extract_source_archive(source ARCHIVE "${archive}")

vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)
vcpkg_find_acquire_program(PKGCONFIG)
vcpkg_cmake_configure(SOURCE_PATH "${source}" OPTIONS
    -DORVA_BUILD_TOOLS=OFF -DORVA_BUILD_TESTS=OFF -DORVA_BUILD_EXAMPLES=OFF
    "-DPKG_CONFIG_EXECUTABLE=${PKGCONFIG}")
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME OrvaLanguage CONFIG_PATH lib/cmake/OrvaLanguage)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share")
vcpkg_install_copyright(FILE_LIST "${source}/packaging/copyright")
