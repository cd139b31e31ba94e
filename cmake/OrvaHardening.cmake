# orva_harden(TARGET…): what makes a mistake in the library end the process rather than hand it over.
# The rest, read-only relocations bound at start, is among the library's link options.
function(orva_harden)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE -fstack-protector-strong)
        # Needs optimisation, which neither Debug nor a build without a type has. A C library that
        # does not know 3 takes it for 2. Undefined first, as some compilers come with a setting.
        target_compile_options(${target} PRIVATE
            "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
    endforeach()
endfunction()
