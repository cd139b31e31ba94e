#ifndef ORVALANGUAGE_BENCH_PEERS_NLOHMANNJSON_H
#define ORVALANGUAGE_BENCH_PEERS_NLOHMANNJSON_H

#include <nlohmann/json.hpp>

#include "bench/Corpus.h"

// nlohmann-json, with one object of texts.
class NlohmannJson {
public:
    static constexpr char kName[] = "nlohmann-json";

    explicit NlohmannJson(const Corpus& corpus) {
        std::ifstream file(corpus.File("texts.json"));
        m_texts = nlohmann::json::parse(file);
    }

    // Null if the text is missing.
    const std::string* LookUp(const char* key) const {
        const auto found = m_texts.find(key);
        return found == m_texts.end() ? nullptr : found->get_ptr<const std::string*>();
    }

    static bool IsFound(const std::string* text, const char* /*key*/) { return text != nullptr; }
    static std::string Utf8(const std::string* text) { return *text; }

private:
    nlohmann::json m_texts;
};

#endif
