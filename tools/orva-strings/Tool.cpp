#include "tools/orva-strings/Tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <functional>
#include <iterator>
#include <new>
#include <string_view>
#include <utility>

#include "tools/orva-strings/Commands.h"
#include "tools/orva-strings/Files.h"
#include "tools/orva-strings/Key.h"
#include "tools/orva-strings/Printable.h"

namespace {

enum ExitStatus { kDone = 0, kFindings = 1, kUsageOrSystem = 2 };

constexpr char kExamples[] = R"(Examples:
  orva-strings protect -o Shipped.strings Source.strings
  orva-strings protect --in-place --key-file release.key Sample.strings
  orva-strings show --language Deutsch --reveal Sample.strings IDE_TITLE
  orva-strings rekey --from old.key --to new.key --in-place Sample.strings
Exit status: 0 done, 1 something in the file stands in the way, 2 wrong usage or system error.)";

struct Options {
    std::string file;
    std::string outputFile;
    std::string keyFile;
    std::string fromKeyFile;
    std::string toKeyFile;
    std::string language;
    std::vector<std::string> keys;
    bool isInPlace = false;
    bool isForced = false;
    bool isRevealed = false;
};

// Whether the parser would not take an argument as it is, the line feeds at its end apart: a list in
// brackets, the sign that ends a command, and nothing at all, for which it takes the next argument.
bool IsSpecial(std::string_view argument) {
    const std::string_view text = argument.substr(0, argument.find_last_not_of('\n') + 1);
    return text.empty() || text == "++" || (text.front() == '[' && text.back() == ']');
}

// Where an argument's value begins: after a long option's =, after a short option's letter if
// anything follows, and otherwise at the start.
std::size_t ValueBegin(std::string_view argument) {
    if (argument.substr(0, 2) == "--") {
        return argument.find('=') + 1;
    }
    return argument.size() > 2 && argument.front() == '-' ? 2 : 0;
}

// Gives arguments that are special, also those within an option's, a line feed more at their end,
// so that they are no longer.
void MarkSpecial(std::vector<std::string>& arguments) {
    bool areOptions = true;
    for (std::string& argument : arguments) {
        areOptions = areOptions && argument != "--";
        const std::size_t begin = areOptions ? ValueBegin(argument) : 0;
        if (IsSpecial(std::string_view(argument).substr(begin))) {
            argument += '\n';
        }
    }
}

void Unmark(std::string& argument) {
    if (IsSpecial(argument) && !argument.empty() && argument.back() == '\n') {
        argument.pop_back();
    }
}

// An empty name, from a variable that is not set, is no wish for the key built in.
std::string NamesAFile(std::string name) {
    Unmark(name);
    return name.empty() ? "it names no file" : "";
}

// One run of the tool: where it reads and writes, and what it was asked.
class Run {
public:
    Run(const std::function<std::string()>& readInput, std::ostream& out, std::ostream& err)
        : m_readInput(readInput), m_out(out), m_err(err) {}

    int Execute(std::vector<std::string> arguments);

private:
    CLI::App* AddCommand(CLI::App& app, const std::string& name, const std::string& description,
                         std::function<int()> command);
    void AddFile(CLI::App& command);
    void AddOutput(CLI::App& command);
    void AddKeyFile(CLI::App& command);

    bool HasOneInput() const;
    FileSnapshot ReadInput() const;
    Key KeyOf(const std::string& keyFile) const;
    StringsDocument ReadDocument() const { return StringsDocument(ReadInput().bytes); }
    int Change(const std::function<Findings(StringsDocument&)>& change) const;
    int NewKey() const;
    int ShowKey() const;

    const std::function<std::string()>& m_readInput;
    std::ostream& m_out;
    std::ostream& m_err;
    Options m_options;
    std::function<int()> m_command;
};

CLI::App* Run::AddCommand(CLI::App& app, const std::string& name, const std::string& description,
                          std::function<int()> command) {
    CLI::App* const added = app.add_subcommand(name, description);
    added->callback([this, command = std::move(command)] { m_command = command; });
    return added;
}

