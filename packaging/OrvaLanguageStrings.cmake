# For applications that use libOrvaLanguage: functions that put texts and the library where the
# application finds them. docs/building.md has an example of each.
#
# Each makes its files when the target is built, anew only if something that they are made of has
# changed. An application is a target of add_executable. Where its resources and libraries go depends
# on its layout when the function is called:
# - an application of macOS (MACOSX_BUNDLE): Contents/Resources and Contents/Frameworks of its bundle;
# - RUNTIME_OUTPUT_DIRECTORY is X/Contents/ANY: the same folders of X/Contents;
# - any other: resources beside the executable and, once installed in PREFIX/bin, in
#   PREFIX/share/EXECUTABLE; libraries, once installed, in PREFIX/lib/EXECUTABLE.
#
# Run as a script, this file compares the keys of a library and of a key file (or of orva-strings), or
# copies a library, and the Nettle that it needs, to a folder.
if(CMAKE_SCRIPT_MODE_FILE STREQUAL CMAKE_CURRENT_LIST_FILE)
    cmake_policy(VERSION 3.22)
    if(COMMAND_FILE)
        set(key "")
        if(KEY_FILE)
            set(key --key-file "${KEY_FILE}")
        endif()
        foreach(arguments IN ITEMS "--library;${LIBRARY}" "${key}")
            execute_process(COMMAND "${COMMAND_FILE}" key show ${arguments}
                OUTPUT_VARIABLE shown COMMAND_ERROR_IS_FATAL ANY)
            string(REGEX MATCH "fingerprint: [0-9A-F]+" shown "${shown}")
            list(APPEND fingerprints "${shown}")
        endforeach()
        list(REMOVE_DUPLICATES fingerprints)
        list(LENGTH fingerprints length)
        if(NOT length EQUAL 1)
            list(JOIN fingerprints ", but " fingerprints)
            message(FATAL_ERROR "The library has another key than the texts: it has ${fingerprints} "
                "is theirs. Its lookups would answer null. ${LIBRARY}")
        endif()
        return()
    endif()
    file(MAKE_DIRECTORY "${FOLDER}")
    file(COPY_FILE "${LIBRARY}" "${FOLDER}/${NAME}" ONLY_IF_DIFFERENT)
    if(NOT CMAKE_HOST_APPLE)
        # No other dependency: a copy of the C or C++ library would not fit the system's loader.
        file(GET_RUNTIME_DEPENDENCIES LIBRARIES "${LIBRARY}"
            RESOLVED_DEPENDENCIES_VAR nettle
            PRE_INCLUDE_REGEXES "^libnettle\\." PRE_EXCLUDE_REGEXES ".")
        foreach(file IN LISTS nettle)
            file(COPY "${file}" DESTINATION "${FOLDER}" FOLLOW_SYMLINK_CHAIN)
        endforeach()
    endif()
    return()
endif()

# The application's own, which only its project can set. Its CMAKE_MINIMUM_REQUIRED_VERSION may be that
# of a package that it found last.
cmake_policy(GET CMP0112 orva_target_policy)
cmake_policy(VERSION 3.22)

# orva_add_strings(TARGET app SOURCE file [NAME name] [KEY_FILE keyfile] [CHECK] [SHIPPED])
#
# Protects a strings file and puts it among the application's resources, under its own name or NAME.
# KEY_FILE is the key of the library that the application is shipped with, if orva-strings is of
# another build. With CHECK, errors that `orva-strings check` finds in the source fail the build; with
# SHIPPED, those that `check --shipped` finds in the result, such as texts protected with the
# development key, and a library that has another key than the texts.
function(orva_add_strings)
    _orva_arguments(orva_add_strings "CHECK;SHIPPED" "TARGET;SOURCE;NAME;KEY_FILE" "${ARGN}")
    _orva_layout("${arg_TARGET}")
    _orva_command()
    cmake_path(ABSOLUTE_PATH arg_SOURCE)
    if(NOT arg_NAME)
        cmake_path(GET arg_SOURCE FILENAME arg_NAME)
    endif()
    set(key "")
    if(arg_KEY_FILE)
        cmake_path(ABSOLUTE_PATH arg_KEY_FILE)
        set(key --key-file "${arg_KEY_FILE}")
    endif()
    set(check_source "")
    if(arg_CHECK)
        set(check_source COMMAND ${command} check ${key} "${arg_SOURCE}")
    endif()
    set(check_result "")
    if(arg_SHIPPED)
        set(check_result
            COMMAND ${command} check --shipped ${key} "${work}/${arg_NAME}"
            COMMAND "${CMAKE_COMMAND}" "-DCOMMAND_FILE=${command_file}" "-DKEY_FILE=${arg_KEY_FILE}"
                "-DLIBRARY=$<TARGET_FILE:OrvaLanguage::OrvaLanguage>"
                -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}")
    endif()
    # The file gets to its place only if nothing has failed, in one step.
    add_custom_command(OUTPUT "${work}/${arg_NAME}.stamp"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${work}" "${resources}"
        ${check_source}
        COMMAND ${command} protect ${key} -o "${work}/${arg_NAME}" "${arg_SOURCE}"
        ${check_result}
        COMMAND "${CMAKE_COMMAND}" -E rename "${work}/${arg_NAME}" "${resources}/${arg_NAME}"
        COMMAND "${CMAKE_COMMAND}" -E touch "${work}/${arg_NAME}.stamp"
        DEPENDS "${arg_SOURCE}" ${arg_KEY_FILE} "${command_file}"
            "$<$<BOOL:${arg_SHIPPED}>:$<TARGET_FILE:OrvaLanguage::OrvaLanguage>>"
        COMMENT "Protecting the texts of ${arg_TARGET}: ${arg_NAME}"
        VERBATIM)
    _orva_depend("${arg_TARGET}" "strings_${arg_NAME}" "${work}/${arg_NAME}.stamp")
    if(layout STREQUAL "installed")
        install(FILES "${resources}/${arg_NAME}"
            DESTINATION "share/$<TARGET_FILE_NAME:${arg_TARGET}>")
    endif()
