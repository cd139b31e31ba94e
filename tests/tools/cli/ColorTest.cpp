#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "tools/orva-strings/cli/Color.h"

namespace {

// Sets an environment variable, or removes it, until the end of its life.
class Variable {
public:
    Variable(const char* name, const char* value) : m_name(name) {
        if (const char* const before = std::getenv(name)) {
            m_before = before;
        }
        Set(value);
    }
    ~Variable() { Set(m_before ? m_before->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void Set(const char* value) const {
        if (value != nullptr) {
            setenv(m_name, value, 1);
        } else {
            unsetenv(m_name);
        }
    }

    const char* m_name;
    std::optional<std::string> m_before;
};

TEST(Color, IsUsedForATerminalUnlessTheEnvironmentForbidsIt) {
    const struct {
        const char* noColor;
        const char* terminal;
        bool isUsed;
    } cases[] = {
        {nullptr, "xterm-256color", true},
        {"", "xterm", true},
        {"1", "xterm", false},
        {"0", "xterm", false},
        {nullptr, "dumb", false},
        {nullptr, "", false},
        {nullptr, nullptr, false},
    };
    for (const auto& [noColor, terminal, isUsed] : cases) {
        const Variable first("NO_COLOR", noColor);
        const Variable second("TERM", terminal);
        SCOPED_TRACE(terminal != nullptr ? terminal : "no TERM");
        EXPECT_EQ(UsesColor("auto", true), isUsed);
        EXPECT_FALSE(UsesColor("auto", false));
        for (const bool isTerminal : {false, true}) {
            EXPECT_TRUE(UsesColor("always", isTerminal));
            EXPECT_FALSE(UsesColor("never", isTerminal));
        }
    }
}

}  // namespace