void Run::AddFile(CLI::App& command) {
    command.add_option("FILE", m_options.file, "The strings file; - is standard input")
        ->type_name("")
        ->required();
}

void Run::AddOutput(CLI::App& command) {
    CLI::Option* const inPlace = command.add_flag(
        "--in-place", m_options.isInPlace,
        "Write the result to FILE, whole or not at all, instead of standard output");
    command
        .add_option("-o,--output", m_options.outputFile,
                    "Write the result to OUTPUT, whole or not at all; - is standard output")
        ->type_name("OUTPUT")
        ->check(NamesAFile)
        ->excludes(inPlace);
}

void Run::AddKeyFile(CLI::App& command) {
    command
        .add_option("--key-file", m_options.keyFile,
                    "File of 64 hexadecimal digits, - for standard input; without it, the key "
                    "built in")
        ->type_name("KEYFILE")
        ->check(NamesAFile);
}

// Whether at most one thing is to be read from standard input, which ends with the first.
bool Run::HasOneInput() const {
    const std::string* const names[] = {&m_options.file, &m_options.keyFile, &m_options.fromKeyFile,
                                        &m_options.toKeyFile};
    return std::count_if(std::begin(names), std::end(names),
                         [](const std::string* name) { return *name == "-"; }) <= 1;
}

FileSnapshot Run::ReadInput() const {
    return m_options.file == "-" ? FileSnapshot{m_readInput()} : ReadSnapshot(m_options.file);
}

Key Run::KeyOf(const std::string& keyFile) const {
    if (keyFile.empty()) {
        return Key::BuiltIn();
    }
    return keyFile == "-" ? Key::FromText(m_readInput(), keyFile) : Key::FromFile(keyFile);
}

int Run::Change(const std::function<Findings(StringsDocument&)>& change) const {
    if (m_options.isInPlace && m_options.file == "-") {
        m_err << "orva-strings: error: --in-place needs a file, not -\n";
        return kUsageOrSystem;
    }
    const FileSnapshot before = ReadInput();
    StringsDocument document(before.bytes);
    const Findings findings = change(document);
    for (const Finding& finding : findings) {
        m_err << Printable{m_options.file} << ':' << finding.line + 1
              << ": error: " << Printable{finding.text} << '\n';
    }
    if (!findings.empty()) {
        return kFindings;
    }
    const std::string result = document.Bytes();
    if (m_options.isInPlace) {
        if (result != before.bytes) {
            ReplaceFile(m_options.file, before, result);
        }
    } else if (m_options.outputFile.empty() || m_options.outputFile == "-") {
        m_out << result;
    } else {
        WriteFile(m_options.outputFile, result);
    }
    return kDone;
}

int Run::NewKey() const {
    const std::string text = Key::Random().FileText();
    if (m_options.keyFile == "-") {
        m_out << text;
    } else {
        CreatePrivateFile(m_options.keyFile, text);
    }
    return kDone;
}

int Run::ShowKey() const {
    const Key key = KeyOf(m_options.keyFile);
    m_out << "fingerprint: " << key.Fingerprint() << '\n'
          << "development key: " << (key.IsDevelopmentKey() ? "yes" : "no") << '\n';
    return kDone;
}

