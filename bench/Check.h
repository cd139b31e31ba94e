#ifndef ORVALANGUAGE_BENCH_CHECK_H
#define ORVALANGUAGE_BENCH_CHECK_H

#include <cstdio>
#include <cstdlib>

#include "bench/Corpus.h"
#include "bench/peers/StandardMap.h"

// Ends the program unless a source has every text of the corpus. Otherwise the comparison would
// mean nothing.
template <typename Source>
void Check(const Corpus& corpus, const StandardMap& expected) {
    const Source source(corpus);
    for (const std::string& key : corpus.Keys()) {
        const auto text = source.LookUp(key.c_str());
        const char* const expectedText = expected.LookUp(key.c_str());
        if (!Source::IsFound(text, key.c_str()) || expectedText == nullptr ||
            Source::Utf8(text) != expectedText) {
            std::fprintf(stderr, "%s, %s: wrong or missing text for %s\n", corpus.Folder().c_str(),
                         Source::kName, key.c_str());
            std::exit(1);
        }
    }
}

#endif
