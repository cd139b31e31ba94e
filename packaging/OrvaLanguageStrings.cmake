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
    file(COPY_FILE "${LIBRARY}" "${FOLDER}/${NAME}")
    file(TOUCH "${FOLDER}/${NAME}")
    if(NOT CMAKE_HOST_APPLE)
        # No other dependency: a copy of the C or C++ library would not fit the system's loader.
        file(GET_RUNTIME_DEPENDENCIES LIBRARIES "${LIBRARY}"
            RESOLVED_DEPENDENCIES_VAR nettle
            PRE_INCLUDE_REGEXES "^libnettle\\." PRE_EXCLUDE_REGEXES ".")
        foreach(file IN LISTS nettle)
            cmake_path(GET file FILENAME name)
            file(COPY_FILE "${file}" "${FOLDER}/${name}")
            file(TOUCH "${FOLDER}/${name}")
        endforeach()
    endif()
    return()
endif()

# The application's own, which only its project can set. Its CMAKE_MINIMUM_REQUIRED_VERSION may be that
# of a package that it found last.
cmake_policy(GET CMP0112 orva_target_policy)
cmake_policy(VERSION 3.22)

# orva_add_strings(TARGET app SOURCE file [NAME name] [KEY_FILE keyfile]
#                  [CHECK | CHECK_ARGUMENTS argument...] [SHIPPED])
#
# Protects a strings file and puts it among the application's resources, under its own name or NAME.
# KEY_FILE is the key of the library that the application is shipped with, if orva-strings is of
# another build. With CHECK, errors that `orva-strings check` finds in the source fail the build, with
# CHECK_ARGUMENTS also what these make of it, such as `--baseline Known.txt --disable key-case`:
# files among them are relative to the source folder. With SHIPPED, the errors that `check --shipped`
# finds in the result fail the build, such as texts protected with the development key, and so does a
# library that has another key than the texts.
#
# Targets whose resources are in one folder may share a file, with the same arguments.
function(orva_add_strings)
    _orva_arguments(orva_add_strings "EXECUTABLE"
        "CHECK;SHIPPED" "TARGET;SOURCE;NAME;KEY_FILE" "CHECK_ARGUMENTS" "${ARGN}")
    _orva_layout("${arg_TARGET}")
    _orva_command()
    _orva_input(orva_add_strings SOURCE)
    if(NOT arg_NAME)
        cmake_path(GET arg_SOURCE FILENAME arg_NAME)
    endif()
    if("${resources_path}/${arg_NAME}" STREQUAL arg_SOURCE)
        message(FATAL_ERROR "orva_add_strings: ${arg_SOURCE} would be replaced by its protected form. "
            "Use another NAME, or build in another folder.")
    endif()
    set(key "")
    if(arg_KEY_FILE)
        _orva_input(orva_add_strings KEY_FILE)
        set(key --key-file "${arg_KEY_FILE}")
    endif()
    set(check_source "")
    set(check_files "")
    if(arg_CHECK OR arg_CHECK_ARGUMENTS)
        set(check_source COMMAND ${command} check ${key} ${arg_CHECK_ARGUMENTS} "${arg_SOURCE}")
        foreach(file IN LISTS arg_CHECK_ARGUMENTS)
            cmake_path(ABSOLUTE_PATH file)
            if(EXISTS "${file}")
                list(APPEND check_files "${file}")
            endif()
        endforeach()
    endif()
    set(check_result "")
    if(arg_SHIPPED)
        set(check_result
            COMMAND ${command} check --shipped ${key} "${work}/${arg_NAME}"
            COMMAND "${CMAKE_COMMAND}" "-DCOMMAND_FILE=${command_file}" "-DKEY_FILE=${arg_KEY_FILE}"
                "-DLIBRARY=$<TARGET_FILE:OrvaLanguage::OrvaLanguage>"
                -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}")
    endif()
    _orva_claim(orva_add_strings NAME "strings_${arg_NAME}" "${resources_path}/${arg_NAME}"
        "${arg_SOURCE};${key};${check_source};${arg_SHIPPED}")
    if(is_new)
        # The file gets to its place only if nothing has failed, in one step.
        add_custom_command(OUTPUT "${resources_path}/${arg_NAME}"
            COMMAND "${CMAKE_COMMAND}" -E make_directory "${work}" "${resources}"
            ${check_source}
            COMMAND ${command} protect ${key} -o "${work}/${arg_NAME}" "${arg_SOURCE}"
            ${check_result}
            COMMAND "${CMAKE_COMMAND}" -E rename "${work}/${arg_NAME}" "${resources}/${arg_NAME}"
            DEPENDS "${arg_SOURCE}" ${arg_KEY_FILE} ${check_files} "${command_file}"
                "$<$<BOOL:${arg_SHIPPED}>:$<TARGET_FILE:OrvaLanguage::OrvaLanguage>>"
            WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
            COMMENT "Protecting the texts of ${arg_TARGET}: ${arg_NAME}"
            VERBATIM)
        add_custom_target(${helper} DEPENDS "${resources_path}/${arg_NAME}")
    endif()
    add_dependencies(${arg_TARGET} ${helper})
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
    _orva_arguments(orva_generate_keys
        "EXECUTABLE|STATIC_LIBRARY|SHARED_LIBRARY|MODULE_LIBRARY|OBJECT_LIBRARY"
        "" "TARGET;SOURCE;LANGUAGE;OUTPUT;SCOPE;REFERENCE" "" "${ARGN}")
    if(NOT arg_LANGUAGE MATCHES "^(c|c\\+\\+|swift)$")
        message(FATAL_ERROR "orva_generate_keys: LANGUAGE must be c, c++ or swift.")
    endif()
    _orva_layout("${arg_TARGET}")
    _orva_command()
    _orva_input(orva_generate_keys SOURCE)
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
    _orva_claim(orva_generate_keys OUTPUT "keys_${arg_OUTPUT}" "${folder}/${arg_OUTPUT}"
        "${arg_SOURCE};${options}")
    if(is_new)
        set(made "${folder}/${arg_OUTPUT}.stamp")
        set(write
            COMMAND "${CMAKE_COMMAND}" -E make_directory "${folder}"
            COMMAND ${command} keys ${options} -o "${folder}/${arg_OUTPUT}" "${arg_SOURCE}"
            COMMENT "Writing constants for the keys of ${arg_TARGET}: ${arg_OUTPUT}")
        add_custom_command(OUTPUT "${made}"
            BYPRODUCTS "${folder}/${arg_OUTPUT}"
            ${write}
            COMMAND "${CMAKE_COMMAND}" -E touch "${made}"
            DEPENDS "${arg_SOURCE}" "${command_file}"
            VERBATIM)
        if(CMAKE_GENERATOR MATCHES "Makefiles")
            # Make does not notice that a by-product was deleted.
            add_custom_command(OUTPUT "${folder}/${arg_OUTPUT}" ${write} VERBATIM)
            list(APPEND made "${folder}/${arg_OUTPUT}")
        endif()
        add_custom_target(${helper} DEPENDS ${made})
    endif()
    add_dependencies(${arg_TARGET} ${helper})
    set_source_files_properties("${folder}/${arg_OUTPUT}" PROPERTIES GENERATED ON)
    target_sources(${arg_TARGET} PRIVATE "${folder}/${arg_OUTPUT}")
    target_include_directories(${arg_TARGET} PRIVATE "${folder}")
