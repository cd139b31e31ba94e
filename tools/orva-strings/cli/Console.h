#ifndef ORVALANGUAGE_TOOLS_CLI_CONSOLE_H
#define ORVALANGUAGE_TOOLS_CLI_CONSOLE_H

#include <functional>
#include <optional>
#include <ostream>
#include <string>

#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/system/Files.h"

enum ExitStatus { kDone = 0, kFindings = 1, kUsageOrSystem = 2 };

// Which of a command's outputs are terminals.
struct Terminals {
    bool isOut = false;
    bool isErr = false;
};

// A command's input and output.
class Console {
public:
    // readInput returns standard input's bytes and may throw. It and the streams must outlive the
    // object.
    Console(const std::function<std::string()>& readInput, std::ostream& out, std::ostream& err,
            Terminals terminals)
        : m_readInput(readInput), m_out(out), m_err(err), m_terminals(terminals) {}

    std::ostream& Out() const { return m_out; }
    bool IsOutTerminal() const { return m_terminals.isOut; }

    // Standard error, for output meant only for a terminal. Null if standard error is not a terminal.
    std::ostream* ErrTerminal() const { return m_terminals.isErr ? &m_err : nullptr; }

    // Reads a file, or standard input for "-".
    FileSnapshot Read(const std::string& file) const;

    // Likewise, but prints why a file can't be read, and returns nothing.
    std::optional<FileSnapshot> ReadOrSay(const std::string& file) const;

    // Reads the key in a file, or on standard input for "-". An empty name gives the built-in key.
    MasterKey ReadKey(const std::string& keyFile) const;

    // Prints a message about the command itself.
    void Say(Severity severity, const std::string& text) const;

    // Makes a change to a file, then prints what it did: the line "FILE: TEXT". If change throws,
    // nothing is printed; afterwards, nothing can fail.
    void SayDone(const std::string& file, const std::string& text,
                 const std::function<void()>& change) const;

    // Prints findings about a file in line order, after those about the whole file. Returns the
    // resulting exit status.
    ExitStatus Report(Findings findings, const std::string& file) const;

private:
    const std::function<std::string()>& m_readInput;
    std::ostream& m_out;
    std::ostream& m_err;
    Terminals m_terminals;
};

#endif
