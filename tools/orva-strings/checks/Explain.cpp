#include "tools/orva-strings/checks/Explain.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utf8cpp/utf8.h>

#include "tools/orva-strings/Hex.h"
#include "tools/orva-strings/document/LineText.h"

namespace {

const char* NameOf(const std::optional<Severity>& severity) {
    if (!severity) {
        return "off";
    }
    return *severity == Severity::kError ? "error" : "warning";
}

// A text with the bytes that can't be seen as \x and two digits.
std::string Visible(std::string_view text) {
    const std::size_t marks = text.size() - WithoutByteOrderMarks(text).size();
    const auto nextInvalid = [&](std::size_t from) {
        return from + std::min(utf8::find_invalid(text.substr(from)), text.size() - from);
    };
    std::size_t invalid = nextInvalid(0);
    std::string visible;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isControl = static_cast<unsigned char>(text[i]) < ' ' && text[i] != '\n';
        if (isControl || i == invalid || i < marks) {
            const auto byte = static_cast<std::uint8_t>(text[i]);
            visible += "\\x" + ToHexDigits(&byte, 1);
        } else {
            visible += text[i];
        }
        if (i == invalid) {
            invalid = nextInvalid(i + 1);
        }
    }
    return visible;
}

// Writes a file as a block of Markdown.
void WriteFile(std::string_view bytes, std::ostream& out) {
    out << '\n';
    for (std::string text = Visible(bytes); !text.empty();) {
        const std::size_t length = std::min(text.find('\n'), text.size());
        out << "    " << text.substr(0, length) << '\n';
        text.erase(0, length + 1);
    }
    out << '\n';
}

}  // namespace

void WriteRule(Rule rule, std::ostream& out) {
    const RuleText& text = TextOf(rule);
    std::string summary = text.summary;
    summary.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(summary.front())));
    out << "## " << text.name << "\n\n"
        << summary << ": " << NameOf(text.severity) << ". " << text.explanation << '\n';
    const RuleExample& example = text.example;
    if (!example.earlier.empty()) {
        out << "\nIf the earlier file was\n";
        WriteFile(example.earlier, out);
        out << "there is a finding in\n";
    } else if (*example.options != '\0') {
        out << "\nWith `" << example.options << "`, there is a finding in\n";
    } else {
        out << "\nThere is a finding in\n";
    }
    WriteFile(example.wrong, out);
    out << "and none in\n";
    WriteFile(example.right, out);
}

void WriteAllRules(std::ostream& out) {
    out << "| rule | severity | finds |\n|---|---|---|\n";
    for (std::size_t i = 0; i < kRuleCount; ++i) {
        const RuleText& text = TextOf(static_cast<Rule>(i));
        out << "| [" << text.name << "](#" << text.name << ") | " << NameOf(text.severity) << " | "
            << text.summary << " |\n";
    }
    for (std::size_t i = 0; i < kRuleCount; ++i) {
        out << '\n';
        WriteRule(static_cast<Rule>(i), out);
    }
}
