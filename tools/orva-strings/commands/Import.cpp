#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/FindSection.h"
#include "tools/orva-strings/document/PieceWriter.h"
#include "tools/orva-strings/exchange/Importer.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// Brings the texts that translators have written into a strings file.
class Import : public Command {
public:
    Import()
        : Command({"import",
                   "Bring translations from XLIFF 1.2 files into a strings file",
                   {"import --code English=en --code Deutsch=de Source.strings de.xlf"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFile, m_file);
        arguments.Add({"XLIFF", "", "The XLIFF files; - is standard input", Role::kInput, true},
                      m_documents);
        arguments.Add(kLanguageCode, m_codes);
        arguments.Add(kReference, m_reference);
        arguments.AddFlag("--create",
                          "Add the section of a language, and entries, that are missing",
                          m_options.creates);
        arguments.AddFlag("--accept-stale",
                          "Import a text even if its source is no longer the reference's text",
                          m_options.acceptsStale);
        arguments.Add(
            {"--accept-state", "STATE",
             "Import texts in this state, though it says that they are not finished; may be "
             "given several times",
             Role::kText, false, nullptr,
             "new|needs-adaptation|needs-l10n|needs-review-adaptation|needs-review-l10n|"
             "needs-review-translation|needs-translation"},
            m_options.acceptedStates);
        arguments.Add(kKeyFile, m_keyFile);
        arguments.AddFlag(kCheckFlag, kCheckHelp, m_isCheck);
    }

    ExitStatus Run(const Console& console) override {
        const FileSnapshot before = console.Read(m_file);
        Findings findings;
        const auto reference = FindSection(before.bytes, m_reference, false, findings);
        const LanguageCodes codes(m_codes, StringsReader(before.bytes), findings);
        if (console.Report(findings, m_file) != kDone) {
            return kFindings;
        }
        StringsDocument document(before.bytes);
        const Outcome outcome = ImportInto(document, before.bytes, *reference, codes, console);
        ExitStatus status = kDone;
        for (std::size_t i = 0; i < m_documents.size(); ++i) {
            status = std::max(status, console.Report(outcome.findings[i], m_documents[i]));
        }
        return outcome.isRead ? std::max(status, Write(document, outcome.counts, before, console))
                              : status;
    }

private:
    struct Outcome {
        bool isRead;  // each document, and no text came twice
        ImportCounts counts;
        std::vector<Findings> findings;  // about each document
    };

    // The key is gone when this returns.
    Outcome ImportInto(StringsDocument& document, std::string_view bytes,
                       const StringsReader& reference, const LanguageCodes& codes,
                       const Console& console) const {
        const ProtectionKeys keys = console.ReadKey(m_keyFile).Derive();
        Importer importer(document, bytes, reference, codes, keys, m_options);
        bool isRead = true;
        for (const std::string& file : m_documents) {
            isRead = ReadDocument(file, importer, console) && isRead;
        }
        isRead = isRead && !importer.HasDoubled();
        if (isRead) {
            importer.Apply();
        }
        return {isRead, importer.Counts(), std::move(importer.AllFindings())};
    }

    static bool ReadDocument(const std::string& file, Importer& importer, const Console& console) {
        importer.BeginDocument();
        try {
            XliffReader reader([&](const XliffFile& part) { importer.BeginFile(part); },
                               [&](const XliffUnit& unit) { importer.Take(unit); });
            const auto read = [&](std::string_view piece) { reader.Read(piece); };
            if (file == "-") {
                const TakePiece take = read;
                PieceWriter pieces(take);
                pieces.Write(console.Read(file).bytes);
                pieces.Finish();
            } else {
                ReadFileInPieces(file, read);
            }
            reader.Finish();
            return true;
        } catch (const XliffError& error) {
            importer.AllFindings().back().push_back({Severity::kError, error.Line(), error.what()});
            return false;
        }
    }

    ExitStatus Write(const StringsDocument& document, const ImportCounts& counts,
                     const FileSnapshot& before, const Console& console) const {
        const auto result = [&](const TakePiece& take) { document.WriteInPieces(take); };
        if (m_isCheck) {
            if (document.IsChanged()) {
                console.SayDone(m_file, Summary(counts), [] {});
            }
            return document.IsChanged() ? kFindings : kDone;
        }
        if (m_file == "-") {
            result([&](std::string_view piece) { console.Out() << piece; });
        } else {
            console.SayDone(m_file, Summary(counts), [&] {
                if (document.IsChanged()) {
                    ReplaceFile(m_file, before, result);
                }
            });
        }
        return kDone;
    }

    std::string Summary(const ImportCounts& counts) const {
        std::string summary = m_isCheck ? "would change " : "changed ";
        summary += Count(counts.changed, "entry", "entries");
        if (counts.added > 0) {
            summary += ", " + std::string(m_isCheck ? "add " : "added ");
            summary += std::to_string(counts.added);
        }
        if (counts.same > 0) {
            summary += ", " + Count(counts.same, "was the same", "were the same");
        }
        if (counts.unfinished > 0) {
            summary += ", " + Count(counts.unfinished, "is not finished", "are not finished");
        }
        return summary;
    }

    std::string m_file;
    std::vector<std::string> m_documents;
    std::vector<std::string> m_codes;
    std::string m_reference;
    std::string m_keyFile;
    ImportOptions m_options;
    bool m_isCheck = false;
};

}  // namespace

std::unique_ptr<Command> MakeImport() {
    return std::make_unique<Import>();
}
