# orva_harden(TARGET…): options that make a mistake in the library end the process instead of giving
# an attacker control. The rest, read-only relocations bound at start, is among the library's link
# options.
function(orva_harden)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE -fstack-protector-strong)
        # Needs optimisation, which neither Debug nor a build without a type has. A C library that
        # does not know level 3 uses 2. Undefined first, as some compilers predefine it.
        target_compile_options(${target} PRIVATE
            "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
    endforeach()
endfunction()
