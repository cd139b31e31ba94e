#ifndef ORVALANGUAGE_BENCH_CORPUS_H
#define ORVALANGUAGE_BENCH_CORPUS_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <numeric>
#include <random>
#include <string>
#include <vector>

// One of the folders that make_corpora.py writes.
class Corpus {
public:
    explicit Corpus(std::string folder) : m_folder(std::move(folder)) {
        std::ifstream(m_folder + "/language") >> m_language;
        std::ifstream keys(m_folder + "/keys.txt");
        for (std::string key; std::getline(keys, key);) {
            m_keys.push_back(key);
        }
        if (m_keys.empty()) {
            std::fprintf(stderr, "%s: no corpus\n", m_folder.c_str());
            std::exit(1);
        }
    }

    const std::string& Folder() const { return m_folder; }
    std::string File(const char* name) const { return m_folder + '/' + name; }

    // The folder's own name, which is also that of its gettext catalog.
    std::string Size() const { return m_folder.substr(m_folder.rfind('/') + 1); }

    // The section of the strings file to load; the other formats hold only this language.
    const std::string& Language() const { return m_language; }

    // Every key, in file order.
    const std::vector<std::string>& Keys() const { return m_keys; }

private:
    std::string m_folder;
    std::string m_language;
    std::vector<std::string> m_keys;
};

// Which of that many keys to look up in turn, at random; the same in every run. There are enough that
// no processor learns their order, as it does with a thousand repeated keys: a tree search would
// then seem three times as fast as it is.
inline std::vector<std::size_t> Draws(std::size_t keys) {
    constexpr int kDraws = 1 << 18;
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same in every run
    std::uniform_int_distribution<std::size_t> draw(0, keys - 1);
    std::vector<std::size_t> draws;
    for (int i = 0; i < kDraws; ++i) {
        draws.push_back(draw(random));
    }
    return draws;
}

// Each of that many keys once, in random order; the same in every run.
inline std::vector<std::size_t> EachOnce(std::size_t keys) {
    std::vector<std::size_t> order(keys);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::mt19937 random(1);  // NOLINT(cert-msc51-cpp): the same in every run
    std::shuffle(order.begin(), order.end(), random);
    return order;
}

// Keys to look up in turn. They are in memory in the order of their use, because fetching a key is not
// a part of the lookup: a host has it at hand.
class KeySequence {
public:
    // The ending is appended to each key: with one, no table has the key.
    KeySequence(const std::vector<std::string>& keys, const std::vector<std::size_t>& order,
                const char* ending = "") {
        std::vector<std::size_t> starts;
        for (const std::size_t i : order) {
            starts.push_back(m_bytes.size());
            m_bytes += keys[i] + ending + '\0';
        }
        for (const std::size_t start : starts) {
            m_keys.push_back(m_bytes.data() + start);
        }
    }
    KeySequence(const KeySequence&) = delete;
    KeySequence& operator=(const KeySequence&) = delete;

    auto begin() const { return m_keys.begin(); }
    auto end() const { return m_keys.end(); }

private:
    std::string m_bytes;
    std::vector<const char*> m_keys;
};

#endif
