# The tests for Linux alone, grouped by the reason, and what those for every system need on Linux.

# A locale in which I is not the capital of i. It is made here, since few machines have one.
set(locales "${CMAKE_CURRENT_BINARY_DIR}/locales")
add_custom_command(OUTPUT "${locales}/tr_TR.UTF-8/LC_CTYPE"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${locales}"
    COMMAND localedef --quiet -i tr_TR -f UTF-8 "${locales}/tr_TR.UTF-8"
    VERBATIM)
add_custom_target(turkish_locale DEPENDS "${locales}/tr_TR.UTF-8/LC_CTYPE")
target_compile_definitions(locale_tests PRIVATE LOCALES="${locales}")
add_dependencies(locale_tests turkish_locale)

# The tests replace functions of the system under its own names, as glibc declares them. ELF lets the
# library's calls come to them; on macOS a library calls the system whatever the executable defines.
orva_add_test_object(file_faults support/FileFaults.cpp)
orva_add_test(file_access_tests
    strings/FileAccessTest.cpp
    $<TARGET_OBJECTS:file_faults>)
target_link_libraries(file_access_tests PRIVATE OrvaLanguage ${CMAKE_DL_LIBS})
set_target_properties(file_access_tests PROPERTIES ENABLE_EXPORTS ON)

orva_add_test(changing_files_tests
    strings/ChangingFilesTest.cpp
    $<TARGET_OBJECTS:file_faults>
    support/ReadFaults.cpp)
target_link_libraries(changing_files_tests PRIVATE OrvaLanguage ${CMAKE_DL_LIBS})
set_target_properties(changing_files_tests PROPERTIES ENABLE_EXPORTS ON)

orva_add_test(unknown_executable_tests platform/UnknownExecutableTest.cpp)
target_link_libraries(unknown_executable_tests PRIVATE OrvaLanguage)
set_target_properties(unknown_executable_tests PROPERTIES ENABLE_EXPORTS ON)

orva_add_test(static_objects_tests api/StaticObjectsTest.cpp)
target_compile_definitions(static_objects_tests PRIVATE
    ORVA_LIBRARY="$<TARGET_FILE:OrvaLanguage>")
target_link_libraries(static_objects_tests PRIVATE ${CMAKE_DL_LIBS})
set_target_properties(static_objects_tests PROPERTIES ENABLE_EXPORTS ON)
add_dependencies(static_objects_tests OrvaLanguage)
set_property(TEST parents APPEND PROPERTY
    ENVIRONMENT "STATIC_OBJECTS_TESTS=$<TARGET_FILE:static_objects_tests>")

orva_add_test(orva_strings_system_calls_tests
    tools/OrvaStringsSystemCallsTest.cpp
    support/SystemCalls.cpp)
target_link_libraries(orva_strings_system_calls_tests
    PRIVATE orva_strings_tool ${CMAKE_DL_LIBS})

add_executable(interrupted_orva_strings
    "${PROJECT_SOURCE_DIR}/tools/orva-strings/main.cpp"
    support/KillAtCall.cpp)
target_link_libraries(interrupted_orva_strings PRIVATE orva_strings_tool ${CMAKE_DL_LIBS})
orva_set_warnings(interrupted_orva_strings)
add_test(NAME interrupted COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/interrupted_test.sh"
    "$<TARGET_FILE:interrupted_orva_strings>")
set_tests_properties(interrupted PROPERTIES TIMEOUT 300)

# The programs that the recipes are for come from Debian's packages.
add_test(NAME recipes COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/recipes_test.sh"
    "${PROJECT_SOURCE_DIR}" "$<TARGET_FILE:orva-strings>")
set_tests_properties(recipes PROPERTIES LABELS builds SKIP_RETURN_CODE 77)

# So do those that read what export writes.
add_test(NAME translating COMMAND
    "${CMAKE_CURRENT_SOURCE_DIR}/tools/exchange/translating_test.sh"
    "${PROJECT_SOURCE_DIR}" "$<TARGET_FILE:orva-strings>")
