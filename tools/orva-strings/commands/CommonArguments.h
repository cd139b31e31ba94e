// Arguments that several commands share.
#ifndef ORVALANGUAGE_TOOLS_COMMANDS_COMMONARGUMENTS_H
#define ORVALANGUAGE_TOOLS_COMMANDS_COMMONARGUMENTS_H

#include <string>

#include "tools/orva-strings/cli/Arguments.h"

constexpr Argument kStringsFile = {"FILE", "", "The strings file; - is standard input",
                                   Role::kInput, true};

constexpr Argument kStringsFiles = {"FILE", "", "The strings files; - is standard input",
                                    Role::kInput, true};

constexpr Argument kStdinName = {
    "--stdin-name", "NAME", "The name of standard input in the output, instead of -", Role::kFile};

constexpr Argument kTextOrJson = {"--format",  "FORMAT", "The form of the output; text by default",
                                  Role::kText, false,    nullptr,
                                  "text|json"};

constexpr Argument kReference = {
    "--reference", "LANGUAGE",
    "The section that the others are compared with; the first by default"};

constexpr Argument kBase = {
    "--base", "OLD",
    "An earlier state of FILE, to find translations of texts that have changed since", Role::kFile};
constexpr char kBaseNeedsOneFile[] = "--base can be compared with only one FILE";

constexpr Argument kLanguageCode = {
    "--code", "SECTION=CODE",
    "The language of a section, such as Deutsch=de; may be given several times"};

constexpr Argument kScope = {
    "--scope", "NAME",
    "What holds the constants: a namespace in C++, by default keys, an enumeration in Swift, by "
    "default Keys; in C, what their names begin with, by default KEY"};

constexpr char kOutputHelp[] =
    "Write the result to OUTPUT, whole or not at all; - is standard output";

constexpr char kCheckFlag[] = "--check";
constexpr char kCheckHelp[] =
    "Change nothing; say what would change, and end with exit status 1 if anything would";

constexpr char kDiffFlag[] = "--diff";
constexpr char kDiffHelp[] =
    "Change nothing; show what would change, as a unified diff, and end with exit status 1 if "
    "anything would";
constexpr char kRevealFlag[] = "--reveal";
constexpr char kRevealHelp[] = "Include protected texts, readable";

constexpr Argument kKeyFile = {
    "--key-file", "KEYFILE",
    "File of 64 hexadecimal digits; - is standard input; without this option, the built-in key",
    Role::kKey};

// The name of a FILE in the output.
inline const std::string& NameOf(const std::string& file, const std::string& stdinName) {
    return file == "-" && !stdinName.empty() ? stdinName : file;
}

#endif
