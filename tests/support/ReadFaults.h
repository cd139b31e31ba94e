#ifndef ORVALANGUAGE_TESTS_SUPPORT_READFAULTS_H
#define ORVALANGUAGE_TESTS_SUPPORT_READFAULTS_H

#include <cerrno>
#include <cstddef>
#include <functional>
#include <limits>

// While it lives, interferes with the process's calls of read. The executable must export its
// symbols, so that libstdc++'s calls come here. One at a time.
class ReadFaults {
public:
    static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

    // How far reading has come: a file is read to its end or to a failure, and then again.
    struct Progress {
        bool isRepeated = false;
        std::size_t bytes = 0;  // in this reading
    };

    struct Plan {
        std::size_t maxBytes = kAll;  // of one read
        std::size_t turn = 0;         // the number of a read, from 1; 0: none
        std::function<void(const Progress&)> beforeTurn = [](const Progress&) {};
        std::size_t failures = 0;  // how many reads fail, from the turn on
        int error = EIO;           // their error
    };

    explicit ReadFaults(const Plan& plan);
    ~ReadFaults();
    ReadFaults(const ReadFaults&) = delete;
    ReadFaults& operator=(const ReadFaults&) = delete;

    // The number of reads since the last object was made.
    static std::size_t Calls();
};

#endif