int Run::Execute(std::vector<std::string> arguments) {
    CLI::App app("Looks into strings files and keeps their protected entries.", "orva-strings");
    app.footer(kExamples);
    app.require_subcommand(1);
    app.set_version_flag("--version", ORVA_VERSION);

    CLI::App* command = AddCommand(
        app, "protect", "Store every readable entry whose key begins with IDE in protected form",
        [this] {
            return Change([this](StringsDocument& document) {
                const Key key = KeyOf(m_options.keyFile);
                if (m_options.keyFile.empty() && key.IsDevelopmentKey()) {
                    m_err << "orva-strings: note: protecting with the development key, which "
                             "everybody knows\n";
                }
                return Protect(document, key.Derive(), m_options.isForced);
            });
        });
    AddFile(*command);
    AddOutput(*command);
    AddKeyFile(*command);
    command->add_flag("--force", m_options.isForced,
                      "Take a value that looks stored but does not decode for a text");

    command = AddCommand(app, "reveal", "Write protected entries as readable text again", [this] {
        return Change([this](StringsDocument& document) {
            return Reveal(document, KeyOf(m_options.keyFile).Derive());
        });
    });
    AddFile(*command);
    AddOutput(*command);
    AddKeyFile(*command);

    command = AddCommand(app, "rekey", "Store protected entries with another key", [this] {
        return Change([this](StringsDocument& document) {
            return Rekey(document, KeyOf(m_options.fromKeyFile).Derive(),
                         KeyOf(m_options.toKeyFile).Derive());
        });
    });
    AddFile(*command);
    AddOutput(*command);
    command
        ->add_option("--from", m_options.fromKeyFile,
                     "Key file they are stored with; - is standard input")
        ->type_name("KEYFILE")
        ->check(NamesAFile)
        ->required();
    command
        ->add_option("--to", m_options.toKeyFile,
                     "Key file to store them with; - is standard input")
        ->type_name("KEYFILE")
        ->check(NamesAFile)
        ->required();

    command = AddCommand(app, "show", "Show what the library answers", [this] {
        return Show(ReadDocument(), m_options.language, m_options.keys, m_options.isRevealed,
                    m_options.file, m_out, m_err)
                   ? kDone
                   : kFindings;
    });
    AddFile(*command);
    command->add_option("KEY", m_options.keys, "Keys to look up; without them, the whole section")
        ->type_name("");
    command
        ->add_option("--language", m_options.language,
                     "The section's name; without it, or if there is none such, the first section")
        ->type_name("LANGUAGE");
    command->add_flag("--reveal", m_options.isRevealed, "Show protected texts too");

    command =
        AddCommand(app, "sections", "List the sections: line, entries, protected, name", [this] {
            ListSections(ReadDocument(), m_out);
            return kDone;
        });
    AddFile(*command);

    CLI::App* const key = app.add_subcommand("key", "Make keys and tell them apart");
    key->require_subcommand(1);
    command = AddCommand(*key, "new", "Make a key file that only its owner can read",
                         [this] { return NewKey(); });
    command->add_option("KEYFILE", m_options.keyFile, "The file to make; - is standard output")
        ->type_name("")
        ->check(NamesAFile)
        ->required();
    command = AddCommand(*key, "show", "Show a key's fingerprint, not the key",
                         [this] { return ShowKey(); });
    AddKeyFile(*command);

    try {
        MarkSpecial(arguments);
        std::reverse(arguments.begin(), arguments.end());  // as the parser takes a vector
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {  // help or version
            app.exit(error, m_out, m_err);
            return kDone;
        }
        std::string message = error.what();
        message.erase(std::remove(message.begin(), message.end(), '\n'), message.end());  // marks
        m_err << "orva-strings: error: " << Printable{message} << " (see --help)\n";
        return kUsageOrSystem;
    }
    for (std::string* text : {&m_options.file, &m_options.outputFile, &m_options.keyFile,
                              &m_options.fromKeyFile, &m_options.toKeyFile, &m_options.language}) {
        Unmark(*text);
    }
    std::for_each(m_options.keys.begin(), m_options.keys.end(), Unmark);
    if (!HasOneInput()) {
        m_err << "orva-strings: error: only one of FILE and the key files can be -, which is "
                 "standard input\n";
        return kUsageOrSystem;
    }
    return m_command();
}

}  // namespace

int RunTool(std::vector<std::string> arguments, const std::function<std::string()>& readInput,
            std::ostream& out, std::ostream& err) {
    try {
        const int status = Run(readInput, out, err).Execute(std::move(arguments));
        out.flush();
        if (!out) {
            err << "orva-strings: error: can't write the result\n";
            return kUsageOrSystem;
        }
        return status;
    } catch (const std::bad_alloc&) {
        err << "orva-strings: error: out of memory\n";
        return kUsageOrSystem;
    } catch (const std::exception& exception) {
        err << "orva-strings: error: " << Printable{exception.what()} << '\n';
        return kUsageOrSystem;
    }
}
