#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/commands/OwnOutput.h"
#include "tools/orva-strings/commands/TranslationsCommand.h"
#include "tools/orva-strings/page/TranslationPage.h"
#include "tools/orva-strings/system/Files.h"

namespace {

class Report : public TranslationsCommand {
public:
    Report()
        : TranslationsCommand({"report",
                               "Write a page that shows how far the translations are",
                               {"report -o report.html Source.strings"}}) {}

    void Declare(Arguments& arguments) override {
        TranslationsCommand::Declare(arguments);
        arguments.Add({"-o,--output", "OUTPUT", kOutputHelp, Role::kOutput}, m_output);
    }

private:
    ExitStatus Take(const TranslatedFile& file, const Console& /*console*/) override {
        m_parts += FilePart(file.name, file.bytes, file.translations, file.findings);
        ++m_count;
        return kDone;
    }

    // Replaces no file but such a page, so that a slip costs nothing.
    void Write(const Console& console) override {
        const auto page = [&](const TakePiece& take) { WritePage(m_parts, take); };
        if (m_output.empty() || m_output == "-") {
            page([&](std::string_view piece) { console.Out() << piece; });
            return;
        }
        ReadOwnOutput(m_output, "report", [](const std::string& old) {
            return old.compare(0, kPageBegin.size(), kPageBegin) == 0;
        });
        console.SayDone(m_output, "wrote the report on " + Count(m_count, "file", "files"),
                        [&] { WriteFile(m_output, page); });
    }

    std::string m_output;
    std::string m_parts;
    std::size_t m_count = 0;
};

}  // namespace

std::unique_ptr<Command> MakeReport() {
    return std::make_unique<Report>();
}
