#ifndef ORVALANGUAGE_BENCH_PEERS_GLIB_H
#define ORVALANGUAGE_BENCH_PEERS_GLIB_H

#include <glib.h>
#include <memory>

#include "bench/Corpus.h"

// GLib's key files. It reads the file into memory.
class GLib {
public:
    static constexpr char kName[] = "GLib";

    struct Free {
        void operator()(char* text) const { g_free(text); }
    };

    explicit GLib(const Corpus& corpus) : m_file(g_key_file_new()) {
        g_key_file_load_from_file(m_file, corpus.File("texts.ini").c_str(), G_KEY_FILE_NONE,
                                  nullptr);
    }
    ~GLib() { g_key_file_free(m_file); }
    GLib(const GLib&) = delete;
    GLib& operator=(const GLib&) = delete;

    // Returns a copy, or null if the text is missing.
    std::unique_ptr<char, Free> LookUp(const char* key) const {
        return std::unique_ptr<char, Free>(g_key_file_get_string(m_file, "texts", key, nullptr));
    }

    static bool IsFound(const std::unique_ptr<char, Free>& text, const char* /*key*/) {
        return text != nullptr;
    }
    static std::string Utf8(const std::unique_ptr<char, Free>& text) { return text.get(); }

private:
    GKeyFile* m_file;
};

#endif
