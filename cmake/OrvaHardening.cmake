# orva_harden(TARGET…): compiler options that make a bug in the library end the process instead of
# giving an attacker control. The library's link options add read-only relocations, bound at start.
function(orva_harden)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE -fstack-protector-strong)
        # Needs optimisation, so not in Debug or without a build type. A C library without level 3
        # uses 2. Undefined first because some compilers predefine it.
        target_compile_options(${target} PRIVATE
            "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
    endforeach()
endfunction()