endfunction()

# orva_generate_keys(TARGET app SOURCE file LANGUAGE c|c++|swift [OUTPUT name] [SCOPE name]
#                    [REFERENCE section])
#
# Adds a source of the application with a constant for each key: `orva-strings keys`. It is called
# Keys.h or Keys.swift, or OUTPUT, and is in a folder of the target's include path. It is written only
# if it changes, so that nothing is compiled otherwise.
function(orva_generate_keys)
    _orva_arguments(orva_generate_keys "" "TARGET;SOURCE;LANGUAGE;OUTPUT;SCOPE;REFERENCE" "${ARGN}")
    if(NOT arg_LANGUAGE MATCHES "^(c|c\\+\\+|swift)$")
        message(FATAL_ERROR "orva_generate_keys: LANGUAGE must be c, c++ or swift.")
    endif()
    _orva_layout("${arg_TARGET}")
    _orva_command()
    cmake_path(ABSOLUTE_PATH arg_SOURCE)
    if(NOT arg_OUTPUT)
        set(arg_OUTPUT Keys.h)
        if(arg_LANGUAGE STREQUAL "swift")
            set(arg_OUTPUT Keys.swift)
        endif()
    endif()
    set(options --language "${arg_LANGUAGE}")
    if(arg_SCOPE)
        list(APPEND options --scope "${arg_SCOPE}")
    endif()
    if(arg_REFERENCE)
        list(APPEND options --reference "${arg_REFERENCE}")
    endif()
    set(folder "${work}/keys")
    add_custom_command(OUTPUT "${folder}/${arg_OUTPUT}.stamp"
        BYPRODUCTS "${folder}/${arg_OUTPUT}"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
        COMMAND ${command} keys ${options} -o "${folder}/${arg_OUTPUT}" "${arg_SOURCE}"
        COMMAND "${CMAKE_COMMAND}" -E touch "${folder}/${arg_OUTPUT}.stamp"
        DEPENDS "${arg_SOURCE}" "${command_file}"
        COMMENT "Writing constants for the keys of ${arg_TARGET}: ${arg_OUTPUT}"
        VERBATIM)
    _orva_depend("${arg_TARGET}" "keys_${arg_OUTPUT}" "${folder}/${arg_OUTPUT}.stamp")
    set_source_files_properties("${folder}/${arg_OUTPUT}" PROPERTIES GENERATED ON)
    target_sources(${arg_TARGET} PRIVATE "${folder}/${arg_OUTPUT}")
    target_include_directories(${arg_TARGET} PRIVATE "${folder}")
endfunction()

