#ifndef ORVALANGUAGE_BENCH_PEERS_STANDARDMAP_H
#define ORVALANGUAGE_BENCH_PEERS_STANDARDMAP_H

#include <map>

#include <OrvaLanguage/KorString.h>

#include "bench/Corpus.h"

// A std::map filled from the same strings file through the library's line functions: the simplest
// way to write this library.
class StandardMap {
public:
    static constexpr char kName[] = "std::map";

    explicit StandardMap(const Corpus& corpus) {
        std::ifstream file(corpus.File("texts.strings"));
        std::string line;
        while (KorString::GetLine(file, line) &&
               !KorString::SearchLanguageKey(line, corpus.Language().c_str())) {
        }
        while (KorString::GetLine(file, line) && !KorString::SearchLanguageKey(line, "")) {
            std::string key;
            std::string text;
            if (KorString::GetLocalizedElement(line, &key, &text)) {
                m_texts.emplace(std::move(key), std::move(text));
            }
        }
    }

    // Null if the text is missing.
    const char* LookUp(const char* key) const {
        const auto found = m_texts.find(key);
        return found == m_texts.end() ? nullptr : found->second.c_str();
    }

    static bool IsFound(const char* text, const char* /*key*/) { return text != nullptr; }
    static std::string Utf8(const char* text) { return text; }

private:
    std::map<std::string, std::string> m_texts;
};

#endif
