# The language of this project's own targets, whatever an enclosing project has set. It applies in
# this folder and below, and nowhere else.

# C++17, or a newer standard that was asked for.
if(NOT CMAKE_CXX_STANDARD MATCHES "^2[0-9]$")
    set(CMAKE_CXX_STANDARD 17)
endif()
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 99)

# Some versions of CMake put an inherited -std option after the standard's own, where it would win.
get_directory_property(options COMPILE_OPTIONS)
string(REGEX REPLACE "-std=[^;>]*" "" options "${options}")
set_directory_properties(PROPERTIES COMPILE_OPTIONS "${options}")
# After the inherited options and CMAKE_CXX_FLAGS, which may have turned exceptions off.
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:-fexceptions>")
