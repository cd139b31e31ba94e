include("${CMAKE_CURRENT_LIST_DIR}/OrvaLanguageTargets.cmake")
# OrvaLanguage::orva-strings, if the component "tools" is installed.
include("${CMAKE_CURRENT_LIST_DIR}/OrvaLanguageTools.cmake" OPTIONAL)
# orva_add_strings, orva_generate_keys and orva_embed.
include("${CMAKE_CURRENT_LIST_DIR}/OrvaLanguageStrings.cmake")

# The components that find_package(OrvaLanguage COMPONENTS ...) may request.
set(OrvaLanguage_runtime_FOUND TRUE)
set(OrvaLanguage_development_FOUND TRUE)
if(TARGET OrvaLanguage::orva-strings)
    set(OrvaLanguage_tools_FOUND TRUE)
endif()
foreach(component IN LISTS OrvaLanguage_FIND_COMPONENTS)
    if(OrvaLanguage_FIND_REQUIRED_${component} AND NOT OrvaLanguage_${component}_FOUND)
        set(OrvaLanguage_FOUND FALSE)
        set(OrvaLanguage_NOT_FOUND_MESSAGE
            "There is no component ${component}, or it is not installed.")
    endif()
endforeach()
