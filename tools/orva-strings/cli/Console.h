#ifndef ORVALANGUAGE_TOOLS_CLI_CONSOLE_H
#define ORVALANGUAGE_TOOLS_CLI_CONSOLE_H

#include <functional>
#include <ostream>
#include <string>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/system/Files.h"

enum ExitStatus { kDone = 0, kFindings = 1, kUsageOrSystem = 2 };

// Where a command reads and writes.
class Console {
public:
    // readInput gives the bytes of standard input, and may throw. All three must outlive the object.
    Console(const std::function<std::string()>& readInput, std::ostream& out, std::ostream& err)
        : m_readInput(readInput), m_out(out), m_err(err) {}

    std::ostream& Out() const { return m_out; }

    // The bytes of a file, or of standard input for -.
    FileSnapshot Read(const std::string& file) const;

    // The key in a file, from standard input for -, or without a name the one built in.
    MasterKey ReadKey(const std::string& keyFile) const;

    // Says something about the command itself.
    void Say(Severity severity, const std::string& text) const;

    // Prints findings about a file in the order of its lines, first those about all of it. Returns
    // the status that follows from them.
    ExitStatus Report(Findings findings, const std::string& file) const;

private:
    const std::function<std::string()>& m_readInput;
    std::ostream& m_out;
    std::ostream& m_err;
};

#endif
