# Toolchain file: builds for Linux on aarch64 with Debian's cross compiler and its arm64 libraries, and
# runs what it builds in qemu's user mode. `scripts/setup aarch64` installs all three.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
# Otherwise pkg-config would find this machine's own libraries.
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig)
