#ifndef ORVALANGUAGE_BENCH_PEERS_FLOOR_H
#define ORVALANGUAGE_BENCH_PEERS_FLOOR_H

#include <fcntl.h>
#include <functional>
#include <memory>
#include <string_view>
#include <sys/mman.h>
#include <sys/stat.h>
#include <tsl/robin_map.h>
#include <unistd.h>

#include "bench/Corpus.h"

// What is possible: finds the section in the same strings file, copies its bytes, splits them with
// memchr, and stores views of them. No library for hosts: it checks nothing, knows only values in
// quotes, and leaves their escapes as they are.
//
// The table is the faster of Debian's two: absl::flat_hash_map took half as long again to fill with
// 10,000 entries, and a fifth longer to find one.
class Floor {
public:
    static constexpr char kName[] = "floor";

    explicit Floor(const Corpus& corpus) : Floor(corpus.File("texts.strings"), corpus.Language()) {}

    Floor(const std::string& path, std::string_view language) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status = {};
        fstat(file, &status);
        const auto size = static_cast<std::size_t>(status.st_size);
        void* const mapping = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
        close(file);
        // Copied, since a file may change under a mapping.
        const Section section = Find({static_cast<const char*>(mapping), size}, language);
        m_bytes.reset(new char[section.bytes.size()]);
        section.bytes.copy(m_bytes.get(), section.bytes.size());
        munmap(mapping, size);
        Split({m_bytes.get(), section.bytes.size()}, section.lines);
    }

    std::size_t Size() const { return m_texts.size(); }

    // Without data if the text is missing.
    std::string_view LookUp(const char* key) const {
        const auto found = m_texts.find(key);
        return found == m_texts.end() ? std::string_view() : found->second;
    }

    static bool IsFound(std::string_view text, const char* /*key*/) {
        return text.data() != nullptr;
    }
    static std::string Utf8(std::string_view text) {
        std::string utf8(text);
        for (std::size_t at = 0; (at = utf8.find("\\n", at)) != std::string::npos; ++at) {
            utf8.replace(at, 2, "\n");
        }
        return utf8;
    }

private:
    struct Section {
        std::string_view bytes;
        std::size_t lines;
    };

    static Section Find(std::string_view file, std::string_view language) {
        constexpr std::string_view kHeader = "QVLANG=";
        std::size_t first = 0;
        std::size_t lines = 0;
        std::size_t start = 0;
        for (std::size_t end = 0; start < file.size(); start = end + 1) {
            end = file.find('\n', start);
            const std::string_view line = file.substr(start, end - start);
            if (line.substr(0, kHeader.size()) != kHeader) {
                ++lines;
            } else if (first > 0) {
                break;
            } else if (line.substr(kHeader.size()) == language) {
                first = end + 1;
                lines = 0;
            }
        }
        return {file.substr(first, start - first), lines};
    }

    void Split(std::string_view bytes, std::size_t lines) {
        m_texts.reserve(lines);
        for (std::size_t start = 0, end = 0; start < bytes.size(); start = end + 1) {
            end = bytes.find('\n', start);
            const std::size_t equals = bytes.find('=', start);
            m_texts.emplace(bytes.substr(start, equals - start),
                            bytes.substr(equals + 2, end - equals - 3));
        }
    }

    std::unique_ptr<char[]> m_bytes;
    // With a hash in each entry, which takes no room there.
    tsl::robin_map<std::string_view, std::string_view, std::hash<std::string_view>, std::equal_to<>,
                   std::allocator<std::pair<std::string_view, std::string_view>>, true>
        m_texts;
};

#endif
