#include "tools/orva-strings/cli/Arguments.h"

#include <algorithm>

#include "tools/orva-strings/cli/UsageError.h"
#include "tools/orva-strings/system/Files.h"

namespace {

// Whether CLI11 would give an argument a special meaning, apart from line feeds at its end.
bool IsSpecial(std::string_view argument) {
    const std::string_view text = argument.substr(0, argument.find_last_not_of('\n') + 1);
    return text.empty() || text == "++" || (text.front() == '[' && text.back() == ']');
}

}  // namespace

std::size_t ValueBegin(std::string_view argument) {
    if (argument.substr(0, 2) == "--") {
        return argument.find('=') + 1;
    }
    return argument.size() > 2 && argument.front() == '-' ? 2 : 0;
}

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

// Whether at most one input or key names standard input, which can be read only once.
bool Arguments::HasOneInput() const {
    std::ptrdiff_t count = 0;
    for (const auto& [role, text] : m_values) {
        count += (role == Role::kInput || role == Role::kKey) && *text == "-" ? 1 : 0;
    }
    for (const auto& [role, list] : m_lists) {
        count += role == Role::kInput ? std::count(list->begin(), list->end(), "-") : 0;
    }
    return count <= 1;
}

// The output if it would replace a key file that is used; otherwise null.
const std::string* Arguments::OutputOverAKey() const {
    for (const auto& [outputRole, output] : m_values) {
        for (const auto& [keyRole, key] : m_values) {
            if (outputRole == Role::kOutput && keyRole == Role::kKey &&
                AreSameFile(*output, *key)) {
                return output;
            }
        }
    }
    return nullptr;
}

void Arguments::Finish() const {
    for (const auto& [role, text] : m_values) {
        Unmark(*text);
    }
    for (const auto& [role, list] : m_lists) {
        std::for_each(list->begin(), list->end(), Unmark);
    }
    if (!HasOneInput()) {
        throw UsageError("- is standard input, which can be read only once");
    }
    if (const std::string* const output = OutputOverAKey()) {
        throw UsageError(*output + ": the output would overwrite this key file");
    }
}
