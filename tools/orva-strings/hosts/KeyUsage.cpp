#include "tools/orva-strings/hosts/KeyUsage.h"

#include <algorithm>
#include <deque>
#include <fnmatch.h>
#include <initializer_list>
#include <numeric>
#include <optional>
#include <utility>

#include "tools/orva-strings/Ascii.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/hosts/Constants.h"

namespace {

constexpr const char* kCalls[] = {
    "ZuGetLocalizedString", "KorGetLocalizedString", "TextOr", "CopyText",
    "OrvaTextOr",           "OrvaCopyText"};

// After this many comparisons, no near keys are named, since it would take too long to find them.
constexpr std::size_t kMaxCompared = 200'000;

constexpr std::size_t kMaxNamed = 10;

// The part of a format in front of the first argument.
std::string_view BeforeArgument(std::string_view text) {
    return text.substr(0, text.find_first_of("%{"));
}

// Without the keys that must not be named, of which keys and check say what is wrong.
std::vector<HostKey> WithoutSecrets(std::vector<HostKey> keys) {
    keys.erase(std::remove_if(keys.begin(), keys.end(),
                              [](const HostKey& key) { return key.holdsSecret; }),
               keys.end());
    return keys;
}

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

// A function's name with :: in front of each part but the first.
std::string WithColons(std::string name) {
    for (std::size_t at = 0; (at = name.find('.', at)) != std::string::npos;) {
        name.replace(at, 1, "::");
    }
    return name;
}

// Whether a text ends as the first part of a name does.
bool EndsAsPart(std::string_view text) {
    return !text.empty() && std::string_view("_.-:/").find(text.back()) != std::string_view::npos;
}

}  // namespace

bool IsCallName(std::string_view name) {
    const auto isInWord = [](char c) {
        return IsLetterOrDigit(c) || c == '_' || (c & '\x80') != 0;
    };
    const std::string whole = WithColons(std::string(name));
    for (std::string_view rest = whole;;) {
        const std::size_t end = rest.find("::");
        const std::string_view word = rest.substr(0, end);
        if (word.empty() || IsDigit(word[0]) || !std::all_of(word.begin(), word.end(), isInWord)) {
            return false;
        }
        if (end == std::string_view::npos) {
            return true;
        }
        rest.remove_prefix(end + 2);
    }
}

// Reads one source, token by token.
class KeyUsage::Scan {
public:
    Scan(KeyUsage& usage, std::string_view bytes, SourceLanguage language)
        : m_usage(usage), m_reader(bytes, language), m_places(bytes) {}

    void Run() {
        SourceToken last;
        while (Ahead(0).kind != SourceToken::Kind::kEnd) {
            SourceToken token = std::move(m_ahead.front());
            m_ahead.pop_front();
            switch (token.kind) {
                case SourceToken::Kind::kWord:
                    TakeWord(last, token.text);
                    break;
                case SourceToken::Kind::kLiteral:
                    TakeLiteral(last, token);
                    break;
                default:
                    TakeSign(last, token.text[0]);
            }
            last = std::move(token);
        }
    }

private:
    // What a literal is at the beginning of a parenthesis, bracket or brace.
    enum class Context {
        kOther,
        kKey,        // the first argument of a call, or a part of it
        kConverted,  // that argument, made an object of another type
        kReceiver,   // that argument, if it is only sent UTF8String
    };

    struct Pending {
        std::string text;
        Place place;
    };

    static bool IsSign(const SourceToken& token, std::string_view signs) {
        return token.kind == SourceToken::Kind::kSign &&
               signs.find(token.text[0]) != std::string_view::npos;
    }

    static bool IsWord(const SourceToken& token, std::initializer_list<std::string_view> words) {
        return token.kind == SourceToken::Kind::kWord &&
               std::find(words.begin(), words.end(), token.text) != words.end();
    }

    // A token after the current one.
    const SourceToken& Ahead(std::size_t i) {
        while (m_ahead.size() <= i) {
            m_ahead.push_back(m_reader.Next());
        }
        return m_ahead[i];
    }

    Context InnerContext() const { return m_inside.empty() ? Context::kOther : m_inside.back(); }

    // Whether an argument that is a key may begin after this token.
    bool IsKeyBegin(const SourceToken& last) const {
        return InnerContext() == Context::kKey && IsSign(last, "(?:");
    }

