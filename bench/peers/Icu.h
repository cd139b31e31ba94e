#ifndef ORVALANGUAGE_BENCH_PEERS_ICU_H
#define ORVALANGUAGE_BENCH_PEERS_ICU_H

#include <unicode/unistr.h>
#include <unicode/ures.h>

#include "bench/Corpus.h"

// ICU's resource bundles. It maps the compiled bundle.
class Icu {
public:
    static constexpr char kName[] = "ICU";

    struct Text {
        const UChar* characters;
        std::int32_t length;
    };

    explicit Icu(const Corpus& corpus) {
        UErrorCode status = U_ZERO_ERROR;
        m_bundle = ures_open(corpus.Folder().c_str(), corpus.Language().c_str(), &status);
    }
    ~Icu() { ures_close(m_bundle); }
    Icu(const Icu&) = delete;
    Icu& operator=(const Icu&) = delete;

    Text LookUp(const char* key) const {
        UErrorCode status = U_ZERO_ERROR;
        Text text = {nullptr, 0};
        text.characters = ures_getStringByKey(m_bundle, key, &text.length, &status);
        return text;
    }

    static bool IsFound(const Text& text, const char* /*key*/) {
        return text.characters != nullptr;
    }
    static std::string Utf8(const Text& text) {
        std::string utf8;
        return icu::UnicodeString(text.characters, text.length).toUTF8String(utf8);
    }

private:
    UResourceBundle* m_bundle;
};

#endif
