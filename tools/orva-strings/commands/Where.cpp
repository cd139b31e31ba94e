#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <utf8cpp/utf8.h>
#include <vector>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

#include "platform/ResourcePath.h"
#include "strings/Line.h"
#include "support/OpenBundle.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/document/SectionList.h"
#include "tools/orva-strings/hosts/MainBundle.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// Says which file an executable would load, through the library's own functions, and what a load of it
// returns.
class Where : public Command {
public:
    Where()
        : Command({"where",
                   "Show which file a host would load, and what is wrong if it would load none",
                   {"where /usr/local/bin/myapp App.strings Deutsch"}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add({"EXECUTABLE", "", "The host's executable", Role::kFile, true}, m_executable);
        arguments.Add(
            {"FILE", "", "The file's name, as the host gives it to the library", Role::kText, true},
            m_file);
        arguments.Add({"LANGUAGE", "",
                       "The section's name, as the host gives it; without it, the first section"},
                      m_language);
    }

    ExitStatus Run(const Console& console) override {
        // As the system names an executable to its process.
        std::error_code error;
        const std::filesystem::path executable = std::filesystem::canonical(m_executable, error);
        if (error) {
            throw std::system_error(error, m_executable);
        }
        if (!IsProgram(executable)) {
            throw std::runtime_error(m_executable +
                                     " is not a program; of a script, name the interpreter");
        }
        const std::unique_ptr<__CFBundle, void (*)(__CFBundle*)> bundle(OpenMainBundle(executable),
                                                                        CloseBundle);
        char path[kResourcePathCapacity] = {};
        if (bundle != nullptr) {  // the library would take null for this command's own
            GetResourcePath(bundle.get(), m_file.c_str(), path);
        }
        console.Out() << "executable: " << Printable(executable.string())
                      << "\npath:       " << Printable(path) << '\n';
        if (path[0] == '\0') {
            return Fail(utf8::is_valid(m_file)
                            ? "a load returns 0: the path is too long, or the bundle has no "
                              "resources folder"
                            : "a load returns 0: the file's name is not UTF-8",
                        console);
        }
        return Load(bundle.get(), path, console);
    }

private:
    static bool IsProgram(const std::filesystem::path& path) {
        using std::filesystem::perms;
        const std::filesystem::file_status status = StatusOf(path);
        const perms mayRun = perms::owner_exec | perms::group_exec | perms::others_exec;
        if (!is_regular_file(status) || (status.permissions() & mayRun) == perms::none) {
            return false;
        }
        std::string mark(2, '\0');
        std::ifstream(path).read(mark.data(), 2);
        return mark != "#!";
    }

    static ExitStatus Fail(const std::string& reason, const Console& console) {
        console.Say(Severity::kError, reason);
        return kFindings;
    }

    ExitStatus Load(__CFBundle* bundle, const std::string& path, const Console& console) const {
        std::error_code error;
        const std::filesystem::file_status status = std::filesystem::status(path, error);
        if (is_directory(status)) {
            return Fail("a load returns 0: that is a folder", console);
        }
        if (exists(status) && !is_regular_file(status)) {
            return Fail("a load may never return: that is a pipe or a device", console);
        }
        errno = 0;
        if (!std::ifstream(path)) {
            return Fail("a load returns 0: " + std::generic_category().message(errno), console);
        }
        ShowSections(path, console);
        const int count = ZuLoadStrings(m_language.c_str(), m_file.c_str(), bundle);
        if (count < 1) {
            return Fail("a load returns 0: the file has no section", console);
        }
        const std::string section = ZuGetLocalizedString("QVLANG");
        const std::string entries = Count(static_cast<std::size_t>(count), "entry", "entries");
        const std::string shown = PrintableName(section);
        console.Out() << "load:       " << entries << ", section " << shown << '\n';
        if (!m_language.empty() && !IsName(section, m_language.c_str())) {
            console.Say(Severity::kWarning,
                        "there is no section " + m_language + ", so a load takes the first one");
        }
        return kDone;
    }

    static void ShowSections(const std::string& path, const Console& console) {
        const std::string bytes = ReadFile(path);
        std::string names;
        const Findings findings = ListSections(bytes, [&](const SectionSummary& section) {
            names += (names.empty() ? "" : ", ") + PrintableName(section.name);
        });
        console.Out() << "sections:   " << names << '\n';
        console.Report(AsWarnings(findings), path);
    }

    std::string m_executable;
    std::string m_file;
    std::string m_language;
};

}  // namespace

std::unique_ptr<Command> MakeWhere() {
    return std::make_unique<Where>();
}
