#ifndef ORVALANGUAGE_BENCH_PEERS_ORVALANGUAGE_H
#define ORVALANGUAGE_BENCH_PEERS_ORVALANGUAGE_H

#include <OrvaLanguage/OrvaLanguage.h>

#include "bench/Corpus.h"

// This library.
class OrvaLanguage {
public:
    static constexpr char kName[] = "OrvaLanguage";

    explicit OrvaLanguage(const Corpus& corpus) {
        __CFBundle* const bundle = ZuOpenBundle(corpus.Folder().c_str());
        ZuLoadStrings(corpus.Language().c_str(), "texts.strings", bundle);
        ZuCloseBundle(bundle);
    }

    // Null if the text is missing. Not static, since the other peers need their object.
    // NOLINTNEXTLINE(readability-convert-member-functions-to-static)
    const char* LookUp(const char* key) const { return ZuGetLocalizedString(key); }

    static bool IsFound(const char* text, const char* /*key*/) { return text != nullptr; }
    static std::string Utf8(const char* text) { return text; }
};

#endif