# orva_embed(TARGET app)
#
# Makes the application carry the library and, except on macOS, the Nettle that it needs, and find them
# there wherever it is copied: with the folder X in the layout of a bundle, else once it is installed.
function(orva_embed)
    _orva_arguments(orva_embed "" "TARGET" "${ARGN}")
    _orva_layout("${arg_TARGET}")
    if(layout STREQUAL "installed")
        set(folder "${work}/lib")
        set(run_path "$ORIGIN/../lib/$<TARGET_FILE_NAME:${arg_TARGET}>")
        install(DIRECTORY "${folder}/" DESTINATION "lib/$<TARGET_FILE_NAME:${arg_TARGET}>"
            USE_SOURCE_PERMISSIONS)
    else()
        set(folder "${frameworks}")
        set(run_path "$ORIGIN/../Frameworks")
        if(APPLE)
            set(run_path "@executable_path/../Frameworks")
        endif()
        set_target_properties(${arg_TARGET} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
    endif()
    set_property(TARGET ${arg_TARGET} APPEND PROPERTY INSTALL_RPATH "${run_path}")
    if(NOT APPLE)
        # A packaged library has no run path of its own. Then the loader looks for Nettle where the old
        # kind of the application's says.
        target_link_options(${arg_TARGET} PRIVATE LINKER:--disable-new-dtags)
    endif()
    set(library OrvaLanguage::OrvaLanguage)
    add_custom_command(OUTPUT "${work}/library.stamp"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${work}"
        COMMAND "${CMAKE_COMMAND}" "-DFOLDER=${folder}" "-DLIBRARY=$<TARGET_FILE:${library}>"
            "-DNAME=$<TARGET_SONAME_FILE_NAME:${library}>"
            -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
        COMMAND "${CMAKE_COMMAND}" -E touch "${work}/library.stamp"
        DEPENDS "$<TARGET_FILE:${library}>" "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
        COMMENT "Copying libOrvaLanguage for ${arg_TARGET}"
        VERBATIM)
    _orva_depend("${arg_TARGET}" library "${work}/library.stamp")
endfunction()

# Sets arg_… in the caller from its arguments.
macro(_orva_arguments function flags values arguments)
    cmake_parse_arguments(arg "${flags}" "${values}" "" ${arguments})
    if(arg_UNPARSED_ARGUMENTS OR arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "${function}: unknown or without a value: "
            "${arg_UNPARSED_ARGUMENTS}${arg_KEYWORDS_MISSING_VALUES}")
    endif()
    if(NOT TARGET "${arg_TARGET}")
        message(FATAL_ERROR "${function}: TARGET must name a target, not '${arg_TARGET}'.")
    endif()
    if("${values}" MATCHES "SOURCE" AND NOT arg_SOURCE)
        message(FATAL_ERROR "${function}: SOURCE must name a strings file.")
    endif()
    # Otherwise the name of a target's folder would make a cycle of dependencies.
    if(DEFINED orva_target_policy AND NOT orva_target_policy STREQUAL "NEW")
        message(FATAL_ERROR "${function} needs cmake_minimum_required(VERSION 3.22).")
    endif()
endmacro()

# Sets in the caller: layout, "bundle" or "installed"; resources and frameworks, folders; and work, a
# folder for the target's files.
function(_orva_layout target)
    set(work "${CMAKE_CURRENT_BINARY_DIR}/${target}_orva")
    get_property(has_many_configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    if(has_many_configurations)
        string(APPEND work "/$<CONFIG>")
    endif()
    get_target_property(is_bundle ${target} MACOSX_BUNDLE)
    get_target_property(folder ${target} RUNTIME_OUTPUT_DIRECTORY)
    set(layout bundle)
    if(APPLE AND is_bundle)
        set(contents "$<TARGET_BUNDLE_CONTENT_DIR:${target}>")
        set(resources "${contents}/Resources")
    elseif(folder MATCHES "/Contents/[^/]+$")
        cmake_path(GET folder PARENT_PATH contents)
        set(resources "${contents}/Resources")
    else()
        set(layout installed)
        set(contents "")
        set(resources "$<TARGET_FILE_DIR:${target}>")
    endif()
    set(layout "${layout}" PARENT_SCOPE)
    set(resources "${resources}" PARENT_SCOPE)
    set(frameworks "${contents}/Frameworks" PARENT_SCOPE)
    set(work "${work}" PARENT_SCOPE)
endfunction()

# Sets in the caller: command, which runs orva-strings, and command_file, its file.
function(_orva_command)
    if(ORVA_STRINGS_EXECUTABLE)
        set(command "${ORVA_STRINGS_EXECUTABLE}")
        set(command_file "${ORVA_STRINGS_EXECUTABLE}")
    elseif(TARGET OrvaLanguage::orva-strings)
        set(command OrvaLanguage::orva-strings)
        set(command_file "$<TARGET_FILE:OrvaLanguage::orva-strings>")
    else()
        find_program(ORVA_STRINGS_PROGRAM orva-strings DOC "The command orva-strings")
        mark_as_advanced(ORVA_STRINGS_PROGRAM)
        if(NOT ORVA_STRINGS_PROGRAM)
            message(FATAL_ERROR
                "There is no orva-strings: install the tools of libOrvaLanguage, or set "
                "ORVA_BUILD_TOOLS=ON where the library is a part of the project, or set "
                "ORVA_STRINGS_EXECUTABLE to an orva-strings that runs on this machine.")
        endif()
        set(command "${ORVA_STRINGS_PROGRAM}")
        set(command_file "${ORVA_STRINGS_PROGRAM}")
    endif()
    set(command "${command}" PARENT_SCOPE)
    set(command_file "${command_file}" PARENT_SCOPE)
endfunction()

# Makes a target depend on a file, through a target of its own, so that both Make and Xcode make the
# file first and only once.
function(_orva_depend target name file)
    string(MAKE_C_IDENTIFIER "${target}_orva_${name}" helper)
    add_custom_target(${helper} DEPENDS "${file}")
    add_dependencies(${target} ${helper})
endfunction()
