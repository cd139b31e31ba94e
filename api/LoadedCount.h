#ifndef ORVALANGUAGE_API_LOADEDCOUNT_H
#define ORVALANGUAGE_API_LOADEDCOUNT_H

#include <cstdint>

// What the last ZuLoadStrings returned; 0 before the first. Only ZuLoadStrings writes it: a host's
// own call of KorLoadStrings leaves it unchanged.
extern std::int32_t gLoadedCount;

#endif
