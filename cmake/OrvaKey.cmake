# The key material for protected texts: ORVA_KEY_FILE, or by default the public development key in
# this folder. The build writes it, as two shares, to its own folder and never to the source tree.
set(ORVA_KEY_FILE "" CACHE FILEPATH
    "File that holds the key for protected texts, 64 hexadecimal digits; empty: the development key")

# orva_read_key(FILE DIGITS): sets DIGITS to the digits of a key file in upper case. The file must
# hold 64 hexadecimal digits in either case, then at most one line ending, LF or CR LF.
# `orva-strings` accepts the same files.
function(orva_read_key file digits)
    if(NOT EXISTS "${file}" OR IS_DIRECTORY "${file}")
        message(FATAL_ERROR "ORVA_KEY_FILE: ${file} is missing or is a folder.")
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
    # Read as hexadecimal because CMake strings lose NUL bytes.
    file(SIZE "${file}" size)
    file(READ "${file}" hex LIMIT 1024 HEX)
    string(REGEX REPLACE "(0d)?0a$" "" hex "${hex}")
    string(LENGTH "${hex}" hex_length)
    if(NOT hex_length EQUAL 128)
        message(FATAL_ERROR
            "ORVA_KEY_FILE: ${file} must hold 64 hexadecimal digits on one line, but has ${size} bytes.")
    endif()
    if(NOT hex MATCHES "^(3[0-9]|4[1-6]|6[1-6])+$")
        message(FATAL_ERROR
            "ORVA_KEY_FILE: ${file} must hold 64 hexadecimal digits, but has other characters.")
    endif()
    file(STRINGS "${file}" text)
    string(TOUPPER "${text}" text)
    set(${digits} "${text}" PARENT_SCOPE)
endfunction()

# orva_key_fingerprint(DIGITS FINGERPRINT): identifies a key without revealing anything about it.
# `orva-strings` computes the same one.
function(orva_key_fingerprint digits fingerprint)
    string(SHA256 hash "libOrvaLanguage key fingerprint ${digits}")
    string(SUBSTRING "${hash}" 0 16 hash)
    string(TOUPPER "${hash}" hash)
    set(${fingerprint} "${hash}" PARENT_SCOPE)
endfunction()

# orva_write_key_shares(FOLDER): writes KeyShares.h for the library, and KeyFingerprints.h for the
# library and the tool. The tool needs it to recognise the development key. Sets orva_key_file to
# the path of the key file, and orva_key_description to words for its key.
function(orva_write_key_shares folder)
    set(development_key "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/development.key")
    set(file "${ORVA_KEY_FILE}")
    if(file STREQUAL "")
        set(file "${development_key}")
    endif()
    cmake_path(ABSOLUTE_PATH file)
    orva_read_key("${file}" upper_digits)
    orva_key_fingerprint("${upper_digits}" fingerprint)
    if(ORVA_KEY_FILE STREQUAL "")
        message(STATUS
            "Protected texts: the development key, which is public; for a release, set ORVA_KEY_FILE "
            "to a key file")
        set(orva_key_description "the public development key" PARENT_SCOPE)
    else()
        message(STATUS "Protected texts: key with fingerprint ${fingerprint}")
        set(orva_key_description "the key whose fingerprint is ${fingerprint}" PARENT_SCOPE)
    endif()
    set(orva_key_file "${file}" PARENT_SCOPE)

    # The mask is derived from the key to keep builds reproducible.
    string(TOLOWER "${upper_digits}" digits)
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
    orva_read_key("${development_key}" digits)
    orva_key_fingerprint("${digits}" development_fingerprint)
    file(CONFIGURE OUTPUT "${folder}/KeyFingerprints.h" @ONLY CONTENT
"#define ORVA_KEY_FINGERPRINT \"@fingerprint@\"
#define ORVA_DEVELOPMENT_KEY_FINGERPRINT \"@development_fingerprint@\"
")
endfunction()
