# What to build. Inside another project, this is only the library unless that project enables more.

if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
    message(FATAL_ERROR
        "BUILD_SHARED_LIBS=${BUILD_SHARED_LIBS}: libOrvaLanguage is a shared library only, because "
        "a static one could not hide its internal names.")
endif()

get_property(orva_has_many_configurations GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(PROJECT_IS_TOP_LEVEL AND NOT orva_has_many_configurations AND "${CMAKE_BUILD_TYPE}" STREQUAL "")
    message(STATUS "Build type: Release (CMAKE_BUILD_TYPE was not given)")
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
endif()

# orva_part(OPTION TEXT DEFAULT UNAVAILABLE)
#
# A switch for a part of the build: ON, OFF, or empty for DEFAULT. The default is not cached, so an
# explicit ON can be distinguished from it. UNAVAILABLE, unless empty, says why the part can't be
# built. A part that is on by default is then left out, and an explicit ON is an error.
function(orva_part option text default unavailable)
    set(${option} "" CACHE STRING "${text} (ON, OFF, or empty for the default)")
    set_property(CACHE ${option} PROPERTY STRINGS "" ON OFF)
    set(value "${${option}}")
    if(value AND NOT unavailable STREQUAL "")
        message(FATAL_ERROR "${option} can't be ${value}: ${unavailable}")
    endif()
    if(value STREQUAL "")
        set(value "${default}")
        if(default AND NOT unavailable STREQUAL "")
            message(STATUS "${option} is off: ${unavailable}")
            set(value OFF)
        endif()
    endif()
    set(${option} "${value}" PARENT_SCOPE)
endfunction()

option(ORVA_INSTALL "Add install rules" ${PROJECT_IS_TOP_LEVEL})
option(ORVA_BUILD_TOOLS "Build the orva-strings command" ${PROJECT_IS_TOP_LEVEL})
option(ORVA_WARNINGS_AS_ERRORS "Make every compiler warning an error" OFF)
set(ORVA_STRINGS_EXECUTABLE "" CACHE FILEPATH
    "The orva-strings with which to protect the texts of the examples; empty: the one built here")
if(NOT ORVA_STRINGS_EXECUTABLE STREQUAL "" AND NOT EXISTS "${ORVA_STRINGS_EXECUTABLE}")
    message(FATAL_ERROR
        "ORVA_STRINGS_EXECUTABLE: there is no file ${ORVA_STRINGS_EXECUTABLE}.")
endif()

set(orva_tools_unavailable "")
if(NOT ORVA_BUILD_TOOLS)
    set(orva_tools_unavailable "it needs ORVA_BUILD_TOOLS.")
endif()
set(orva_tests_unavailable "${orva_tools_unavailable}")
set(orva_examples_unavailable "")
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
    set(orva_tests_unavailable
        "cross-built programs do not run here; set CMAKE_CROSSCOMPILING_EMULATOR.")
    set(orva_examples_unavailable
        "a cross-built orva-strings does not run here; set ORVA_STRINGS_EXECUTABLE to one that does.")
elseif(NOT ORVA_BUILD_TOOLS)
    set(orva_examples_unavailable "it needs ORVA_BUILD_TOOLS or ORVA_STRINGS_EXECUTABLE.")
endif()
if(NOT ORVA_STRINGS_EXECUTABLE STREQUAL "")
    set(orva_examples_unavailable "")
endif()
orva_part(ORVA_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL} "${orva_tests_unavailable}")
orva_part(ORVA_BUILD_EXAMPLES "Build the sample host" ${PROJECT_IS_TOP_LEVEL}
    "${orva_examples_unavailable}")
set(orva_windows_unavailable "")
if(APPLE)
    set(orva_windows_unavailable "they are for Linux.")
elseif(NOT ORVA_BUILD_EXAMPLES)
    set(orva_windows_unavailable "they need ORVA_BUILD_EXAMPLES.")
endif()
orva_part(ORVA_BUILD_WINDOWS "Build the sample windows with Qt 6 and GTK 4 (Linux)" OFF
    "${orva_windows_unavailable}")
orva_part(ORVA_BUILD_BENCHMARKS "Build the benchmarks (Linux)" OFF "${orva_tools_unavailable}")
orva_part(ORVA_BUILD_FUZZERS "Build the fuzzers (clang++)" OFF "${orva_tools_unavailable}")
