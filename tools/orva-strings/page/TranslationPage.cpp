#include "tools/orva-strings/page/TranslationPage.h"

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

#include "PageSources.h"
#include "tools/orva-strings/checks/Rules.h"
#include "tools/orva-strings/cli/Count.h"
#include "tools/orva-strings/document/LineText.h"
#include "tools/orva-strings/document/MeantProtected.h"
#include "tools/orva-strings/document/SecretTexts.h"
#include "tools/orva-strings/page/Html.h"

namespace {

using Entry = SectionEntries::Entry;

const char* NameOf(TextState state) {
    switch (state) {
        case TextState::kMissing:
            return "missing";
        case TextState::kStale:
            return "stale";
        case TextState::kEmpty:
            return "empty";
        case TextState::kTranslated:
        case TextState::kSame:
            break;
    }
    return "ok";
}

bool IsDone(TextState state) {
    return state == TextState::kTranslated || state == TextState::kSame;
}

// What must not be shown of a file: the texts of its protected entries and of those that were probably
// meant to be, and the keys that hold one.
class HiddenTexts {
public:
    HiddenTexts(std::string_view bytes, const Translations& translations)
        : m_secrets(FindSecretTexts(bytes)) {
        for (const Translation& language : translations.languages) {
            for (const Entry& entry : language.entries.All()) {
                if (IsKeyHidden(entry.key)) {
                    m_keys.Add(entry.key);
                }
            }
        }
    }

    bool IsTextHidden(std::string_view key, std::string_view value) const {
        std::string line(key);
        line += '=';
        line += value;
        return HoldsProtected(line) || m_secrets.AreShownBy(value);
    }

    // A key, or what was meant as one; empty if even that must not be shown.
    std::string_view Shown(std::string_view key) const {
        if (!IsKeyHidden(key)) {
            return key;
        }
        const std::string_view name = MeantKey(key);
        return BeginsAsProtected(name) && !m_secrets.AreShownBy(name) ? name : std::string_view();
    }

    // Whether a finding's text shows a text or a key.
    bool AreIn(std::string_view text) const { return m_secrets.AreIn(text) || m_keys.AreIn(text); }

private:
    bool IsKeyHidden(std::string_view key) const {
        return (HoldsProtected(key) && MeantKey(key) != TrimBlanks(key)) ||
               m_secrets.AreShownBy(key);
    }

