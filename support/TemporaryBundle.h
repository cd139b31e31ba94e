#ifndef ORVALANGUAGE_SUPPORT_TEMPORARYBUNDLE_H
#define ORVALANGUAGE_SUPPORT_TEMPORARYBUNDLE_H

#include <filesystem>
#include <string>
#include <string_view>

#include "support/OpenBundle.h"
#include "support/TemporaryFolder.h"

// A temporary bundle with its own resources folder. Other users cannot look into it.
class TemporaryBundle {
public:
    TemporaryBundle();
    ~TemporaryBundle();
    TemporaryBundle(const TemporaryBundle&) = delete;
    TemporaryBundle& operator=(const TemporaryBundle&) = delete;

    __CFBundle* Get() const { return m_bundle; }
    std::filesystem::path Resources() const;

    // Creates or replaces a file in the resources folder.
    void Write(const std::string& name, std::string_view bytes) const;

    // Creates a symbolic link there. Throws std::system_error if the system refuses.
    void Link(const std::string& name, const std::string& target) const;

private:
    TemporaryFolder m_folder;
    __CFBundle* m_bundle;
};

#endif
