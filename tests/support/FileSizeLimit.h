#ifndef ORVALANGUAGE_TESTS_SUPPORT_FILESIZELIMIT_H
#define ORVALANGUAGE_TESTS_SUPPORT_FILESIZELIMIT_H

#include <csignal>
#include <sys/resource.h>

#include <gtest/gtest.h>

// While it lives, every write to a file fails with EFBIG, as it would on a full disk with ENOSPC.
class FileSizeLimit {
public:
    FileSizeLimit() : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        EXPECT_EQ(getrlimit(RLIMIT_FSIZE, &m_before), 0);
        rlimit limit = m_before;
        limit.rlim_cur = 0;
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FileSizeLimit() {
        EXPECT_EQ(setrlimit(RLIMIT_FSIZE, &m_before), 0);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};

#endif
