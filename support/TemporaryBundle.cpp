#include "support/TemporaryBundle.h"

#include <cerrno>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr char kResources[] = "Contents/Resources";

// Throws std::system_error from errno unless a call succeeded.
void Check(bool hasSucceeded, const std::filesystem::path& path) {
    if (!hasSucceeded) {
        throw std::system_error(errno, std::generic_category(), path.string());
    }
}

}  // namespace

TemporaryBundle::TemporaryBundle() : m_bundle(nullptr) {
    for (const std::filesystem::path& folder : {Resources().parent_path(), Resources()}) {
        Check(mkdir(folder.c_str(), 0700) == 0, folder);
    }
    m_bundle = OpenBundle(m_folder.Path());
    if (m_bundle == nullptr) {
        throw std::runtime_error(m_folder.Path().string() + ": can't be opened as a bundle");
    }
}

TemporaryBundle::~TemporaryBundle() {
    CloseBundle(m_bundle);
}

std::filesystem::path TemporaryBundle::Resources() const {
    return m_folder.Path() / kResources;
}

void TemporaryBundle::Write(const std::string& name, std::string_view bytes) const {
    m_folder.Write(std::string(kResources) + '/' + name, bytes);
}

void TemporaryBundle::Link(const std::string& name, const std::string& target) const {
    const std::filesystem::path path = Resources() / name;
    Check(symlink(target.c_str(), path.c_str()) == 0, path);
}
