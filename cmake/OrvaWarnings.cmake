# orva_set_warnings(TARGET…): the warnings for all of the project's sources.
function(orva_set_warnings)
    foreach(target IN LISTS ARGN)
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion
            $<$<BOOL:${ORVA_WARNINGS_AS_ERRORS}>:-Werror>)
    endforeach()
endfunction()
