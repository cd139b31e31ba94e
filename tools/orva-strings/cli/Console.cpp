#include "tools/orva-strings/cli/Console.h"

#include <algorithm>
#include <optional>
#include <system_error>

#include "tools/orva-strings/cli/Printable.h"

FileSnapshot Console::Read(const std::string& file) const {
    return file == "-" ? FileSnapshot{m_readInput()} : ReadSnapshot(file);
}

std::optional<FileSnapshot> Console::ReadOrSay(const std::string& file) const {
    try {
        return Read(file);
    } catch (const std::system_error& error) {
        Say(Severity::kError, error.what());
        return std::nullopt;
    }
}

MasterKey Console::ReadKey(const std::string& keyFile) const {
    if (keyFile.empty()) {
        return MasterKey::BuiltIn();
    }
    return keyFile == "-" ? MasterKey::FromText(m_readInput(), "standard input")
                          : MasterKey::FromFile(keyFile);
}

void Console::Say(Severity severity, const std::string& text) const {
    Print({severity, std::nullopt, text}, "orva-strings", m_err);
}

void Console::SayDone(const std::string& file, const std::string& text,
                      const std::function<void()>& change) const {
    const std::string line = Printable(file) + ": " + Printable(text) + '\n';
    change();
    m_err.write(line.data(), static_cast<std::streamsize>(line.size()));
}

ExitStatus Console::Report(Findings findings, const std::string& file) const {
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    for (const Finding& finding : findings) {
        Print(finding, file, m_err);
    }
    return HasError(findings) ? kFindings : kDone;
}