    void TakeWord(const SourceToken& last, const std::string& word) {
        const bool isQualified = !m_name.empty() && (m_signs == "::" || m_signs == ".");
        if (!isQualified) {
            m_beginsKey = IsKeyBegin(last);
            m_isUsing = IsWord(last, {"namespace"});
        }
        if (m_name.size() > kMaxName) {
            m_name.clear();
        }
        m_name = isQualified ? m_name + "::" + word : word;
        m_usage.MentionConstant(word, EndsWith(m_signs, "::") || EndsWith(m_signs, "."));
        m_signs.clear();
        m_pending.reset();
        if (m_isUsing) {
            m_usage.UseNamespace(word);
        }
    }

    // How many of the tokens ahead only end a conversion of the literal: one of those in m_inside, and
    // a call such as .c_str().
    std::size_t SizeOfConversion() {
        std::size_t size = 0;
        if (InnerContext() == Context::kConverted) {
            if (!IsSign(Ahead(0), ")}")) {
                return 0;
            }
            size = 1;
        } else if (InnerContext() == Context::kReceiver) {
            if (!IsWord(Ahead(0), {"UTF8String"})) {
                return 0;
            }
            size = 2;
        }
        if (IsSign(Ahead(size), ".") && IsWord(Ahead(size + 1), {"c_str", "data", "UTF8String"})) {
            size += 2;
            size += IsSign(Ahead(size), "(") && IsSign(Ahead(size + 1), ")") ? 2U : 0U;
        }
        return size;
    }

    void TakeLiteral(const SourceToken& last, const SourceToken& token) {
        const Place place = m_places.PlaceOf(token.begin);
        const std::string_view text = std::string_view(token.text).substr(0, token.text.find('\0'));
        const std::size_t conversion = token.isOpen ? 0 : SizeOfConversion();
        const bool isKeyPlace = (InnerContext() == Context::kKey && IsSign(last, "(?:)")) ||
                                (conversion > 0 && (InnerContext() == Context::kConverted ||
                                                    InnerContext() == Context::kReceiver));
        m_pending.reset();
        if (token.isOpen) {
            m_inside.push_back(Context::kOther);  // until a parenthesis ends the expression
        }
        const bool isKey = !token.isOpen && m_usage.Mention(text);
        if (IsSign(last, "+")) {
            return;  // not the beginning of what is put together
        }
        const SourceToken& next = Ahead(conversion);
        const bool isJoined =
            token.isOpen || next.kind == SourceToken::Kind::kWord || IsSign(next, "+#<");
        const std::string_view beginning = token.isOpen || isKey ? text : BeforeArgument(text);
        // Elsewhere, one or two letters are more often a format's than the beginning of a key.
        const bool isLong = isKeyPlace || beginning.size() > 2 || EndsAsPart(beginning);
        if (isLong &&
            (isJoined || beginning.size() < text.size() || (!isKey && EndsAsPart(text)))) {
            m_usage.AddBuilt(beginning, place);
        }
        m_pending = Pending{std::string(isLong ? beginning : ""), place};
        if (isKeyPlace && isJoined) {
            m_usage.AddUnknownBeginning(beginning, place);
        } else if (isKeyPlace && !isKey && IsSign(next, "),:")) {
            m_usage.AddUnknown(text, place);
        }
    }

    void TakeSign(const SourceToken& last, char sign) {
        if (sign == '+' && m_pending) {  // after "X") or "X"}
            m_usage.AddBuilt(m_pending->text, m_pending->place);
        }
        if (sign != ')' && sign != '}') {
            m_pending.reset();
        }
        switch (sign) {
            case '(':
                m_inside.push_back(ContextInParenthesis(last));
                m_isCast = false;
                break;
            case '[':
                m_inside.push_back(IsKeyBegin(last) ? Context::kReceiver : Context::kOther);
                break;
            case '{':
                m_inside.push_back(IsConversion(last) ? Context::kConverted : Context::kOther);
                break;
            case ')':
            case ']':
            case '}':
                if (!m_inside.empty()) {
                    m_inside.pop_back();
                }
                break;
            case ',':
                if (!m_inside.empty()) {
                    m_inside.back() = Context::kOther;  // only the first argument is a key
                }
                break;
            case '<':
                m_isCast =
                    m_beginsKey && IsWord(last, {"static_cast", "const_cast", "reinterpret_cast"});
                break;
            default:
                break;
        }
        m_signs += sign;
    }

