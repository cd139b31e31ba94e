#include "tools/orva-strings/cli/Color.h"

#include <cstdlib>

namespace {

// The value of an environment variable; empty if it is not set.
std::string_view Environment(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

}  // namespace

bool UsesColor(std::string_view choice, bool isTerminal) {
    if (choice == "auto") {
        const std::string_view terminal = Environment("TERM");
        return isTerminal && Environment("NO_COLOR").empty() && !terminal.empty() &&
               terminal != "dumb";
    }
    return choice == "always";
}
