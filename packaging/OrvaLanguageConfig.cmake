include("${CMAKE_CURRENT_LIST_DIR}/OrvaLanguageTargets.cmake")
# OrvaLanguage::orva-strings, if the component "tools" is installed.
include("${CMAKE_CURRENT_LIST_DIR}/OrvaLanguageTools.cmake" OPTIONAL)
