#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "protection/ProtectedForm.h"
#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/NoSection.h"
#include "tools/orva-strings/document/StringsReader.h"

namespace {

// Writes the row of the section that begins at this line. Goes on to the next header or the end.
void WriteRow(StringsReader& lines, std::ostream& out) {
    const std::size_t number = lines.Line().number + 1;
    const std::string_view name = lines.SectionName();
    // A load makes one entry for each key, and one for the header.
    std::vector<std::string_view> keys = {"QVLANG"};
    while (lines.Next() && !lines.IsHeader()) {
        if (const auto entry = lines.Entry()) {
            keys.push_back(entry->key);
        }
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    const auto protectedKeys = std::count_if(
        keys.begin(), keys.end(), [](std::string_view key) { return IsProtectedKey(key.data()); });
    out << std::setw(6) << number << std::setw(9) << keys.size() << std::setw(11) << protectedKeys
        << "  " << Printable(name) << '\n';
}

class Sections : public Command {
public:
    Sections()
        : Command({"sections",
                   "List the sections: line, number of entries, how many are protected, name",
                   {}}) {}

    void Declare(Arguments& arguments) override { arguments.Add(kStringsFile, m_file); }

    ExitStatus Run(const Console& console) override {
        const FileSnapshot file = console.Read(m_file);
        StringsReader lines(file.bytes);
        while (!lines.IsHeader()) {
            if (!lines.Next()) {
                return console.Report({NoSection()}, m_file);
            }
        }
        console.Out() << "  LINE  ENTRIES  PROTECTED  SECTION\n";
        while (lines.IsHeader()) {
            WriteRow(lines, console.Out());
        }
        return kDone;
    }

private:
    std::string m_file;
};

}  // namespace

std::unique_ptr<Command> MakeSections() {
    return std::make_unique<Sections>();
}
