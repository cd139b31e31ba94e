#include "tools/orva-strings/TemporaryBundle.h"

#include <stdexcept>

namespace {

constexpr char kResources[] = "Contents/Resources";

}  // namespace

TemporaryBundle::TemporaryBundle() : m_bundle(nullptr) {
    std::filesystem::create_directories(Resources());
    m_bundle = OpenBundle(m_folder.Path());
    if (m_bundle == nullptr) {
        throw std::runtime_error("no bundle: " + m_folder.Path().string());
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
