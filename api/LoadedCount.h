#ifndef ORVALANGUAGE_API_LOADEDCOUNT_H
#define ORVALANGUAGE_API_LOADEDCOUNT_H

#include <cstdint>

// What the last ZuLoadStrings returned; 0 before the first. Only ZuLoadStrings writes it: a host
// that calls KorLoadStrings itself leaves it as it was.
extern std::int32_t gLoadedCount;

#endif
