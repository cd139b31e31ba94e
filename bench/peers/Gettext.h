#ifndef ORVALANGUAGE_BENCH_PEERS_GETTEXT_H
#define ORVALANGUAGE_BENCH_PEERS_GETTEXT_H

#include <clocale>
#include <cstdlib>
#include <libintl.h>

#include "bench/Corpus.h"

// GNU gettext, the one in the C library. It maps the catalog and keeps in a tree every translation
// that it has found.
class Gettext {
public:
    static constexpr char kName[] = "gettext";

    explicit Gettext(const Corpus& corpus) : m_domain(corpus.Size()) {
        setenv("LANGUAGE", corpus.Language().c_str(), 1);
        std::setlocale(LC_ALL, "C.UTF-8");  // in "C" nothing is translated
        bindtextdomain(m_domain.c_str(), corpus.Folder().c_str());
        bind_textdomain_codeset(m_domain.c_str(), "UTF-8");
    }

    // Returns the key itself if the text is missing.
    const char* LookUp(const char* key) const { return dgettext(m_domain.c_str(), key); }

    static bool IsFound(const char* text, const char* key) { return text != key; }
    static std::string Utf8(const char* text) { return text; }

private:
    std::string m_domain;
};

#endif