    // Whether the word before an opening bracket is a type that only holds the key.
    bool IsConversion(const SourceToken& last) const {
        return m_beginsKey && IsWord(last, {"string", "string_view", "String"});
    }

    Context ContextInParenthesis(const SourceToken& last) const {
        if (last.kind == SourceToken::Kind::kWord) {
            return m_usage.IsCall(m_name)
                       ? Context::kKey
                       : (IsConversion(last) ? Context::kConverted : Context::kOther);
        }
        const bool isCast = m_isCast && IsSign(last, ">");
        const bool isPart = InnerContext() == Context::kKey && !IsSign(last, ")]>");
        return isCast || isPart ? Context::kKey : Context::kOther;
    }

    static constexpr std::size_t kMaxName = 256;  // in bytes, not to copy long ones for each part

    KeyUsage& m_usage;
    SourceReader m_reader;
    SourcePlaces m_places;
    std::deque<SourceToken> m_ahead;  // what has been read but not taken
    std::vector<Context> m_inside;    // for each open parenthesis, bracket and brace
    std::string m_name;               // the last word, with the names that qualify it
    std::string m_signs;              // what has come since then
    bool m_beginsKey = false;         // that name, with what follows it, may be a key
    bool m_isUsing = false;           // it is the name of a namespace
    bool m_isCast = false;            // the last template is a cast, and what it casts may be a key
    std::optional<Pending> m_pending;  // a literal, and what may still show how it is used
};

KeyUsage::KeyUsage(std::vector<HostKey> keys, const UsageOptions& options)
    : m_options(options),
      m_keys(WithoutSecrets(std::move(keys))),
      m_areMentioned(m_keys.size()),
      m_sorted(m_keys.size()),
      m_calls(std::begin(kCalls), std::end(kCalls)) {
    for (const std::string& call : options.calls) {
        m_calls.insert(WithColons(call));
    }
    const std::string scope =
        (options.scope.empty() ? DefaultScope(HostLanguage::kC) : options.scope) + '_';
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        m_indexes.emplace(m_keys[i].key, i);
        const std::string name = NameInScope(m_keys[i].key);
        m_macros.emplace(scope + name, i);
        m_names.emplace(name, i);
    }
    m_areMentioned.at(0) = true;  // the header's key
    std::iota(m_sorted.begin(), m_sorted.end(), std::size_t{0});
    std::sort(m_sorted.begin(), m_sorted.end(),
              [&](std::size_t a, std::size_t b) { return m_keys[a].key < m_keys[b].key; });
}

void KeyUsage::Read(const std::string& file, std::string_view bytes, SourceLanguage language) {
    m_report.push_back({file, {}});
    if (!IsConstantsFile(bytes)) {  // which mentions all
        Scan(*this, bytes, language).Run();
    }
}

Report KeyUsage::Finish(const std::string& stringsFile) {
    if (m_usesNamespace) {
        for (const std::string& word : m_bareNames) {
            MentionAll(word, m_names);
        }
    }
    for (const Built& built : m_built) {
        ReportBuilt(built);
    }
    for (FileReport& file : m_report) {
        std::stable_sort(file.findings.begin(), file.findings.end(),
                         [](const RuleFinding& a, const RuleFinding& b) {
                             return std::pair(a.place->line, a.place->column) <
                                    std::pair(b.place->line, b.place->column);
                         });
    }
    RuleFindings unused;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        const std::string key(m_keys[i].key);
        const auto keeps = [&](const std::string& pattern) {
            return fnmatch(pattern.c_str(), key.c_str(), 0) == 0;
        };
        if (!m_areMentioned[i] &&
            std::none_of(m_options.kept.begin(), m_options.kept.end(), keeps)) {
            unused.push_back({Rule::kUnusedKey, Severity::kWarning, Place{m_keys[i].line.number, 0},
                              "", key, key + ": no source mentions this key"});
        }
    }
    m_report.push_back({stringsFile, std::move(unused)});
    return std::move(m_report);
}

