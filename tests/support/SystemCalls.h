#ifndef ORVALANGUAGE_TESTS_SUPPORT_SYSTEMCALLS_H
#define ORVALANGUAGE_TESTS_SUPPORT_SYSTEMCALLS_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

// While it lives, records the calls by which this process makes, reads, replaces and removes files
// and holds signals. Supplies random bytes in place of the system, and lets a test refuse calls.
// One at a time.
class SystemCalls {
public:
    // Called before each call, with the text that Made will return. Returns the error with which
    // the call must fail, or 0 to let it through. Changing a signal mask never fails. Its own calls
    // go to the system unrecorded.
    using Refuse = std::function<int(const std::string& call)>;

    // May change the answer of fstat or lstat.
    using Alter = std::function<void(const std::string& call, struct stat& status)>;

    // random: the bytes to supply, in order; when they are used up, the source fails.
    explicit SystemCalls(Refuse refuse = nullptr, std::vector<std::uint8_t> random = Counting(),
                         Alter alter = nullptr);
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;

    // The calls so far, each with its name, its file and what else matters, such as
    // "open file O_WRONLY|O_CREAT|O_EXCL|O_CLOEXEC 600" or "fsync file". A temporary folder is TMP.
    static const std::vector<std::string>& Made();

    // The files opened since and not closed, by descriptor.
    static const std::map<int, std::string>& Open();

    // The bytes A1 to FF.
    static std::vector<std::uint8_t> Counting();
};

#endif
