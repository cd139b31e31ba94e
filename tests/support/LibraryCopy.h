#ifndef ORVALANGUAGE_TESTS_SUPPORT_LIBRARYCOPY_H
#define ORVALANGUAGE_TESTS_SUPPORT_LIBRARYCOPY_H

#include <dlfcn.h>
#include <filesystem>
#include <functional>
#include <string>

#include <OrvaLanguage/KorString.h>
#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

// A copy of the library's file, opened by path like a plug-in, with its exported names.
class LibraryCopy {
public:
    using Open = std::function<void*(const char* path)>;

    explicit LibraryCopy(const Open& open) {
        std::filesystem::copy_file(ORVA_LIBRARY, Path());
        m_handle = open(Path().c_str());
        EXPECT_NE(m_handle, nullptr) << dlerror();
    }
    ~LibraryCopy() {
        if (m_handle != nullptr) {
            Close();
        }
    }
    LibraryCopy(const LibraryCopy&) = delete;
    LibraryCopy& operator=(const LibraryCopy&) = delete;

    // Loads a file of one section with these lines and returns the load's result.
    int Load(const std::string& lines) const {
        m_folder.Write("x.strings", "QVLANG=en\n" + lines);
        auto* const bundle =
            Function<__CFBundle*(const char*)>("ZuOpenBundle")(m_folder.Path().c_str());
        const int entries = Function<int(const char*, const char*, __CFBundle*)>("ZuLoadStrings")(
            "en", "x.strings", bundle);
        Function<void(__CFBundle*)>("ZuCloseBundle")(bundle);
        return entries;
    }

    // The lookup's answer; "(null)" for null.
    std::string Text(const char* key) const {
        const char* const text = Function<const char*(const char*)>("ZuGetLocalizedString")(key);
        return text == nullptr ? "(null)" : text;
    }

    const KorStringMap& Table() const {
        return **Symbol<const KorStringMap*>("_ZN9KorString20gMapLocalizedStringsE");
    }

    void Close() {
        EXPECT_EQ(dlclose(m_handle), 0) << dlerror();
        m_handle = nullptr;
    }

    // It stays open until the process exits.
    void LeaveOpen() { m_handle = nullptr; }

    bool IsLoaded() const {
        void* const handle = dlopen(Path().c_str(), RTLD_LAZY | RTLD_NOLOAD);
        return handle != nullptr && dlclose(handle) == 0;
    }

private:
    std::filesystem::path Path() const { return m_folder.Path() / "libOrvaLanguage.so.1"; }

    template <typename Object>
    Object* Symbol(const char* name) const {
        void* const symbol = dlsym(m_handle, name);
        EXPECT_NE(symbol, nullptr) << dlerror();
        return static_cast<Object*>(symbol);
    }
    template <typename Signature>
    Signature* Function(const char* name) const {
        return reinterpret_cast<Signature*>(Symbol<void>(name));
    }

    TemporaryFolder m_folder;
    void* m_handle = nullptr;
};

#endif