// Returns whether it is a key.
bool KeyUsage::Mention(std::string_view key) {
    const auto found = m_indexes.find(key);
    if (found == m_indexes.end()) {
        return false;
    }
    m_areMentioned[found->second] = true;
    return true;
}

// A bare name may be that of a variable, unless a source uses the namespace of the constants.
void KeyUsage::MentionConstant(const std::string& word, bool isQualified) {
    MentionAll(word, m_macros);
    if (isQualified) {
        MentionAll(word, m_names);
    } else if (m_names.find(word) != m_names.end()) {
        m_bareNames.insert(word);
    }
}

void KeyUsage::MentionAll(const std::string& word, Constants& constants) {
    const auto [begin, end] = constants.equal_range(word);
    for (auto at = begin; at != end; ++at) {
        m_areMentioned[at->second] = true;
    }
    constants.erase(begin, end);  // not to do this again for the next mention
}

void KeyUsage::UseNamespace(const std::string& name) {
    const std::string scope =
        m_options.scope.empty() ? DefaultScope(HostLanguage::kCpp) : m_options.scope;
    m_usesNamespace = m_usesNamespace || EndsWith("::" + scope, "::" + name);
}

// Whether a function whose first argument is a key may have this name, which may be qualified.
bool KeyUsage::IsCall(std::string_view name) const {
    for (;;) {
        if (m_calls.count(std::string(name)) != 0) {
            return true;
        }
        const std::size_t colons = name.find("::");
        if (colons == std::string_view::npos) {
            return false;
        }
        name.remove_prefix(colons + 2);
    }
}

// Whether a key begins with a text.
bool KeyUsage::IsBeginning(std::string_view text) const {
    const auto found = std::lower_bound(
        m_sorted.begin(), m_sorted.end(), text,
        [&](std::size_t i, std::string_view wanted) { return m_keys[i].key < wanted; });
    return found != m_sorted.end() && m_keys[*found].key.substr(0, text.size()) == text;
}

void KeyUsage::AddBuilt(std::string_view text, const Place& place) {
    if (!text.empty() && IsBeginning(text) && m_builtTexts.emplace(text).second) {
        m_built.push_back({std::string(text), m_report.size() - 1, place});
    }
}

void KeyUsage::AddUnknown(std::string_view text, const Place& place) {
    m_report.back().findings.push_back(
        {Rule::kUnknownKey, Severity::kError, place, "", std::string(text),
         std::string(text) + ": there is no such key" + NearKeys(text)});
}

void KeyUsage::AddUnknownBeginning(std::string_view text, const Place& place) {
    if (!IsBeginning(text)) {
        m_report.back().findings.push_back({Rule::kUnknownKey, Severity::kError, place, "",
                                            std::string(text),
                                            std::string(text) + ": no key begins like this"});
    }
}

// Lists the keys that nothing else mentions.
void KeyUsage::ReportBuilt(const Built& built) {
    auto at = std::lower_bound(
        m_sorted.begin(), m_sorted.end(), built.text,
        [&](std::size_t i, const std::string& wanted) { return m_keys[i].key < wanted; });
    std::string names;
    std::size_t count = 0;
    for (; at != m_sorted.end() && m_keys[*at].key.substr(0, built.text.size()) == built.text;
         ++at) {
        if (!m_areMentioned[*at]) {
            m_areMentioned[*at] = true;
            if (++count <= kMaxNamed) {
                names += (count == 1 ? "" : ", ") + std::string(m_keys[*at].key);
            }
        }
    }
    if (count == 0) {
        return;
    }
    if (count > kMaxNamed) {
        names += " and " + std::to_string(count - kMaxNamed) + " more";
    }
    m_report[built.file].findings.push_back(
        {Rule::kBuiltKey, Severity::kNote, built.place, "", built.text,
         built.text + ": keys that begin so may be put together at run time; " +
             Count(count, "is", "are") + " mentioned nowhere else: " + names});
}

std::string KeyUsage::NearKeys(std::string_view text) {
    const auto known = m_near.find(std::string(text));
    if (known != m_near.end()) {
        return known->second;
    }
    m_compared += m_keys.size();
    if (m_compared > kMaxCompared) {
        return "";
    }
    Nearest nearest(text);
    for (const HostKey& key : m_keys) {
        nearest.Offer(key.key);
    }
    return m_near.emplace(text, nearest.DidYouMean()).first->second;
}
