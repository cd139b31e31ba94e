# Toolchain file: builds for macOS on Linux with clang, lld and the sysroot that scripts/macos makes.
# CMAKE_OSX_ARCHITECTURES says which of its processors: x86_64, unless arm64 is given.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_OSX_ARCHITECTURES x86_64 CACHE STRING "Architecture to build for: x86_64 or arm64")
set(CMAKE_SYSTEM_PROCESSOR "${CMAKE_OSX_ARCHITECTURES}")
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH orva_project)
set(CMAKE_OSX_SYSROOT "${orva_project}/build/macos-sysroot" CACHE PATH "Headers and libraries of macOS")

foreach(language IN ITEMS C CXX)
    set(CMAKE_${language}_COMPILER_TARGET "${CMAKE_SYSTEM_PROCESSOR}-apple-macos")
endforeach()
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
# The sysroot's own first: its __config_site marks what each version of macOS lacks.
set(CMAKE_CXX_FLAGS_INIT
    "-stdlib++-isystem ${CMAKE_OSX_SYSROOT}/usr/include/c++ -stdlib++-isystem /usr/lib/llvm-19/include/c++/v1")
set(CMAKE_AR llvm-ar-19)
set(CMAKE_RANLIB llvm-ranlib-19)
set(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-19)
foreach(kind IN ITEMS EXE SHARED MODULE)
    # To lld, a listed export that the objects hide is only a warning.
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,-fatal_warnings")
endforeach()

# Packages of this machine would name its own libraries.
set(ENV{PKG_CONFIG_LIBDIR} "${CMAKE_OSX_SYSROOT}/usr/lib/pkgconfig")

# Without a loader, the tests can't list their names while they are built.
set(CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE PRE_TEST)