endfunction()

# orva_embed(TARGET app)
#
# Makes the application carry the library and, except on macOS, the Nettle that it needs, and find them
# there wherever it is copied: with the folder X in the layout of a bundle, else once it is installed.
function(orva_embed)
    _orva_arguments(orva_embed "EXECUTABLE" "" "TARGET" "" "${ARGN}")
    _orva_layout("${arg_TARGET}")
    if(layout STREQUAL "installed")
        set(folder "${work}/lib")
        set(folder_path "${folder}")
        set(run_path "$ORIGIN/../lib/$<TARGET_FILE_NAME:${arg_TARGET}>")
        install(DIRECTORY "${folder}/" DESTINATION "lib/$<TARGET_FILE_NAME:${arg_TARGET}>"
            USE_SOURCE_PERMISSIONS)
    else()
        set(folder "${frameworks}")
        set(folder_path "${frameworks_path}")
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
    get_target_property(files ${library} ORVA_EMBEDDED_FILES)
    list(TRANSFORM files PREPEND "${folder_path}/")
    _orva_claim(orva_embed TARGET library "${folder_path}" "")
    if(is_new)
        add_custom_command(OUTPUT ${files}
            COMMAND "${CMAKE_COMMAND}" "-DFOLDER=${folder}" "-DLIBRARY=$<TARGET_FILE:${library}>"
                "-DNAME=$<TARGET_SONAME_FILE_NAME:${library}>"
                -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
            DEPENDS "$<TARGET_FILE:${library}>" "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
            COMMENT "Copying libOrvaLanguage for ${arg_TARGET}"
            VERBATIM)
        add_custom_target(${helper} DEPENDS ${files})
    endif()
    add_dependencies(${arg_TARGET} ${helper})
endfunction()

# Sets arg_… in the caller from its arguments.
macro(_orva_arguments function types flags values lists arguments)
    cmake_parse_arguments(arg "${flags}" "${values}" "${lists}" ${arguments})
    if(arg_UNPARSED_ARGUMENTS OR arg_KEYWORDS_MISSING_VALUES)
        message(FATAL_ERROR "${function}: unknown or without a value: "
            "${arg_UNPARSED_ARGUMENTS}${arg_KEYWORDS_MISSING_VALUES}")
    endif()
    if(NOT TARGET "${arg_TARGET}")
        message(FATAL_ERROR "${function}: TARGET must name a target, not '${arg_TARGET}'.")
    endif()
    get_target_property(type "${arg_TARGET}" TYPE)
    get_target_property(is_imported "${arg_TARGET}" IMPORTED)
    get_target_property(aliased "${arg_TARGET}" ALIASED_TARGET)
    if(NOT type MATCHES "^(${types})$" OR is_imported OR aliased)
        message(FATAL_ERROR "${function}: TARGET must be one that this project builds, no alias, "
            "with the type ${types}. '${arg_TARGET}' is not.")
    endif()
    if("${values}" MATCHES "SOURCE" AND NOT arg_SOURCE)
        message(FATAL_ERROR "${function}: SOURCE must name a strings file.")
    endif()
    foreach(argument IN ITEMS NAME OUTPUT)
        if(arg_${argument} MATCHES "/")
            message(FATAL_ERROR "${function}: ${argument} must be a file's name, without a folder, "
                "not '${arg_${argument}}'.")
        endif()
    endforeach()
    # Otherwise the name of a target's folder would make a cycle of dependencies.
    if(DEFINED orva_target_policy AND NOT orva_target_policy STREQUAL "NEW")
        message(FATAL_ERROR "${function} needs cmake_minimum_required(VERSION 3.22).")
    endif()
