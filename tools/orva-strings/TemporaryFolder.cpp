#include "tools/orva-strings/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <new>
#include <stdexcept>
#include <unistd.h>

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "orva-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder: " + name);
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder() {
    try {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    } catch (const std::bad_alloc&) {
        // It stays, which harms less than an end of the process here would.
    }
}

void TemporaryFolder::Write(const std::string& name, std::string_view bytes) const {
    std::ofstream file(m_path / name, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("can't write " + name);
    }
}