    SecretTexts m_secrets;
    SecretTexts m_keys;  // those that hold one
};

std::string Tagged(const std::string& name, const std::string& attributes,
                   const std::string& content) {
    return '<' + name + attributes + '>' + content + "</" + name + ">\n";
}

// A name from a file, whose direction does not change that of what is around it.
std::string Name(std::string_view name) {
    return "<bdi>" + HtmlText(name) + "</bdi>";
}

std::string Line(std::size_t line) {
    return "<span class=\"line\">line " + std::to_string(line + 1) + "</span>";
}

// A language's bar: what is translated, stale and empty, then a gap for what is missing.
std::string Bar(const Translation& language) {
    const std::size_t total = std::max<std::size_t>(language.states.size(), 1);
    std::string bar = "<svg class=\"bar\" role=\"img\" aria-label=\"";
    bar += std::to_string(language.Percent()) + " % translated\" viewBox=\"0 0 ";
    bar += std::to_string(total) + " 1\" preserveAspectRatio=\"none\">";
    std::size_t x = 0;
    const auto add = [&](const char* state, std::size_t width) {
        bar += "<rect class=\"" + std::string(state) + "\" x=\"" + std::to_string(x);
        bar += "\" width=\"" + std::to_string(width) + "\" height=\"1\"/>";
        x += width;
    };
    add("ok", language.TranslatedCount());
    add("stale", language.CountOf(TextState::kStale));
    add("empty", language.CountOf(TextState::kEmpty));
    return bar + "</svg>\n";
}

std::string Languages(const Translations& translations) {
    std::string list;
    for (const Translation& language : translations.languages) {
        std::string item = Tagged("span", " class=\"name\"", Name(language.name));
        std::string numbers;
        if (&language == &translations.Reference()) {
            item += "<span class=\"bar-space\"></span>\n";
            numbers = "reference, " + Count(language.entries.All().size(), "text", "texts");
        } else {
            item += Bar(language);
            numbers = std::to_string(language.Percent()) + " %";
            for (const TextState state :
                 {TextState::kMissing, TextState::kStale, TextState::kEmpty}) {
                if (const std::size_t count = language.CountOf(state); count > 0) {
                    const std::string name = NameOf(state);
                    numbers += ", <span class=\"" + name + "\">" + std::to_string(count);
                    numbers += ' ' + name + "</span>";
                }
            }
        }
        item += Tagged("span", "", numbers);
        list += Tagged("li", "", item);
    }
    return Tagged("h3", "", "Languages") + Tagged("ul", " class=\"languages\"", list);
}

// The keys that a language lacks or whose text is out of date, with a column for each language.
std::string Matrix(const Translations& translations, const HiddenTexts& hidden) {
    std::string head = "<th scope=\"col\">Key</th>";
    for (const Translation& language : translations.languages) {
        if (&language != &translations.Reference()) {
            head += "<th scope=\"col\">" + Name(language.name) + "</th>";
        }
    }
    std::string rows;
    const std::vector<Entry>& keys = translations.Reference().entries.All();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        std::string row;
        bool isComplete = true;
        for (const Translation& language : translations.languages) {
            if (&language == &translations.Reference()) {
                continue;
            }
            const TextState state = language.states[i];
            isComplete = isComplete && IsDone(state);
            const std::string name = NameOf(state);
            row += "<td class=\"" + name + "\">";
            row += (IsDone(state) ? "✓" : name) + "</td>";
        }
        if (!isComplete) {
            std::string cells = "<th scope=\"row\" class=\"key\">";
            cells += HtmlText(hidden.Shown(keys[i].key)) + "</th>" + row;
            rows += Tagged("tr", "", cells);
        }
    }
    const std::string title = Tagged("h3", "", "Missing, stale or empty");
    if (rows.empty()) {
        return title + Tagged("p", "", "Every language has every text.");
    }
    const std::string table =
        Tagged("thead", "", Tagged("tr", "", head)) + Tagged("tbody", "", rows);
    const std::string meaning =
        Tagged("p", " class=\"quiet\"",
               "A translation is stale if the reference's text has changed since.");
    return title + meaning +
           Tagged("div",
                  " class=\"scroll\" tabindex=\"0\" role=\"region\" "
                  "aria-label=\"Missing, stale or empty texts\"",
                  Tagged("table", " class=\"matrix\"", table));
}

std::string FindingItem(const RuleFinding& finding, const HiddenTexts& hidden) {
    std::string item = Tagged("strong", "", ::NameOf(finding.severity));
    if (finding.place) {
        item += Line(finding.place->line) + ' ';
    }
    if (!finding.section.empty()) {
        item += Tagged("span", " class=\"quiet\"", Name(finding.section));
    }
    // What is said about placeholders quotes them.
    const bool isQuoted = finding.rule == Rule::kPlaceholder && HoldsProtected(finding.text);
    const bool isHidden = isQuoted || hidden.AreIn(finding.text);
    return Tagged("li", "", item + Name(isHidden ? "about a protected text" : finding.text));
}

