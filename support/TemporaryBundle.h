#ifndef ORVALANGUAGE_SUPPORT_TEMPORARYBUNDLE_H
#define ORVALANGUAGE_SUPPORT_TEMPORARYBUNDLE_H

#include <filesystem>
#include <string>
#include <string_view>

#include "support/OpenBundle.h"
#include "support/TemporaryFolder.h"

// A bundle with a resources folder of its own. Nobody else can look into it.
class TemporaryBundle {
public:
    TemporaryBundle();
    ~TemporaryBundle();
    TemporaryBundle(const TemporaryBundle&) = delete;
    TemporaryBundle& operator=(const TemporaryBundle&) = delete;

    __CFBundle* Get() const { return m_bundle; }
    std::filesystem::path Resources() const;

    // Makes a file among the resources, or replaces it.
    void Write(const std::string& name, std::string_view bytes) const;

    // Makes a symbolic link among the resources. Throws std::system_error if the system refuses.
    void Link(const std::string& name, const std::string& target) const;

private:
    TemporaryFolder m_folder;
    __CFBundle* m_bundle;
};

#endif
