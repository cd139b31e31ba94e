#ifndef ORVALANGUAGE_TOOLS_CLI_PROGRESS_H
#define ORVALANGUAGE_TOOLS_CLI_PROGRESS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <ostream>
#include <string_view>

// Tells whoever waits at a terminal what a command is at. Its destructor erases what it has shown.
class Progress {
public:
    using Clock = std::chrono::steady_clock;

    // The terminal, which must outlive the object, may be null: nothing is shown then.
    explicit Progress(std::ostream* terminal, std::function<Clock::time_point()> now = Clock::now);
    ~Progress() { Erase(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    // Shows a short text in ASCII, such as "checking file 2 of 30", in place of the one before. Does
    // nothing in the first second, nor for a second after each text shown.
    void Show(std::string_view text);

private:
    void Erase();

    std::ostream* m_terminal;
    std::function<Clock::time_point()> m_now;
    Clock::time_point m_last;
    std::size_t m_length = 0;  // of what is shown
};

#endif
