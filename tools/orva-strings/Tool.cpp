#include "tools/orva-strings/Tool.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <filesystem>
#include <functional>
#include <iterator>
#include <new>
#include <numeric>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

#include "clearing/ClearedArray.h"
#include "tools/orva-strings/Commands.h"
#include "tools/orva-strings/cli/Finding.h"
#include "tools/orva-strings/protection/LibraryFingerprint.h"
#include "tools/orva-strings/protection/MasterKey.h"
#include "tools/orva-strings/system/Files.h"

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
    std::string library;
    std::string fromKeyFile;
    std::string toKeyFile;
    ShowRequest show;
    bool isInPlace = false;
    bool isForced = false;
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

// Says something about the command itself.
void Say(Severity severity, const std::string& text, std::ostream& err) {
    Print({severity, std::nullopt, text}, "orva-strings", err);
}

// How many letters must be inserted, removed or replaced to make one word of the other.
std::size_t Distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);  // from the part of a so far to each start of b
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

// What to say of a word that stands where a command of the group should, or nothing if all is well
// there: the word, and the command that was probably meant, which takes two changes at most and
// leaves a letter of the word.
std::string UnknownCommand(const CLI::App& group, const std::string& prefix) {
    const std::vector<std::string> unknown = group.remaining();
    if (unknown.empty() || unknown.front().compare(0, 1, "-") == 0) {  // an option
        return "";
    }
    std::string word = unknown.front();
    Unmark(word);
    std::size_t least = std::min<std::size_t>(3, word.size());
    std::string meant;
    for (const CLI::App* const command : group.get_subcommands({})) {
        const std::size_t distance = Distance(command->get_name(), word);
        if (distance < least) {
            least = distance;
            meant = "; did you mean '" + prefix + command->get_name() + "'?";
        }
    }
    return "unknown command '" + prefix + word + '\'' + meant;
}

// An option without a value: --in-place=no is an error, and not the opposite of --in-place.
CLI::Option* AddFlag(CLI::App& command, const std::string& name, bool& isSet,
                     const std::string& description) {
    return command.add_flag(name, isSet, description)->disable_flag_override();
}

// What to say of the first option that its command does not have, or nothing if there is no such option.
// What follows -- is not an option.
std::string UnknownOption(const CLI::App& app, const std::vector<std::string>& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    for (std::string& word : app.remaining(true)) {
        if (word.size() > 1 && word.front() == '-' &&
            std::find(arguments.begin(), end, word) != end) {
            std::string value = word.substr(ValueBegin(word));
            Unmark(value);
            word.replace(ValueBegin(word), std::string::npos, value);
            const bool isLong = word.compare(0, 2, "--") == 0;
            return "unknown option '" + (isLong ? word.substr(0, word.find('=')) : word) + '\'';
        }
    }
    return "";
}

// What to say of the first option that has a value and takes none, or nothing if there is no such option.
std::string NeedlessValue(const std::vector<std::string>& arguments) {
    for (const std::string& word : arguments) {
        for (const char* const flag : {"--in-place", "--force", "--fallback", "--reveal"}) {
            if (word.substr(0, word.find('=')) == flag && word != flag) {
                return std::string(flag) + " takes no value";
            }
        }
    }
    return "";
}

// What to say where no command of the group is named, or nothing if one is.
std::string NoCommand(const CLI::App& group, const std::string& what) {
    return group.get_subcommands().empty() ? what : "";
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
    CLI::Option* AddKeyFile(CLI::App& command);

    bool HasOneInput() const;
    bool OverwritesAKey() const;
    FileSnapshot ReadInput() const;
    MasterKey KeyOf(const std::string& keyFile) const;
    StringsDocument ReadDocument() const { return StringsDocument(ReadInput().bytes); }
    int Report(Findings findings) const;
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
        ->check(NamesAFile)
        ->required();
}

void Run::AddOutput(CLI::App& command) {
    CLI::Option* const inPlace =
        AddFlag(command, "--in-place", m_options.isInPlace,
                "Write the result to FILE, whole or not at all, instead of standard output");
    command
        .add_option("-o,--output", m_options.outputFile,
                    "Write the result to OUTPUT, whole or not at all; - is standard output")
        ->type_name("OUTPUT")
        ->check(NamesAFile)
        ->excludes(inPlace);
}

CLI::Option* Run::AddKeyFile(CLI::App& command) {
    return command
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

// Whether the result would replace a key that it is made with.
bool Run::OverwritesAKey() const {
    const std::string* const keys[] = {&m_options.keyFile, &m_options.fromKeyFile,
                                       &m_options.toKeyFile};
    return std::any_of(std::begin(keys), std::end(keys), [&](const std::string* key) {
        std::error_code isMissing;
        return std::filesystem::equivalent(m_options.outputFile, *key, isMissing);
    });
}

FileSnapshot Run::ReadInput() const {
    return m_options.file == "-" ? FileSnapshot{m_readInput()} : ReadSnapshot(m_options.file);
}

MasterKey Run::KeyOf(const std::string& keyFile) const {
    if (keyFile.empty()) {
        return MasterKey::BuiltIn();
    }
    return keyFile == "-" ? MasterKey::FromText(m_readInput(), keyFile)
                          : MasterKey::FromFile(keyFile);
}

// Prints what was found in the file, in the order of its lines, what concerns all of it first.
int Run::Report(Findings findings) const {
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.line < b.line; });
    for (const Finding& finding : findings) {
        Print(finding, m_options.file, m_err);
    }
    return HasError(findings) ? kFindings : kDone;
}

