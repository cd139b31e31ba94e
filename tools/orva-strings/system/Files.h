#ifndef ORVALANGUAGE_TOOLS_SYSTEM_FILES_H
#define ORVALANGUAGE_TOOLS_SYSTEM_FILES_H

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>

// Each throws std::system_error, naming the file, if the system refuses.

// The bytes of a file.
std::string ReadFile(const std::string& path);

// Takes a part of a file's bytes.
using TakePiece = std::function<void(std::string_view)>;

// Calls take with the bytes of a file, in pieces of at most 64 KiB.
void ReadFileInPieces(const std::string& path, const TakePiece& take);

// Calls take with the bytes to write, in pieces.
using BytesInPieces = std::function<void(const TakePiece& take)>;

// The bytes of standard input.
std::string ReadStandardInput();

// What a path names, symbolic links followed; of type not_found if nothing is there. Throws
// std::system_error if the system can't tell.
std::filesystem::file_status StatusOf(const std::string& path);

// Whether two paths name the same file. Not if it is missing.
bool AreSameFile(const std::string& a, const std::string& b);

// The bytes of a file, and its status when they were read.
struct FileSnapshot {
    std::string bytes;
    struct stat status = {};
};
FileSnapshot ReadSnapshot(const std::string& path);

// Replaces the bytes of a regular file. Whenever the process or the machine stops, the file holds
// all of the old bytes or all of the new ones. Its mode stays, as does a symbolic link to it; its
// owner, group and access list stay if the system allows that. If the owner or the group does not,
// the mode loses setuid and setgid. If the group or the list does not, group and others each keep
// only the permissions that both had. Signals that would end the process wait until it is done.
//
// Throws std::runtime_error if the file is not a regular one, or if another program has changed its
// bytes, mode, owner or group since the snapshot, or put another file in its place. The file is
// then left as it is, with nothing beside it. This is checked last, but not in one step with the
// replacement: what another program does between the two is lost. A change of the access list that
// leaves the mode as it is goes unnoticed.
void ReplaceFile(const std::string& path, const FileSnapshot& before, const BytesInPieces& bytes);

// Writes a file, whole or not at all; symbolic links are followed. An existing regular file is
// replaced as by ReplaceFile, but whatever bytes it holds, even the same ones. A new file gets
// the permissions that the umask and the folder give, and replaces one that another program creates
// meanwhile.
void WriteFile(const std::string& path, const BytesInPieces& bytes);

// Creates a file that only its owner may read and write. Fails if it exists. Signals wait here too.
void CreatePrivateFile(const std::string& path, std::string_view bytes);

// A private file without a name: the system removes it when the process ends, even if it is killed.
class NamelessFile {
public:
    // Creates a file at path, and removes that name before writing the bytes.
    NamelessFile(const std::string& path, std::string_view bytes);
    ~NamelessFile();
    NamelessFile(const NamelessFile&) = delete;
    NamelessFile& operator=(const NamelessFile&) = delete;

    // A path by which this process can open the file while this object lives. Read it only once: on
    // some systems all its opens share one position.
    std::string Path() const;

private:
    int m_descriptor;
};

#endif
