#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tools/orva-strings/cli/Command.h"
#include "tools/orva-strings/cli/Json.h"
#include "tools/orva-strings/cli/Printable.h"
#include "tools/orva-strings/commands/CommonArguments.h"
#include "tools/orva-strings/document/SectionList.h"

namespace {

// Writes the sections of files, one after the other.
class Writer {
public:
    Writer() = default;
    virtual ~Writer() = default;
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    virtual void BeginFile(const std::string& name) = 0;
    virtual void Add(const SectionSummary& section) = 0;
    virtual void End() = 0;  // after at least one file
};

// A table, in which several files have a column for their names.
class TextWriter : public Writer {
public:
    TextWriter(std::ostream& out, const std::vector<std::string>& names) : m_out(out) {
        if (names.size() > 1) {
            m_width = 4;  // of the heading
            for (const std::string& name : names) {
                m_width = std::max(m_width, Printable(name).size());
            }
        }
    }

    void BeginFile(const std::string& name) override { m_name = Printable(name); }

    void Add(const SectionSummary& section) override {
        if (!m_hasHeading) {
            WriteFile("FILE");
            m_out << "  LINE  ENTRIES  PROTECTED  SECTION\n";
            m_hasHeading = true;
        }
        WriteFile(m_name);
        m_out << std::setw(6) << section.line + 1 << std::setw(9) << section.entries
              << std::setw(11) << section.protectedEntries << "  " << PrintableName(section.name)
              << (section.isReachable ? "" : "  (unreachable)") << '\n';
    }

    void End() override {}

private:
    void WriteFile(const std::string& name) {
        if (m_width > 0) {
            m_out << name << std::string(m_width - name.size(), ' ');
        }
    }

    std::ostream& m_out;
    std::string m_name;
    std::size_t m_width = 0;  // of the names' column
    bool m_hasHeading = false;
};

// An object, one line a section.
class JsonWriter : public Writer {
public:
    explicit JsonWriter(std::ostream& out) : m_out(out) {}

    void BeginFile(const std::string& name) override {
        m_out << m_beforeFile << "\n{\"file\":" << JsonText(name) << R"(,"sections":[)";
        m_beforeFile = "]},";
        m_beforeSection = "\n";
    }

    void Add(const SectionSummary& section) override {
        m_out << m_beforeSection << R"({"name":)" << JsonText(section.name) << R"(,"line":)"
              << section.line + 1 << R"(,"entries":)" << section.entries << R"(,"protected":)"
              << section.protectedEntries << R"(,"reachable":)"
              << (section.isReachable ? "true" : "false") << '}';
        m_beforeSection = ",\n";
    }

    void End() override { m_out << "]}]}\n"; }

private:
    std::ostream& m_out;
    const char* m_beforeFile = R"({"version":1,"files":[)";
    const char* m_beforeSection = "";
};

class Sections : public Command {
public:
    Sections()
        : Command({"sections",
                   "List the sections: line, number of entries, how many are protected, name",
                   {}}) {}

    void Declare(Arguments& arguments) override {
        arguments.Add(kStringsFiles, m_files);
        arguments.Add(kStdinName, m_stdinName);
        arguments.Add(kTextOrJson, m_format);
    }

    ExitStatus Run(const Console& console) override {
        const std::unique_ptr<Writer> writer = MakeWriter(console.Out());
        ExitStatus status = kDone;
        bool hasRead = false;
        for (const std::string& file : m_files) {
            const std::string& name = NameOf(file, m_stdinName);
            const std::optional<FileSnapshot> content = console.ReadOrSay(file);
            if (!content) {
                status = kUsageOrSystem;
                continue;
            }
            hasRead = true;
            writer->BeginFile(name);
            const Findings findings = ListSections(
                content->bytes, [&](const SectionSummary& section) { writer->Add(section); });
            status = std::max(status, console.Report(findings, name));
        }
        if (hasRead) {
            writer->End();
        }
        return status;
    }

private:
    std::unique_ptr<Writer> MakeWriter(std::ostream& out) const {
        if (m_format == "json") {
            return std::make_unique<JsonWriter>(out);
        }
        std::vector<std::string> names;
        for (const std::string& file : m_files) {
            names.push_back(NameOf(file, m_stdinName));
        }
        return std::make_unique<TextWriter>(out, names);
    }

    std::vector<std::string> m_files;
    std::string m_stdinName;
    std::string m_format = "text";
};

}  // namespace

std::unique_ptr<Command> MakeSections() {
    return std::make_unique<Sections>();
}
