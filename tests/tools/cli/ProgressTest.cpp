#include <chrono>
#include <functional>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tools/orva-strings/cli/Progress.h"

using namespace std::chrono_literals;

namespace {

class ProgressOnATerminal : public ::testing::Test {
protected:
    Progress::Clock::time_point m_now;
    std::ostringstream m_terminal;
    const std::function<Progress::Clock::time_point()> m_clock = [this] { return m_now; };
};

TEST_F(ProgressOnATerminal, ShowsNothingInTheFirstSecond) {
    {
        Progress progress(&m_terminal, m_clock);
        progress.Show("file 1");
        m_now += 999ms;
        progress.Show("file 2");
    }
    EXPECT_EQ(m_terminal.str(), "");
}

TEST_F(ProgressOnATerminal, ReplacesWhatItShowsAfterASecondAndErasesItInTheEnd) {
    {
        Progress progress(&m_terminal, m_clock);
        m_now += 1000ms;
        progress.Show("file 2");
        EXPECT_EQ(m_terminal.str(), "file 2");
        m_now += 999ms;
        progress.Show("file 3");
        EXPECT_EQ(m_terminal.str(), "file 2");
        m_now += 1ms;
        progress.Show("file 10");
        EXPECT_EQ(m_terminal.str(), "file 2\r      \rfile 10");
    }
    EXPECT_EQ(m_terminal.str(), "file 2\r      \rfile 10\r       \r");
}

TEST_F(ProgressOnATerminal, ShowsNothingIfThatIsNone) {
    Progress progress(nullptr, m_clock);
    m_now += 5000ms;
    EXPECT_NO_THROW(progress.Show("file 2"));
}

}  // namespace
