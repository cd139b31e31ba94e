# What CPack reads for each kind of package.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_SET_DESTDIR ON)  # so that the .pc file names /usr
    set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/debian_files.cmake")
    set(CPACK_POST_BUILD_SCRIPTS "${CMAKE_CURRENT_LIST_DIR}/debian_trigger.cmake")
endif()
