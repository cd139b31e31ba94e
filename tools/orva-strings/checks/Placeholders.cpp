#include "tools/orva-strings/checks/Placeholders.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "tools/orva-strings/Ascii.h"

namespace {

bool IsIn(char c, std::string_view set) {
    return set.find(c) != std::string_view::npos;
}

constexpr std::string_view kConversions = "diouxXeEfFgGaAcCsSpn@";

// A conversion's letter, or that of another one that differs only in how it looks.
char Kind(char conversion) {
    if (conversion == 'i') {
        return 'd';
    }
    return IsIn(conversion, "XEFGA") ? static_cast<char>(conversion - 'A' + 'a') : conversion;
}

// Whether what follows a name in braces is how to format it: {a:x}, {a!r}, {a,-5} or {a, plural, …}.
bool IsFormat(std::string_view rest) {
    if (rest.front() != ',') {
        return IsIn(rest.front(), ":!");
    }
    constexpr std::string_view kTypes[] = {"number",  "date",   "time",     "spellout",
                                           "ordinal", "choice", "duration", "selectordinal",
                                           "plural",  "select"};
    rest.remove_prefix(1);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    return (!rest.empty() && IsIn(rest.front(), "-0123456789")) ||
           std::any_of(std::begin(kTypes), std::end(kTypes),
                       [&](std::string_view type) { return rest.substr(0, type.size()) == type; });
}

bool IsBefore(const Placeholder& a, const Placeholder& b) {
    return a.meaning < b.meaning;
}

// Goes through one text.
class Scanner {
public:
    explicit Scanner(std::string_view text) : m_text(text) {}

    Placeholders Scan();

private:
    char At(std::size_t i) const { return i < m_text.size() ? m_text[i] : '\0'; }

    std::size_t Skip(std::size_t i, bool (*isSkipped)(char)) const {
        while (i < m_text.size() && isSkipped(m_text[i])) {
            ++i;
        }
        return i;
    }

    // Each returns where the text goes on after what begins at this place.
    std::size_t Percent(std::size_t i);
    std::size_t Named(std::size_t i);
    std::size_t Conversion(std::size_t percent);
    std::size_t Numbered(std::size_t percent);
    std::size_t Brace(std::size_t open);

    bool IsOfOtherSyntax(std::size_t open, std::string_view name) const;

    // A field's width or precision from i on: digits, or a star, which takes an argument.
    std::size_t Size(std::size_t i);

    void Add(std::string meaning, std::size_t begin, std::size_t end) {
        m_found.list.push_back(
            {std::move(meaning), std::string(m_text.substr(begin, end - begin))});
    }

    std::string NextArgument() { return '%' + std::to_string(++m_arguments) + '$'; }

