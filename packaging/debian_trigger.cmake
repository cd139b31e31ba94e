# CPack runs this after it has made the Debian packages: the library's refreshes the linker's cache
# by a trigger, as Debian asks, instead of by the scripts that CPack writes.
find_program(dpkg_deb dpkg-deb REQUIRED)
function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

list(FILTER CPACK_PACKAGE_FILES INCLUDE REGEX "/${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME}_[^/]*$")
set(unpacked "${CPACK_TEMPORARY_DIRECTORY}/unpacked")
run("${dpkg_deb}" --raw-extract "${CPACK_PACKAGE_FILES}" "${unpacked}")
file(REMOVE "${unpacked}/DEBIAN/postinst" "${unpacked}/DEBIAN/postrm")
file(WRITE "${unpacked}/DEBIAN/triggers" "activate-noawait ldconfig\n")
run("${dpkg_deb}" --root-owner-group --build "${unpacked}" "${CPACK_PACKAGE_FILES}")
