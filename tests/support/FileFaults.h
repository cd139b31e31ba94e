#ifndef ORVALANGUAGE_TESTS_SUPPORT_FILEFAULTS_H
#define ORVALANGUAGE_TESTS_SUPPORT_FILEFAULTS_H

#include <string>
#include <vector>

// While it lives, records the process's calls of fopen and fclose and makes one of each fail. The
// executable must export its symbols, so that the library's calls come here.
class FileFaults {
public:
    // failingOpen: which fopen from now on returns null: 1 for the first, 0 for none.
    // failingClose: which fclose closes but reports a failure.
    explicit FileFaults(int failingOpen = 0, int failingClose = 0);
    ~FileFaults();
    FileFaults(const FileFaults&) = delete;
    FileFaults& operator=(const FileFaults&) = delete;

    // "fopen PATH MODE" and "fclose", in order.
    static const std::vector<std::string>& Calls();
};

#endif
