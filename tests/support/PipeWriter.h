#ifndef ORVALANGUAGE_TESTS_SUPPORT_PIPEWRITER_H
#define ORVALANGUAGE_TESTS_SUPPORT_PIPEWRITER_H

#include <atomic>
#include <functional>
#include <string>
#include <thread>

// A named pipe, and a thread that writes to it. A test that ends early does not hang: the
// destructor reads what is left.
class PipeWriter {
public:
    // Makes the pipe and runs write on the thread; write may open the pipe any number of times.
    // Throws std::system_error if the pipe can't be made. Ignores SIGPIPE from now on, so that if
    // the reader leaves early a write fails and the process goes on.
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
