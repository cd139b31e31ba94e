#include "tests/support/PipeWriter.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

PipeWriter::PipeWriter(std::string path, std::function<void()> write) : m_path(std::move(path)) {
    if (mkfifo(m_path.c_str(), 0600) != 0) {
        throw std::system_error(errno, std::generic_category(), m_path);
    }
    std::signal(SIGPIPE, SIG_IGN);
    m_thread = std::thread([this, write = std::move(write)] {
        write();
        m_isDone = true;
    });
}

PipeWriter::~PipeWriter() {
    const int pipe = open(m_path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    char buffer[4096];
    while (!m_isDone) {
        if (read(pipe, buffer, sizeof buffer) <= 0) {
            std::this_thread::yield();
        }
    }
    m_thread.join();
    close(pipe);
}
