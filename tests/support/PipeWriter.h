#ifndef ORVALANGUAGE_TESTS_SUPPORT_PIPEWRITER_H
#define ORVALANGUAGE_TESTS_SUPPORT_PIPEWRITER_H

#include <atomic>
#include <functional>
#include <string>
#include <thread>

// A named pipe, and a thread that writes to it. A test that ends early does not hang: what nobody
// has read by the end of the scope is read there.
class PipeWriter {
public:
    // Makes the pipe and runs write, which may open it for writing any number of times, on the
    // thread. Throws std::system_error if the pipe can't be made. Ignores SIGPIPE from now on, so
    // that a reader who leaves early makes a write fail and does not end the process.
    PipeWriter(std::string path, std::function<void()> write);
    ~PipeWriter();
    PipeWriter(const PipeWriter&) = delete;
    PipeWriter& operator=(const PipeWriter&) = delete;

private:
    std::string m_path;
    std::atomic<bool> m_isDone = false;
    std::thread m_thread;
};

#endif
