#ifndef ORVALANGUAGE_TOOLS_SYSTEM_FILES_H
#define ORVALANGUAGE_TOOLS_SYSTEM_FILES_H

#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>

// Each throws std::system_error, with the file's name as its text, if the system refuses.

// The bytes of a file.
std::string ReadFile(const std::string& path);

// Calls take with the bytes of a file, one piece after the other, none of more than 64 KiB.
void ReadFileInPieces(const std::string& path, const std::function<void(std::string_view)>& take);

// The bytes of standard input.
std::string ReadStandardInput();

// The bytes of a file, and what the file was when they were read.
struct FileSnapshot {
    std::string bytes;
    struct stat status = {};
};
FileSnapshot ReadSnapshot(const std::string& path);

// Replaces the bytes of a regular file. Whenever the process or the machine stops, the file holds
// all of the old bytes or all of the new ones. Its mode stays, and so do its owner, its group and
// its access list, where the system allows that, and a symbolic link that leads to it. Without the
// old owner and group the mode loses the bits that act in their names, without the old group or list
// nobody but the owner gets more than both the group and others had. Signals that would end the
// process wait until it is done.
//
// Throws std::runtime_error, and leaves the file as it is and nothing beside it, if it is not a
// regular file, or if another program has changed its bytes, its mode, its owner or its group since
// the snapshot, or put another file in its place. That is checked last, but the system can't make
// one step of the check and the replacing: what another program does in the moment between the two
// is lost. A change of the access list that leaves the mode as it is goes unnoticed.
void ReplaceFile(const std::string& path, const FileSnapshot& before, std::string_view bytes);

// Writes a file, whole or not at all; symbolic links are followed. An existing regular file is
// replaced as by ReplaceFile, but whatever bytes it holds, and even if they are the same. Otherwise
// the file is created with the rights that the process's mask and the folder give, and one that
// another program creates meanwhile is replaced.
void WriteFile(const std::string& path, std::string_view bytes);

// Makes a file that only its owner may read and write. Refuses if it is there already. Signals wait
// here too.
void CreatePrivateFile(const std::string& path, std::string_view bytes);

// A private file without a name: the system removes it when the process ends, even if it is killed.
class NamelessFile {
public:
    // Creates the file with these bytes. Its name, the path, is gone before the first is written.
    NamelessFile(const std::string& path, std::string_view bytes);
    ~NamelessFile();
    NamelessFile(const NamelessFile&) = delete;
    NamelessFile& operator=(const NamelessFile&) = delete;

    // A path under which this process can open the file while this object lives. Read it only once:
    // on some systems everything that opens it shares one position.
    std::string Path() const;

private:
    int m_descriptor;
};

#endif
