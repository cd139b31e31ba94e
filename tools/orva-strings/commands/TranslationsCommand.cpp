#include "tools/orva-strings/commands/TranslationsCommand.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "tools/orva-strings/checks/CheckStrings.h"
#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/system/Files.h"

void TranslationsCommand::Declare(Arguments& arguments) {
    arguments.Add(kStringsFiles, m_files);
    arguments.Add(kStdinName, m_stdinName);
    arguments.Add(kKeyFile, m_keyFile);
    arguments.Add(kBase, m_base);
    arguments.Add(kReference, m_reference);
}

ExitStatus TranslationsCommand::Run(const Console& console) {
    if (!m_base.empty() && m_files.size() != 1) {
        throw UsageError(kBaseNeedsOneFile);
    }
    bool hasTaken = false;
    const ExitStatus status = TakeFiles(console, hasTaken);
    if (hasTaken) {
        Write(console);  // when the keys are gone
    }
    return status;
}

ExitStatus TranslationsCommand::TakeFiles(const Console& console, bool& hasTaken) {
    const ProtectionKeys keys = console.ReadKey(m_keyFile).Derive();
    CheckOptions options(keys);
    options.reference = m_reference;
    const std::optional<std::string> base =
        m_base.empty() ? std::nullopt : std::optional(ReadFile(m_base));
    options.base = base;
    ExitStatus status = kDone;
    for (const std::string& file : m_files) {
        const std::optional<FileSnapshot> content = console.ReadOrSay(file);
        if (!content) {
            status = kUsageOrSystem;
            continue;
        }
        const std::string& name = NameOf(file, m_stdinName);
        Findings findings;
        auto translations =
            ReadTranslations(content->bytes, m_reference, options.base, keys, findings);
        status = std::max(status, console.Report(findings, name));
        if (translations) {
            hasTaken = true;
            const TranslatedFile taken = {name, content->bytes, std::move(*translations),
                                          CheckStrings(content->bytes, options), base.has_value()};
            status = std::max(status, Take(taken, console));
        }
    }
    return status;
}
