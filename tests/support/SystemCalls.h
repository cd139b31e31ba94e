#ifndef ORVALANGUAGE_TESTS_SUPPORT_SYSTEMCALLS_H
#define ORVALANGUAGE_TESTS_SUPPORT_SYSTEMCALLS_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

// While it lives, records the calls by which this process makes, reads, replaces and removes files
// and holds signals, hands out random bytes in the system's place, and lets a test refuse calls.
// There is one at a time.
class SystemCalls {
public:
    // Is asked before each call, as Made will tell it, and answers the error with which the call is to
    // fail, or 0 to have it made. Masks of signals never fail. What it calls itself goes to the
    // system, unrecorded.
    using Refuse = std::function<int(const std::string& call)>;

    // May change what a call of fstat or lstat answers.
    using Alter = std::function<void(const std::string& call, struct stat& status)>;

    // random: the bytes to hand out, one after the other; when they are used up, the source fails.
    explicit SystemCalls(Refuse refuse = nullptr, std::vector<std::uint8_t> random = Counting(),
                         Alter alter = nullptr);
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    // The calls so far: the name, the file and what else matters, such as
    // "open file O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 600" or "fsync file". A temporary folder is TMP.
    static const std::vector<std::string>& Made();

    // The files that were opened since and not closed, by their descriptors.
    static const std::map<int, std::string>& Open();

    // The bytes A1 to FF.
    static std::vector<std::uint8_t> Counting();
};

#endif
