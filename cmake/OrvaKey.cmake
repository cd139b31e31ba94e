# The key material for protected texts: ORVA_KEY_FILE, or else a development key that everybody can
# read in this folder. The build writes it as two shares into its own folder, never the source tree.
set(ORVA_KEY_FILE "" CACHE FILEPATH
    "File of 64 hexadecimal digits, the key for protected texts; empty: the development key")

# orva_write_key_shares(FOLDER): KeyShares.h for the library, and DevelopmentKey.h for the tool, which
# tells whether a key is that one.
function(orva_write_key_shares folder)
    set(development_key "${PROJECT_SOURCE_DIR}/cmake/development.key")
    set(file "${ORVA_KEY_FILE}")
    if(file STREQUAL "")
        set(file "${development_key}")
        message(STATUS "Protected texts: development key, known to everybody (set ORVA_KEY_FILE)")
    endif()
    if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
        message(FATAL_ERROR "ORVA_KEY_FILE: there is no file ${file}.")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    # As hexadecimal of its bytes, since CMake's texts do not show a NUL byte.
    file(SIZE "${file}" size)
    file(READ "${file}" hex LIMIT 1024 HEX)
    string(REGEX REPLACE "(0d)?0a$" "" hex "${hex}")
    string(LENGTH "${hex}" hex_length)
    if(NOT hex_length EQUAL 128)
        message(FATAL_ERROR
            "ORVA_KEY_FILE: ${file} must hold 64 hexadecimal digits in one line, and has ${size} bytes.")
    endif()
    if(NOT hex MATCHES "^(3[0-9]|4[1-6]|6[1-6])+$")
        message(FATAL_ERROR
            "ORVA_KEY_FILE: ${file} must hold 64 hexadecimal digits, and has other characters among them.")
    endif()
    file(STRINGS "${file}" digits)

    # The mask comes from the material, so that a build repeats.
    string(TOLOWER "${digits}" digits)
    string(SHA256 mask "libOrvaLanguage key mask ${digits}")
    set(first "")
    set(second "")
    foreach(at RANGE 0 62 2)
        string(SUBSTRING "${digits}" ${at} 2 byte)
        string(SUBSTRING "${mask}" ${at} 2 mask_byte)
        math(EXPR masked "0x${byte} ^ 0x${mask_byte}" OUTPUT_FORMAT HEXADECIMAL)
        string(APPEND first " 0x${mask_byte},")
        string(APPEND second " ${masked},")
    endforeach()
    file(CONFIGURE OUTPUT "${folder}/KeyShares.h" @ONLY CONTENT
        "#define ORVA_FIRST_KEY_SHARE {@first@ }\n#define ORVA_SECOND_KEY_SHARE {@second@ }\n")
    file(CHMOD "${folder}/KeyShares.h" PERMISSIONS OWNER_READ OWNER_WRITE)
    file(STRINGS "${development_key}" digits)
    string(TOUPPER "${digits}" digits)
    file(CONFIGURE OUTPUT "${folder}/DevelopmentKey.h" @ONLY CONTENT
        "#define ORVA_DEVELOPMENT_KEY \"@digits@\"\n")
endfunction()
