#ifndef ORVALANGUAGE_BENCH_PEERS_BOOSTLOCALE_H
#define ORVALANGUAGE_BENCH_PEERS_BOOSTLOCALE_H

#include <boost/locale.hpp>

#include "bench/Corpus.h"

// Boost.Locale, with gettext's catalogs. It reads the catalog into memory.
class BoostLocale {
public:
    static constexpr char kName[] = "Boost.Locale";

    explicit BoostLocale(const Corpus& corpus) {
        boost::locale::generator generator;
        generator.add_messages_path(corpus.Folder());
        generator.add_messages_domain(corpus.Size());
        m_locale = generator(corpus.Language() + ".UTF-8");
    }

    // Returns the key itself if the text is missing.
    std::string LookUp(const char* key) const { return boost::locale::gettext(key, m_locale); }

    static bool IsFound(const std::string& text, const char* key) { return text != key; }
    static std::string Utf8(const std::string& text) { return text; }

private:
    std::locale m_locale;
};

#endif