endmacro()

# Makes the path of an input in the caller's arg_… absolute. It must exist, unless the build makes it.
function(_orva_input function argument)
    set(file "${arg_${argument}}")
    cmake_path(ABSOLUTE_PATH file NORMALIZE)
    get_source_file_property(is_generated "${file}" GENERATED)
    if(NOT is_generated AND (IS_DIRECTORY "${file}" OR NOT EXISTS "${file}"))
        message(FATAL_ERROR "${function}: ${argument}: there is no file ${file}. "
            "If the build makes it, set its property GENERATED first.")
    endif()
    set(arg_${argument} "${file}" PARENT_SCOPE)
endfunction()

# Sets in the caller: layout, "bundle" or "installed"; resources and frameworks, folders for commands;
# resources_path and frameworks_path, the same for the OUTPUT of a rule, which must be known now; and
# work, a folder for the target's files.
function(_orva_layout target)
    set(work "${CMAKE_CURRENT_BINARY_DIR}/${target}_orva")
    get_target_property(is_bundle ${target} MACOSX_BUNDLE)
    get_target_property(binary_folder ${target} BINARY_DIR)
    get_target_property(folder ${target} RUNTIME_OUTPUT_DIRECTORY)
    if(NOT folder)
        set(folder "${binary_folder}")
    endif()
    cmake_path(ABSOLUTE_PATH folder BASE_DIRECTORY "${binary_folder}")
    get_property(has_many_configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
    if(has_many_configurations)
        string(APPEND work "/$<CONFIG>")
        if(NOT folder MATCHES "\\$<")
            string(APPEND folder "/$<CONFIG>")
        endif()
    endif()
    set(layout bundle)
    if(APPLE AND is_bundle)
        get_target_property(name ${target} OUTPUT_NAME)
        if(NOT name)
            set(name "${target}")
        endif()
        get_target_property(extension ${target} BUNDLE_EXTENSION)
        if(NOT extension)
            set(extension app)
        endif()
        set(contents "$<TARGET_BUNDLE_CONTENT_DIR:${target}>")
        set(contents_path "${folder}/${name}.${extension}/Contents")
    elseif(folder MATCHES "/Contents/[^/]+$")
        cmake_path(GET folder PARENT_PATH contents)
        set(contents_path "${contents}")
    else()
        set(layout installed)
    endif()
    if(layout STREQUAL "bundle")
        set(resources "${contents}/Resources" PARENT_SCOPE)
        set(resources_path "${contents_path}/Resources" PARENT_SCOPE)
        set(frameworks "${contents}/Frameworks" PARENT_SCOPE)
        set(frameworks_path "${contents_path}/Frameworks" PARENT_SCOPE)
    else()
        set(resources "$<TARGET_FILE_DIR:${target}>" PARENT_SCOPE)
        set(resources_path "${folder}" PARENT_SCOPE)
    endif()
    set(layout "${layout}" PARENT_SCOPE)
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

# Sets in the caller: helper, a target of its own for what makes a file, so that both Make and Xcode
# make it first and only once; and is_new, unless an earlier call has it already, with the same
# arguments. An earlier call with others is an error, which the given argument avoids.
function(_orva_claim function argument name file arguments)
    get_property(helper GLOBAL PROPERTY "orva_target ${file}")
    get_property(earlier GLOBAL PROPERTY "orva_arguments ${file}")
    set(is_new OFF)
    if(NOT helper)
        set(is_new ON)
        string(MAKE_C_IDENTIFIER "${arg_TARGET}_orva_${name}" helper)
        while(TARGET ${helper})
            string(APPEND helper "_")
        endwhile()
        set_property(GLOBAL PROPERTY "orva_target ${file}" "${helper}")
        set_property(GLOBAL PROPERTY "orva_arguments ${file}" "${arguments}")
    elseif(NOT earlier STREQUAL arguments)
        message(FATAL_ERROR "${function}: the target ${helper} of an earlier call makes ${file}, with "
            "other arguments. Use another ${argument}, or a folder of its own for ${arg_TARGET}.")
    endif()
    set(helper "${helper}" PARENT_SCOPE)
    set(is_new "${is_new}" PARENT_SCOPE)
endfunction()