int Run::Change(const std::function<Findings(StringsDocument&)>& change) const {
    if (m_options.isInPlace && m_options.file == "-") {
        Say(Severity::kError, "--in-place needs a file, not -", m_err);
        return kUsageOrSystem;
    }
    const FileSnapshot before = ReadInput();
    StringsDocument document(before.bytes);
    const int status = Report(change(document));
    if (status != kDone) {
        return status;
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
    const ClearedArray array(MasterKey::kFileText);
    auto* const chars = reinterpret_cast<char*>(array.Get());
    MasterKey::Random().WriteFileText(chars);
    const std::string_view text(chars, array.Size());
    if (m_options.keyFile == "-") {
        m_out << text;
    } else {
        CreatePrivateFile(m_options.keyFile, text);
    }
    return kDone;
}

int Run::ShowKey() const {
    std::set<std::string> fingerprints;
    if (m_options.library.empty()) {
        fingerprints.insert(KeyOf(m_options.keyFile).Fingerprint());
    } else {
        fingerprints = FingerprintsIn(m_options.library);
    }
    if (fingerprints.size() != 1) {
        const char* const why = fingerprints.empty()
                                    ? "it holds no key fingerprint, so it is not libOrvaLanguage"
                                    : "it holds fingerprints of different keys";
        Print({Severity::kError, std::nullopt, why}, m_options.library, m_err);
        return kFindings;
    }
    const std::string& fingerprint = *fingerprints.begin();
    m_out << "fingerprint: " << fingerprint << '\n'
          << "development key: " << (MasterKey::IsOfDevelopmentKey(fingerprint) ? "yes" : "no")
          << '\n';
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
                const MasterKey key = KeyOf(m_options.keyFile);
                if (m_options.keyFile.empty() && MasterKey::IsOfDevelopmentKey(key.Fingerprint())) {
                    Say(Severity::kNote,
                        "protecting with the development key, which everybody knows", m_err);
                }
                return Protect(document, key.Derive(), m_options.isForced);
            });
        });
    AddFile(*command);
    AddOutput(*command);
    AddKeyFile(*command);
    AddFlag(*command, "--force", m_options.isForced,
            "Treat a value that looks stored but does not decode as readable text");

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

    command = AddCommand(app, "show", "Show what the library answers",
                         [this] { return Report(Show(ReadDocument(), m_options.show, m_out)); });
    AddFile(*command);
    command
        ->add_option("KEY", m_options.show.keys, "Keys to look up; without them, the whole section")
        ->type_name("");
    command
        ->add_option("--language", m_options.show.language,
                     "The section's name; without it, the first section")
        ->type_name("LANGUAGE");
    AddFlag(*command, "--fallback", m_options.show.hasFallback,
            "Show the first section, as the library does, if there is none of that name");
    AddFlag(*command, "--reveal", m_options.show.isRevealed, "Show protected texts too");

    command = AddCommand(app, "sections", "List the sections: line, entries, protected, name",
                         [this] { return Report(ListSections(ReadDocument(), m_out)); });
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
    CLI::Option* const keyFile = AddKeyFile(*command);
    command
        ->add_option("--library", m_options.library,
                     "Show the key of this built library; the file is read, never run")
        ->type_name("LIBRARY")
        ->check(NamesAFile)
        ->excludes(keyFile);  // by its name, the parser would end where memory runs out

    try {
        MarkSpecial(arguments);
        // Reversed, as the parser takes a vector.
        app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {  // help or version
            app.exit(error, m_out, m_err);
            return kDone;
        }
        std::string message = UnknownCommand(app, "");
        if (message.empty()) {
            message = UnknownCommand(*key, "key ");
        }
        if (message.empty()) {
            message = UnknownOption(app, arguments);
        }
        if (message.empty()) {
            message = NoCommand(app, "a command is required");
        }
        if (message.empty() && app.got_subcommand(key)) {
            message = NoCommand(*key, "a command is required after key");
        }
        if (message.empty() && error.get_name() == "ArgumentMismatch") {
            message = NeedlessValue(arguments);
        }
        if (message.empty()) {
            message = error.what();
            message.erase(std::remove(message.begin(), message.end(), '\n'),
                          message.end());  // marks
        }
        Say(Severity::kError, message + " (see --help)", m_err);
        return kUsageOrSystem;
    }
    for (std::string* text :
         {&m_options.file, &m_options.outputFile, &m_options.keyFile, &m_options.fromKeyFile,
          &m_options.toKeyFile, &m_options.library, &m_options.show.language}) {
        Unmark(*text);
    }
    std::for_each(m_options.show.keys.begin(), m_options.show.keys.end(), Unmark);
    if (!HasOneInput()) {
        Say(Severity::kError,
            "only one of FILE and the key files can be -, which is standard input", m_err);
        return kUsageOrSystem;
    }
    if (OverwritesAKey()) {
        Say(Severity::kError, m_options.outputFile + ": this is the key file, and would be lost",
            m_err);
        return kUsageOrSystem;
    }
    return m_command();
}

}  // namespace

int RunTool(std::vector<std::string> arguments, const std::function<std::string()>& readInput,
            std::ostream& out, std::ostream& err) {
    try {
        try {
            const int status = Run(readInput, out, err).Execute(std::move(arguments));
            out.flush();
            if (!out) {
                throw std::runtime_error("can't write the result");
            }
            return status;
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& exception) {
            Say(Severity::kError, exception.what(), err);
            return kUsageOrSystem;
        }
    } catch (const std::bad_alloc&) {
        err << "orva-strings: error: out of memory\n";  // whole, and without memory
        return kUsageOrSystem;
    }
}
