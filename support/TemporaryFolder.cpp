#include "support/TemporaryFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <ftw.h>
#include <system_error>
#include <unistd.h>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    const char* const folder = std::getenv("TMPDIR");
    const bool isNamed = folder != nullptr && *folder != '\0';
    m_path = (fs::path(isNamed ? folder : "/tmp") / "orva-XXXXXX").string();
    if (mkdtemp(m_path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), m_path);
    }
}

TemporaryFolder::~TemporaryFolder() {
    // Not remove_all, which throws if memory runs out.
    constexpr int kOpenFolders = 1;  // there may be few descriptors left
    nftw(
        m_path.c_str(),
        [](const char* path, const struct stat*, int, FTW*) { return std::remove(path); },
        kOpenFolders, FTW_DEPTH | FTW_PHYS);
}

void TemporaryFolder::Write(const std::string& name, std::string_view bytes) const {
    const fs::path path = Path() / name;
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
}
