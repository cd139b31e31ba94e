#include "tools/orva-strings/cli/Progress.h"

#include <string>
#include <utility>

Progress::Progress(std::ostream* terminal, std::function<Clock::time_point()> now)
    : m_terminal(terminal), m_now(std::move(now)), m_last(m_now()) {}

void Progress::Show(std::string_view text) {
    const Clock::time_point now = m_now();
    if (m_terminal != nullptr && now - m_last >= std::chrono::seconds(1)) {
        Erase();
        *m_terminal << text << std::flush;
        m_length = text.size();
        m_last = now;
    }
}

// With blanks, which every terminal understands.
void Progress::Erase() {
    if (m_length > 0) {
        *m_terminal << '\r' << std::string(m_length, ' ') << '\r' << std::flush;
    }
}
