# Language settings for this project's own targets, whatever an enclosing project has set. They
# apply only in this folder and below.

# C++17, or a newer standard if one was requested.
if(NOT CMAKE_CXX_STANDARD MATCHES "^2[0-9]$")
    set(CMAKE_CXX_STANDARD 17)
endif()
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)

# Some CMake versions put an inherited -std option after the standard's own, where it would win.
get_directory_property(options COMPILE_OPTIONS)
string(REGEX REPLACE "-std=[^;>]*" "" options "${options}")
set_directory_properties(PROPERTIES COMPILE_OPTIONS "${options}")
# Comes after the inherited options and CMAKE_CXX_FLAGS, which may turn exceptions off.
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:-fexceptions>")
