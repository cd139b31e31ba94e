#ifndef ORVALANGUAGE_SUPPORT_TEMPORARYFOLDER_H
#define ORVALANGUAGE_SUPPORT_TEMPORARYFOLDER_H

#include <filesystem>
#include <string>
#include <string_view>

// A new folder in $TMPDIR, or in /tmp if that is unset or empty. The destructor removes it with its
// contents.
class TemporaryFolder {
public:
    // Throws std::system_error if the system refuses.
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::filesystem::path Path() const { return m_path; }

    // Creates or replaces a file in the folder.
    void Write(const std::string& name, std::string_view bytes) const;

private:
    std::string m_path;  // not a path, which would allocate after the folder is made
};

#endif