    std::string_view m_text;
    std::size_t m_lastClose = m_text.find_last_of('}') + 1;  // after it; 0 if there is no brace
    std::size_t m_arguments = 0;                             // of printf, without a position
    std::size_t m_braces = 0;                                // without a name
    Placeholders m_found;
};

Placeholders Scanner::Scan() {
    for (std::size_t i = 0; (i = m_text.find_first_of("%{", i)) != std::string_view::npos;) {
        i = m_text[i] == '%' ? Percent(i) : Brace(i);
    }
    auto& list = m_found.list;
    std::sort(list.begin(), list.end(), IsBefore);
    list.erase(std::unique(list.begin(), list.end(),
                           [](const auto& a, const auto& b) { return a.meaning == b.meaning; }),
               list.end());
    return std::move(m_found);
}

std::size_t Scanner::Percent(std::size_t i) {
    switch (At(i + 1)) {
        case '%':
            return i + 2;
        case '(':
            return Named(i);
        case '@':
            Add(NextArgument() + '@', i, i + 2);
            return i + 2;
        default:
            return Conversion(i);
    }
}

// %(name)s
std::size_t Scanner::Named(std::size_t i) {
    const std::size_t close = Skip(i + 2, [](char c) { return !IsIn(c, "()%"); });
    if (At(close) != ')') {
        return i + 2;
    }
    const std::size_t letter =
        Skip(close + 1, [](char c) { return IsDigit(c) || IsIn(c, "-+#.hlL"); });
    if (!IsLetter(At(letter))) {
        return i + 2;
    }
    Add(std::string(m_text.substr(i, close + 1 - i)) + At(letter), i, letter + 1);
    return letter + 1;
}

std::size_t Scanner::Size(std::size_t i) {
    if (At(i) == '*') {
        Add(NextArgument() + 'd', i, i + 1);
        return i + 1;
    }
    return Skip(i, IsDigit);
}

// A conversion of printf. Anything else is left to Numbered.
std::size_t Scanner::Conversion(std::size_t percent) {
    const std::size_t found = m_found.list.size();
    const std::size_t arguments = m_arguments;
    std::size_t i = Skip(percent + 1, IsDigit);
    const bool hasPosition = i > percent + 1 && At(i) == '$';
    const std::size_t begin = hasPosition ? i + 1 : percent + 1;
    const std::size_t flags = Skip(begin, [](char c) { return IsIn(c, "-+#0'"); });
    i = Size(flags);
    const bool hasSize = i > flags;
    if (At(i) == '.') {
        i = Size(i + 1);
    }
    const std::size_t length = i;
    i = Skip(i, [](char c) { return IsIn(c, "hlqLjzt"); });
    const char letter = At(i);
    // "%1days" begins with %1; "100%ig" and "%-encoding" have a percent sign.
    const bool isNumber = !hasPosition && flags == begin && i == flags + 1 && IsDigit(At(flags));
    const bool isAfterNumber = percent > 0 && IsDigit(At(percent - 1));
    const bool isSign = flags > begin && At(begin) == '-' && !hasSize;
    const bool hasRareLength = i > length && IsIn(At(length), "tjzq");  // "%time"
    const bool isPartOfWord =
        IsLetter(At(i + 1)) && (isNumber || isAfterNumber || isSign || hasRareLength);
    if (letter == '\0' || !IsIn(letter, kConversions) || isPartOfWord) {
        m_found.list.resize(found);  // without the arguments of its stars
        m_arguments = arguments;
        return Numbered(percent);
    }
    const std::string kind = std::string(m_text.substr(length, i - length)) + Kind(letter);
    Add((hasPosition ? std::string(m_text.substr(percent, begin - percent)) : NextArgument()) +
            kind,
        percent, i + 1);
    return i + 1;
}

// %1 or %L1. Anything else is not a placeholder, but may be one of strftime.
std::size_t Scanner::Numbered(std::size_t percent) {
    const std::size_t begin = percent + (At(percent + 1) == 'L' ? 2 : 1);
    const std::size_t end = std::min(Skip(begin, IsDigit), begin + 2);
    if (end > begin) {
        Add('%' + std::string(m_text.substr(begin, end - begin)), percent, end);
        return end;
    }
    const std::size_t letter = Skip(percent + 1, [](char c) { return IsIn(c, "-_O"); });
    m_found.isTime =
        m_found.isTime || (At(letter) != '\0' && IsIn(At(letter), "YmHMBbyIjklTDRPZVUWw"));
    return percent + 1;
}

// Whether a name in braces is not a host's: ${NAME} is a shell's variable, and \x{NAME} an escape.
bool Scanner::IsOfOtherSyntax(std::size_t open, std::string_view name) const {
    const bool isVariable =
        open >= 1 && At(open - 1) == '$' &&
        std::none_of(name.begin(), name.end(), [](char c) { return c >= 'a' && c <= 'z'; });
    return isVariable || (open >= 2 && At(open - 2) == '\\' && IsLetter(At(open - 1)));
}

std::size_t Scanner::Brace(std::size_t open) {
    const std::size_t end =
        Skip(open + 1, [](char c) { return IsLetter(c) || IsDigit(c) || IsIn(c, "_."); });
    const std::string name(m_text.substr(open + 1, end - open - 1));
    const bool hasFormat = !name.empty() && end < m_lastClose && IsFormat(m_text.substr(end));
    const bool isDots = !name.empty() && name.find_first_not_of('.') == std::string::npos;
    if ((At(end) != '}' && !hasFormat) || isDots || IsOfOtherSyntax(open, name)) {
        return open + 1;
    }
    Placeholder found = {'{' + (name.empty() ? ' ' + std::to_string(++m_braces) : name),
                         '{' + name + '}'};
    m_found.list.push_back(std::move(found));
    // The alternatives after a comma have braces of their own.
    std::size_t depth = 1;
    std::size_t i = end;
    for (; i < m_text.size() && depth > 0; ++i) {
        if (m_text[i] == '{') {
            ++depth;
        } else if (m_text[i] == '}') {
            --depth;
        }
    }
    return i;
}

}  // namespace

Placeholders FindPlaceholders(std::string_view text) {
    const auto has = [&](char c) { return text.find(c) != std::string_view::npos; };
    return has('%') || has('{') ? Scanner(text).Scan() : Placeholders();  // most have neither
}

namespace {

// Which argument a placeholder of printf takes, unless it is the first or is written.
std::string ArgumentOf(const Placeholder& placeholder) {
    const std::size_t dollar = placeholder.meaning.find('$');
    if (dollar == std::string::npos || placeholder.written.find('$') != std::string::npos ||
        placeholder.meaning.substr(0, dollar) == "%1") {
        return "";
    }
    return " (argument " + placeholder.meaning.substr(1, dollar - 1) + ')';
}

}  // namespace

std::string Missing(const Placeholders& a, const Placeholders& b) {
    std::string missing;
    for (const Placeholder& placeholder : a.list) {
        const bool isInB = std::binary_search(b.list.begin(), b.list.end(), placeholder, IsBefore);
        if (!isInB) {
            missing += missing.empty() ? "" : " ";
            missing += placeholder.written + ArgumentOf(placeholder);
        }
    }
    return missing;
}
