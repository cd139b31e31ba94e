# orva_write_export_lists(LIST VERSION_SCRIPT EXPORTED_SYMBOLS)
#
# Writes two linker inputs from the readable list of exports: an ELF version script and a Mach-O
# list of exported symbols. Every system writes both, so the tests of one system cover both.
#
# The parameters in a C++ symbol depend on the standard library, so they become "*". Only what the
# headers mark can be exported at all, and the test compares whole signatures.
function(orva_write_export_lists list version_script exported_symbols)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${list}")
    file(STRINGS "${list}" lines REGEX "^[^#]")
    set(elf "")
    set(macho "")
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "^posix: *" "" signature "${line}")
        string(REGEX REPLACE "\\(.*" "" name "${signature}")
        set(symbol "${name}")
        if(name MATCHES "^(.+)::(.+)$")
            string(LENGTH "${CMAKE_MATCH_1}" scope_length)
            string(LENGTH "${CMAKE_MATCH_2}" member_length)
            set(symbol "_ZN${scope_length}${CMAKE_MATCH_1}${member_length}${CMAKE_MATCH_2}E")
        elseif(NOT name STREQUAL signature)
            string(LENGTH "${name}" length)
            set(symbol "_Z${length}${name}")
        endif()
        if(NOT name STREQUAL signature)
            string(APPEND symbol "*")
        endif()
        string(APPEND elf "        ${symbol};\n")
        if(NOT line MATCHES "^posix:")
            string(APPEND macho "_${symbol}\n")
        endif()
    endforeach()
    file(CONFIGURE OUTPUT "${version_script}" @ONLY
        CONTENT "ORVALANGUAGE_1 {\n    global:\n@elf@    local:\n        *;\n};\n")
    file(CONFIGURE OUTPUT "${exported_symbols}" CONTENT "@macho@" @ONLY)
endfunction()