set_tests_properties(translating PROPERTIES LABELS builds SKIP_RETURN_CODE 77)
if(ORVA_BUILD_EXAMPLES)
    add_test(NAME translators_week COMMAND
        "${CMAKE_CURRENT_SOURCE_DIR}/tools/exchange/translators_week_test.sh"
        "$<TARGET_FILE:orva-strings>" "$<TARGET_FILE:SampleHost>")
endif()

# The run path of an embedded library, and both generators.
if(ORVA_INSTALL)
    add_test(NAME cmake_functions COMMAND
        "${CMAKE_CURRENT_SOURCE_DIR}/release/cmake_functions_test.sh" "${PROJECT_BINARY_DIR}"
        "${PROJECT_SOURCE_DIR}/docs/building.md")
    set_tests_properties(cmake_functions PROPERTIES
        LABELS builds SKIP_RETURN_CODE 77 TIMEOUT 600 ENVIRONMENT "${as_this_build}")
endif()

# SARIF, validated by its schema with Debian's packages.
add_executable(print_sarif tools/formats/PrintSarif.cpp)
target_link_libraries(print_sarif PRIVATE orva_strings_tool)
orva_set_warnings(print_sarif)
add_test(NAME sarif_schema COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/formats/sarif_schema_test.sh"
    "$<TARGET_FILE:print_sarif>")
set_tests_properties(sarif_schema PROPERTIES LABELS builds SKIP_RETURN_CODE 77)

# The page that report writes, in a browser from Debian's packages.
add_test(NAME report_page COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/report_page_test.py"
    "$<TARGET_FILE:orva-strings>")
set_tests_properties(report_page PROPERTIES LABELS builds SKIP_RETURN_CODE 77)

# git starts the command, which scripts/macos could only run in its loader.
add_test(NAME git_diff COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/tools/git_diff_test.sh"
    "$<TARGET_FILE:orva-strings>" "${PROJECT_SOURCE_DIR}/tools/orva-strings/orva-strings.1")

# The tests read in /proc how much memory the process has, and what is in it.
orva_add_test(hostile_files_memory_tests strings/HostileFilesMemoryTest.cpp)
target_link_libraries(hostile_files_memory_tests PRIVATE OrvaLanguage)

orva_add_test_object(process_memory support/ProcessMemory.cpp)
orva_add_test(process_memory_tests
    support/ProcessMemoryTest.cpp
    $<TARGET_OBJECTS:process_memory>)

if(ORVA_KEY_FILE STREQUAL "")
    orva_add_test(lookup_memory_tests
        api/LookupMemoryTest.cpp
        $<TARGET_OBJECTS:process_memory>)
    target_link_libraries(lookup_memory_tests PRIVATE OrvaLanguage orva_test_stored_form)

    orva_add_test(orva_strings_memory_tests
        tools/OrvaStringsMemoryTest.cpp
        $<TARGET_OBJECTS:failing_allocation>
        $<TARGET_OBJECTS:process_memory>)
    target_link_libraries(orva_strings_memory_tests
        PRIVATE orva_strings_tool orva_test_stored_form)
endif()

# Plain folders as bundles, for systems without CoreFoundation.
add_executable(print_main_bundle platform/PrintMainBundle.cpp)
target_link_libraries(print_main_bundle PRIVATE orva_internals)
orva_set_warnings(print_main_bundle)
orva_add_test(resource_path_folder_tests
    platform/ResourcePathFolderTest.cpp)
target_link_libraries(resource_path_folder_tests PRIVATE orva_internals)
target_compile_definitions(resource_path_folder_tests PRIVATE
    PRINT_MAIN_BUNDLE="$<TARGET_FILE:print_main_bundle>")
add_dependencies(resource_path_folder_tests print_main_bundle)

target_sources(hosts_tests PRIVATE tools/commands/WhereTest.cpp)

