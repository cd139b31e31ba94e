#include "tools/orva-strings/hosts/KeyUsage.h"

#include <algorithm>
#include <fnmatch.h>
#include <numeric>
#include <optional>
#include <utility>

#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/cli/Nearest.h"
#include "tools/orva-strings/hosts/Constants.h"

namespace {

constexpr std::string_view kCalls[] = {
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

// Whether a text ends as the first part of a name does.
bool EndsAsPart(std::string_view text) {
    return !text.empty() && std::string_view("_.-:/").find(text.back()) != std::string_view::npos;
}

}  // namespace

// Reads one source, token by token.
class KeyUsage::Scan {
public:
    Scan(KeyUsage& usage, std::string_view bytes, SourceLanguage language)
        : m_usage(usage), m_reader(bytes, language), m_places(bytes) {}

    void Run() {
        SourceToken last;
        SourceToken token = m_reader.Next();
        while (token.kind != SourceToken::Kind::kEnd) {
            SourceToken next = m_reader.Next();
            switch (token.kind) {
                case SourceToken::Kind::kWord:
                    m_usage.MentionConstant(token.text);
                    m_pending.reset();
                    break;
                case SourceToken::Kind::kLiteral:
                    TakeLiteral(last, token, next);
                    break;
                default:
                    TakeSign(last, token.text[0]);
            }
            last = std::exchange(token, std::move(next));
        }
    }

private:
    struct Pending {
        std::string text;
        Place place;
    };

    static bool IsSign(const SourceToken& token, std::string_view signs) {
        return token.kind == SourceToken::Kind::kSign &&
               signs.find(token.text[0]) != std::string_view::npos;
    }

    bool IsKeyPlace() const { return !m_areKeyPlaces.empty() && m_areKeyPlaces.back(); }

    void TakeLiteral(const SourceToken& last, const SourceToken& token, const SourceToken& next) {
        const Place place = m_places.PlaceOf(token.begin);
        const std::string_view text = std::string_view(token.text).substr(0, token.text.find('\0'));
        const bool isKeyPlace = IsKeyPlace() && IsSign(last, "(?:)");
        m_pending.reset();
        if (token.isOpen) {
            m_areKeyPlaces.push_back(false);  // until a parenthesis ends the expression
        }
        const bool isKey = !token.isOpen && m_usage.Mention(text);
        if (IsSign(last, "+")) {
            return;  // not the beginning of what is put together
        }
        const bool isJoined =
            token.isOpen || next.kind == SourceToken::Kind::kWord || IsSign(next, "+#<");
        const std::string_view beginning = token.isOpen || isKey ? text : BeforeArgument(text);
        if (isJoined || beginning.size() < text.size() || (!isKey && EndsAsPart(text))) {
            m_usage.AddBuilt(beginning, place);
        }
        m_pending = Pending{std::string(beginning), place};
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
                m_areKeyPlaces.push_back(BeginsKeyPlace(last));
                break;
            case '[':
            case '{':
                m_areKeyPlaces.push_back(false);
                break;
            case ')':
            case ']':
            case '}':
                if (!m_areKeyPlaces.empty()) {
                    m_areKeyPlaces.pop_back();
                }
                break;
            case ',':
                if (!m_areKeyPlaces.empty()) {
                    m_areKeyPlaces.back() = false;  // only the first argument is a key
                }
                break;
            default:
                break;
        }
    }

    // Whether a parenthesis opens the arguments of a call, or a part of the first one.
    bool BeginsKeyPlace(const SourceToken& last) const {
        if (last.kind == SourceToken::Kind::kWord) {
            return m_usage.m_calls.count(last.text) != 0;
        }
        return IsKeyPlace() && !IsSign(last, ")]>");
    }

    KeyUsage& m_usage;
    SourceReader m_reader;
    SourcePlaces m_places;
    std::vector<bool> m_areKeyPlaces;  // for each open parenthesis, bracket and brace
    std::optional<Pending> m_pending;  // a literal, and what may still show how it is used
};

KeyUsage::KeyUsage(std::vector<HostKey> keys, const UsageOptions& options)
    : m_options(options),
      m_keys(WithoutSecrets(std::move(keys))),
      m_areMentioned(m_keys.size()),
      m_sorted(m_keys.size()),
      m_calls(options.calls.begin(), options.calls.end()) {
    m_calls.insert(std::begin(kCalls), std::end(kCalls));
    const std::string scope =
        (options.scope.empty() ? DefaultScope(HostLanguage::kC) : options.scope) + '_';
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        m_indexes.emplace(m_keys[i].key, i);
        const std::string name = NameInScope(m_keys[i].key);
        m_constants.emplace(scope + name, i);
        m_constants.emplace(name, i);
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

void KeyUsage::MentionConstant(const std::string& word) {
    const auto [begin, end] = m_constants.equal_range(word);
    for (auto at = begin; at != end; ++at) {
        m_areMentioned[at->second] = true;
    }
    m_constants.erase(begin, end);  // not to do this again for the next mention
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
                                            std::string(text) + ": no key begins so"});
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
