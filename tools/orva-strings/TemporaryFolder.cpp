#include "tools/orva-strings/TemporaryFolder.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <ftw.h>
#include <stdexcept>
#include <unistd.h>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "orva-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + name);
    }
    try {
        m_path = name;
    } catch (...) {
        rmdir(name.c_str());
        throw;
    }
}

TemporaryFolder::~TemporaryFolder() {
    // Not remove_all, which throws where memory runs out.
    constexpr int kOpenFolders = 8;
    nftw(
        m_path.c_str(),
        [](const char* path, const struct stat*, int, FTW*) { return std::remove(path); },
        kOpenFolders, FTW_DEPTH | FTW_PHYS);
}

void TemporaryFolder::Write(const std::string& name, std::string_view bytes) const {
    std::ofstream file(m_path / name, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("can't write " + name);
    }
}