# The macOS sources, over stand-ins that record the system calls.
orva_add_test_object(corefoundation_standin standin/CoreFoundationStandIn.cpp)
target_include_directories(corefoundation_standin PRIVATE standin)
orva_add_test(resource_path_corefoundation_tests
    platform/ResourcePathCoreFoundationTest.cpp
    $<TARGET_OBJECTS:corefoundation_standin>
    "${PROJECT_SOURCE_DIR}/platform/ResourcePathCoreFoundation.cpp")
target_include_directories(resource_path_corefoundation_tests PRIVATE standin)
target_link_libraries(resource_path_corefoundation_tests PRIVATE orva_internals)
orva_add_test(open_bundle_corefoundation_tests
    support/OpenBundleCoreFoundationTest.cpp
    $<TARGET_OBJECTS:corefoundation_standin>
    "${PROJECT_SOURCE_DIR}/support/OpenBundleCoreFoundation.cpp")
target_include_directories(open_bundle_corefoundation_tests PRIVATE standin)
orva_add_test(preferred_languages_macos_tests
    include/PreferredLanguagesMacOSTest.cpp
    $<TARGET_OBJECTS:corefoundation_standin>)
target_include_directories(preferred_languages_macos_tests PRIVATE standin)
orva_add_test(access_list_macos_tests
    tools/system/AccessListMacOSTest.cpp
    "${PROJECT_SOURCE_DIR}/tools/orva-strings/system/AccessListMacOS.cpp")
target_include_directories(access_list_macos_tests PRIVATE standin)
orva_add_test(sha256_commoncrypto_tests
    platform/Sha256CommonCryptoTest.cpp
    "${PROJECT_SOURCE_DIR}/platform/Sha256CommonCrypto.cpp")
target_include_directories(sha256_commoncrypto_tests PRIVATE standin)

# Our own cipher call, over Nettle: it follows each rule of the system's and agrees with OpenSSL.
orva_add_test(common_cryptor_tests
    platform/CommonCryptorPeerTest.cpp
    platform/CommonCryptorStackTest.cpp
    platform/CommonCryptorTest.cpp
    $<TARGET_OBJECTS:stack_after>)
target_link_libraries(common_cryptor_tests PRIVATE orva_internals PkgConfig::Crypto)

# NIST's vectors, from the Debian package.
find_path(ORVA_NIST_VECTORS ciphers/AES/CBC/CBCMMT128.rsp REQUIRED
    PATHS /usr/lib/python3/dist-packages/cryptography_vectors NO_DEFAULT_PATH)
orva_add_test(nist_vectors_tests platform/NistVectorsTest.cpp)
target_compile_definitions(nist_vectors_tests PRIVATE
    NIST_AES_VECTORS="${ORVA_NIST_VECTORS}/ciphers/AES")
target_link_libraries(nist_vectors_tests PRIVATE orva_internals)

# Linux's access lists.
orva_add_test(orva_strings_access_list_tests tools/OrvaStringsAccessListTest.cpp)
target_link_libraries(orva_strings_access_list_tests PRIVATE orva_strings_tool)

# What ELF makes of the library: late binding, several copies in one process, hosts that copy its
# data, the file itself.
if(ORVA_KEY_FILE STREQUAL "")
    target_sources(protected_tests PRIVATE api/LateBoundCallTest.cpp)
    target_link_options(protected_tests PRIVATE LINKER:-z,lazy)
    target_link_options(decoder_tests PRIVATE LINKER:-z,lazy)

    orva_add_test(copies_tests api/CopiesTest.cpp)
    target_compile_definitions(copies_tests PRIVATE
        ORVA_LIBRARY="$<TARGET_FILE:OrvaLanguage>")
    target_link_libraries(copies_tests
        PRIVATE OrvaLanguage orva_test_stored_form PkgConfig::Nettle ${CMAKE_DL_LIBS})
    set_target_properties(copies_tests PROPERTIES ENABLE_EXPORTS ON)  # replaces a call of Nettle
endif()

add_test(NAME soname COMMAND "${CMAKE_READELF}" --dynamic "$<TARGET_FILE:OrvaLanguage>")
set_tests_properties(soname PROPERTIES
    PASS_REGULAR_EXPRESSION "soname: .libOrvaLanguage\\.so\\.${PROJECT_VERSION_MAJOR}\\]")

