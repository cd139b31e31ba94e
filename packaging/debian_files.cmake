# CPack runs this before it makes the Debian packages: gives every package its copyright and its
# changelogs, compresses the manual pages, and removes the library's run path. That is for an
# application that carries Nettle; here, Nettle is a package in a system folder.
find_program(gzip gzip REQUIRED)
find_program(chrpath chrpath REQUIRED)

function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
endfunction()

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)  # SOURCE_DATE_EPOCH, if set
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER "${component}" name)
    set(name "${CPACK_DEBIAN_${name}_PACKAGE_NAME}")
    set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr")
    set(doc "${root}/share/doc/${name}")

    configure_file("${CMAKE_CURRENT_LIST_DIR}/copyright" "${doc}/copyright" COPYONLY)
    configure_file("${CMAKE_CURRENT_LIST_DIR}/../CHANGELOG.md" "${doc}/changelog" COPYONLY)
    file(WRITE "${doc}/changelog.Debian"
"liborvalanguage (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * The project's own packages. Its changes are in changelog.gz.

 -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${date}
")
    file(GLOB_RECURSE pages "${root}/share/man/*")
    run("${gzip}" -9n "${doc}/changelog" "${doc}/changelog.Debian" ${pages})

    file(GLOB_RECURSE libraries "${root}/lib*/libOrvaLanguage.so.*.*.*")
    foreach(library IN LISTS libraries)
        run("${chrpath}" --delete "${library}")
    endforeach()
endforeach()