std::string FindingsByRule(const RuleFindings& findings, const HiddenTexts& hidden) {
    const std::string title = Tagged("h3", "", "Findings");
    if (findings.empty()) {
        return title + Tagged("p", "", "The check has found nothing.");
    }
    std::map<Rule, std::vector<const RuleFinding*>> byRule;
    for (const RuleFinding& finding : findings) {
        byRule[finding.rule].push_back(&finding);
    }
    std::string options = Tagged("option", " value=\"\"", "all rules");
    std::string groups;
    for (const auto& [rule, those] : byRule) {
        const std::string name = TextOf(rule).name;
        const std::string label = name + " (" + std::to_string(those.size()) + ')';
        options += Tagged("option", " value=\"" + name + '"', label);
        std::string items;
        for (const RuleFinding* const finding : those) {
            items += FindingItem(*finding, hidden);
        }
        const std::string summary =
            Tagged("strong", "", label) +
            Tagged("span", " class=\"quiet\"", HtmlText(TextOf(rule).summary));
        groups +=
            Tagged("details", " open data-rule=\"" + name + '"',
                   Tagged("summary", "", summary) + Tagged("ul", " class=\"findings\"", items));
    }
    const std::string filter =
        Tagged("label", "", "Rule " + Tagged("select", "", options)) + Tagged("output", "", "");
    return Tagged("section", "", title + Tagged("p", " class=\"filter\" hidden", filter) + groups);
}

// A text with its line; nothing of a protected one.
std::string TextCell(const Entry& entry, TextState state, const HiddenTexts& hidden) {
    std::string cell = Line(entry.line) + ' ';
    if (!IsDone(state)) {
        const std::string name = NameOf(state);
        cell += "<span class=\"badge " + name + "\">" + name + "</span>";
    }
    std::string buffer;
    const std::string_view text = ValueOf(entry.entry, buffer);
    if (hidden.IsTextHidden(entry.key, text)) {
        return Tagged("td", "", cell + Tagged("div", " class=\"quiet\"", "protected"));
    }
    return Tagged("td", "", cell + Tagged("div", " class=\"text\" dir=\"auto\"", HtmlText(text)));
}

// The reference's texts beside those of a language.
std::string Texts(const Translations& translations, const Translation& language,
                  const HiddenTexts& hidden) {
    const std::string referenceName = Name(translations.Reference().name);
    const std::string name = Name(language.name);
    const std::string column = "<th scope=\"col\">";
    const std::string head =
        column + "Key</th>" + column + referenceName + "</th>" + column + name + "</th>";
    const std::vector<Entry>& keys = translations.Reference().entries.All();
    std::string rows;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        std::string row = "<th scope=\"row\" class=\"key\">";
        row += HtmlText(hidden.Shown(keys[i].key)) + "</th>";
        row += TextCell(keys[i], TextState::kTranslated, hidden);
        const Entry* const entry = language.entries.Find(keys[i].key);
        row += entry != nullptr ? TextCell(*entry, language.states[i], hidden)
                                : Tagged("td", " class=\"badge missing\"", "missing");
        rows += Tagged("tr", "", row);
    }
    const std::string table =
        Tagged("thead", "", Tagged("tr", "", head)) + Tagged("tbody", "", rows);
    return Tagged("details", "",
                  Tagged("summary", "", name) + Tagged("table", " class=\"texts\"", table));
}

}  // namespace

std::string FilePart(const std::string& file, std::string_view bytes,
                     const Translations& translations, const RuleFindings& findings) {
    const HiddenTexts hidden(bytes, translations);
    std::string part = Tagged("h2", "", Name(file));
    part += Languages(translations);
    if (translations.languages.size() > 1) {
        part += Matrix(translations, hidden);
    }
    part += FindingsByRule(findings, hidden);
    if (translations.languages.size() > 1) {
        part += Tagged("h3", "", "Texts");
    }
    for (const Translation& language : translations.languages) {
        if (&language != &translations.Reference()) {
            part += Texts(translations, language, hidden);
        }
    }
    return Tagged("section", "", part);
}

void WritePage(const std::string& parts, const TakePiece& take) {
    std::string head = "<meta charset=\"utf-8\">\n";
    head += "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src ";
    head += InlineSource(kPageStyle) + "; script-src " + InlineSource(kPageScript);
    head += "; base-uri 'none'; form-action 'none'\">\n";
    head += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";
    head += Tagged("title", "", "Translations");
    head += Tagged("style", "", kPageStyle);
    take(kPageBegin);
    take(Tagged("head", "", head));
    take("<body>\n" + Tagged("h1", "", "Translations") + "<main>\n");
    take(parts);
    take("</main>\n" + Tagged("script", "", kPageScript) + "</body>\n</html>\n");
}