add_test(NAME exports COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/exports_test.sh"
    "$<TARGET_FILE:OrvaLanguage>" "${PROJECT_SOURCE_DIR}/api/exports.txt"
    "${orva_exported_symbols}")

add_test(NAME package_recipes
    COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/package_recipes_test.sh" "${PROJECT_SOURCE_DIR}")
set_tests_properties(package_recipes PROPERTIES
    LABELS builds SKIP_RETURN_CODE 77 ENVIRONMENT "${as_this_build}")

if(CMAKE_SYSTEM_PROCESSOR STREQUAL "x86_64")
    add_test(NAME abi COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/abi_test.sh"
        "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}")
    set_tests_properties(abi PROPERTIES LABELS builds SKIP_RETURN_CODE 77)
endif()

add_test(NAME hardening COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/hardening_test.sh"
    "$<TARGET_FILE:OrvaLanguage>" "${PROJECT_BINARY_DIR}/compile_commands.json" "$<CONFIG>")

add_test(NAME host_interface COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/host_interface_test.sh"
    "$<TARGET_FILE:OrvaLanguage>" "${PROJECT_SOURCE_DIR}")
set_tests_properties(host_interface PROPERTIES ENVIRONMENT "${as_this_build}")

add_test(NAME texts_header COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/texts_header_test.sh"
    "$<TARGET_FILE:OrvaLanguage>" "${PROJECT_SOURCE_DIR}")
set_tests_properties(texts_header PROPERTIES LABELS builds ENVIRONMENT "${as_this_build}")

# The compilers come from Debian's packages.
if(ORVA_INSTALL)
    add_test(NAME languages COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/languages_test.sh"
        "${PROJECT_BINARY_DIR}" "${PROJECT_SOURCE_DIR}")
    set_tests_properties(languages PROPERTIES
        LABELS builds SKIP_RETURN_CODE 77 TIMEOUT 300 ENVIRONMENT "${as_this_build}")
endif()

# The documents and manual pages, checked with Debian's packages.
add_test(NAME manuals COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/manuals_test.py"
    "${PROJECT_SOURCE_DIR}" "$<TARGET_FILE:orva-strings>")
set_tests_properties(manuals PROPERTIES LABELS builds SKIP_RETURN_CODE 77)

add_test(NAME links COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/links_test.py"
    "${PROJECT_SOURCE_DIR}" "$<$<BOOL:${ORVA_INSTALL}>:${PROJECT_BINARY_DIR}>")
set_tests_properties(links PROPERTIES LABELS builds RESOURCE_LOCK installation)

# Xcode's project, read as text.
add_test(NAME xcode_project COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/xcode_project_test.py"
    "${PROJECT_SOURCE_DIR}" "$<TARGET_FILE:orva-strings>")

# The documents' commands are those for Linux.
if(ORVA_INSTALL)
    add_test(NAME documents COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/documents_test.py"
        "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}")
    set_tests_properties(documents PROPERTIES
        LABELS builds TIMEOUT 300 ENVIRONMENT "${as_this_build}")
endif()

# The sample windows, on a display without a screen, with toolkits from Debian's packages.
add_test(NAME windows COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/windows_test.sh"
    "${PROJECT_SOURCE_DIR}" "$<TARGET_FILE:orva-strings>")
set_tests_properties(windows PROPERTIES
    LABELS builds TIMEOUT 300 SKIP_RETURN_CODE 77 ENVIRONMENT "${as_this_build}")

# A bundle that carries a copy of Nettle, in a root folder of its own.
if(ORVA_BUILD_EXAMPLES)
    add_test(NAME bundle COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/release/bundle_test.sh"
        "$<TARGET_FILE:SampleHost>" "$<$<BOOL:${ORVA_INSTALL}>:${PROJECT_BINARY_DIR}>")
    set_tests_properties(bundle PROPERTIES SKIP_RETURN_CODE 77 RESOURCE_LOCK installation)
endif()
