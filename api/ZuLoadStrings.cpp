#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "api/LoadedCount.h"

std::int32_t gLoadedCount = 0;

int ZuLoadStrings(const char* language, const char* fileName, __CFBundle* bundle) {
    gLoadedCount = KorLoadStrings(language, fileName, bundle);
    return gLoadedCount;
}
