// Helpers for C++17 hosts: a language menu, the user's language, fallback texts and copies of texts.
// Header only: all of it is compiled into the host and uses only what the library exports. For C,
// there is Texts.h.
//
// Texts are bytes, in the file's encoding; lengths are in bytes. Arguments are not kept, and every
// result belongs to the caller, except as TextOr says. A function throws nothing but std::bad_alloc,
// when memory runs out, and works in hosts without exceptions (-fno-exceptions, where that ends the
// process) or type information (-fno-rtti).
#ifndef ORVALANGUAGE_TEXTS_HPP
#define ORVALANGUAGE_TEXTS_HPP

#if __cplusplus < 201703L
#error "<OrvaLanguage/Texts.hpp> needs C++17 (-std=c++17); <OrvaLanguage/Texts.h> is for C."
#else

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <locale>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#ifdef __APPLE__
#include <CoreFoundation/CoreFoundation.h>
#endif

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>

namespace OrvaLanguage {

// A section of a strings file, and the language that its texts are in.
struct SectionTag {
    std::string section;  // the section's name
    std::string tag;      // such as "de", "pt-BR" or "zh-Hant"
};

// What LoadPreferred has loaded.
struct LoadedSection {
    int entries = 0;          // as from ZuLoadStrings: 0 is a failure
    std::string section;      // the section's name, as the file spells it; empty after a failure
    bool isFallback = false;  // the file's first section, since none is in a preferred language
};

namespace detail {

inline std::string LowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return lower;
}

// What counts of a language's tag, in lower case; an empty part is not given.
struct Language {
    std::string language;
    std::string script;
    std::string region;
};

inline std::string Script(const Language& found, std::string_view modifier) {
    if (modifier == "@latin") {
        return "latn";
    }
    if (modifier == "@cyrillic") {
        return "cyrl";
    }
    if (found.language == "zh" && found.script.empty()) {
        const bool isTraditional =
            found.region == "tw" || found.region == "hk" || found.region == "mo";
        return isTraditional ? "hant" : "hans";
    }
    return found.script;
}

// Reads a BCP 47 tag or a POSIX locale's name: language_REGION.encoding@modifier. Variants and
// extensions do not count.
inline Language ParseTag(std::string_view tag) {
    const std::string text = LowerAscii(tag);
    const std::string_view lower = text;
    const std::size_t at = lower.find('@');
    const std::string_view modifier = at < lower.size() ? lower.substr(at) : std::string_view();
    std::string_view rest = lower.substr(0, lower.find_first_of(".@"));

    Language found;
    bool isFirst = true;
    while (!rest.empty()) {
        const std::string_view part = rest.substr(0, rest.find_first_of("-_"));
        rest.remove_prefix(part.size() < rest.size() ? part.size() + 1 : part.size());
        const bool isNumber = part.find_first_not_of("0123456789") == std::string_view::npos;
        if (isFirst) {
            found.language = part;
        } else if (part.size() == 1) {
            break;  // an extension
        } else if (part.size() == 4 && part.front() > '9') {
            found.script = part;
        } else if (part.size() == (isNumber ? 3 : 2) && found.region.empty()) {
            found.region = part;
        }
        isFirst = false;
    }

    if (found.language == "sh" && found.script.empty()) {
        found.script = "latn";
    }
    // Former codes, which some systems still use, and those of three letters for languages that have
    // one of two: those of CommonSections.
    constexpr std::string_view kOtherCodes[][2] = {
        {"iw", "he"},  {"in", "id"},  {"ji", "yi"},  {"mo", "ro"},  {"no", "nb"},  {"sh", "sr"},
        {"tl", "fil"}, {"eng", "en"}, {"ind", "id"}, {"cat", "ca"}, {"ces", "cs"}, {"cze", "cs"},
        {"dan", "da"}, {"deu", "de"}, {"ger", "de"}, {"est", "et"}, {"spa", "es"}, {"fra", "fr"},
        {"fre", "fr"}, {"hrv", "hr"}, {"ita", "it"}, {"lav", "lv"}, {"lit", "lt"}, {"hun", "hu"},
        {"nld", "nl"}, {"dut", "nl"}, {"nor", "nb"}, {"nob", "nb"}, {"nno", "nn"}, {"pol", "pl"},
        {"por", "pt"}, {"ron", "ro"}, {"rum", "ro"}, {"slk", "sk"}, {"slo", "sk"}, {"slv", "sl"},
        {"fin", "fi"}, {"swe", "sv"}, {"vie", "vi"}, {"tur", "tr"}, {"ell", "el"}, {"gre", "el"},
        {"bul", "bg"}, {"rus", "ru"}, {"ukr", "uk"}, {"heb", "he"}, {"ara", "ar"}, {"hin", "hi"},
        {"tha", "th"}, {"kor", "ko"}, {"jpn", "ja"}, {"zho", "zh"}, {"chi", "zh"}, {"cmn", "zh"}};
    for (const auto& [other, code] : kOtherCodes) {
        if (found.language == other) {
            found.language = code;
            break;
        }
    }
    found.script = Script(found, modifier);
    return found;
}

constexpr int kBestMatch = 6;

// How well a section in the language offered suits a user who wants the other: up to kBestMatch, or
// 0 if it does not. The script counts most: someone who reads one may not read the other.
inline int Match(const Language& wanted, const Language& offered) {
    if (wanted.language.empty() || wanted.language != offered.language) {
        return 0;
    }
    const bool isSameScript = wanted.script == offered.script;
    if (!isSameScript && !wanted.script.empty() && !offered.script.empty()) {
        return 0;
    }
    const int region = wanted.region == offered.region ? 3 : offered.region.empty() ? 2 : 1;
    return region + (isSameScript ? 3 : 0);
}

inline std::string LoadedName() {
    const char* const name = ZuGetLocalizedString("QVLANG");
    return name != nullptr ? name : "";
}

inline LoadedSection Load(const std::string& section, const char* file, __CFBundle* bundle) {
    const int entries = ZuLoadStrings(section.c_str(), file, bundle);
    return {entries, LoadedName(), false};
}

// Loads a section of this name, perhaps with a blank after it, which nobody sees in a file. Returns
// nothing, after a load of the first section, if there is no such section.
inline std::optional<LoadedSection> LoadNamed(const std::string& name, const char* file,
                                              __CFBundle* bundle) {
    for (const char* const end : {"", " "}) {
        LoadedSection loaded = Load(name + end, file, bundle);
        const std::string_view seen(loaded.section);
        if (LowerAscii(seen.substr(0, seen.find_last_not_of(' ') + 1)) == LowerAscii(name)) {
            return loaded;
        }
    }
    return std::nullopt;
}

// The tags that may be the name of a section that suits a user who wants the language, the best first.
inline std::vector<std::string> TagsOf(const Language& wanted) {
    std::vector<std::string> tags;
    for (const bool hasScript : {true, false}) {
        for (const bool hasRegion : {true, false}) {
            if ((hasScript && wanted.script.empty()) || (hasRegion && wanted.region.empty())) {
                continue;
            }
            for (const char* const separator : {"-", "_"}) {
                std::string tag = wanted.language;
                tag += hasScript ? separator + wanted.script : "";
                tag += hasRegion ? separator + wanted.region : "";
                const bool isNew = tags.empty() || tags.back() != tag;
                if (isNew && Match(wanted, ParseTag(tag)) > 0) {
                    tags.push_back(tag);
                }
            }
        }
    }
    return tags;
}

// Loads the section that suits a user who wants the language best. Returns nothing, after any load,
// if the file has none.
inline std::optional<LoadedSection> LoadLanguage(const Language& wanted, const char* file,
                                                 __CFBundle* bundle,
                                                 const std::vector<SectionTag>& sections) {
    for (int match = kBestMatch; match > 0; --match) {
        for (const SectionTag& offered : sections) {
            if (Match(wanted, ParseTag(offered.tag)) != match) {
                continue;
            }
            if (auto loaded = LoadNamed(offered.section, file, bundle)) {
                return loaded;
            }
        }
    }
    for (const std::string& tag : TagsOf(wanted)) {
        if (auto loaded = LoadNamed(tag, file, bundle)) {
            return loaded;
        }
    }
    return std::nullopt;
}

}  // namespace detail

// The names of a strings file's sections that a load can find, in the file's order: for a language
// menu. A name that comes twice, ignoring the case of ASCII letters, is listed once, and a section
// without a name only if it is the first. Each is as ZuLoadStrings takes it: the rest of the
// header's line with its blanks and quotes, up to a NUL byte.
//
// path is the file's, not one in a bundle. A relative path is resolved against the current folder.
//
// Returns nothing if the file can't be opened, is a folder, or the stream reports that reading
// failed; an empty list if the file has no section, also where a byte-order mark before the only
// header makes it an ordinary line, as for a load. Reads the file on any thread, whether or not it
// is loaded; the rules for a stream are those of KorString. On Linux the host needs the standard
// library that the library was built with, since KorString::GetLine takes one of its streams. None
// of the other functions here do.
inline std::optional<std::vector<std::string>> Sections(const std::filesystem::path& path) {
    std::error_code error;
    std::ifstream stream;
    stream.imbue(std::locale::classic());  // bytes, unconverted, whatever the global locale
    stream.open(path);
    if (!stream || std::filesystem::is_directory(path, error)) {
        return std::nullopt;
    }
    std::vector<std::string> names;
    std::set<std::string> known;
    std::string line;
    while (KorString::GetLine(stream, line)) {
        if (KorString::SearchLanguageKey(line, "")) {
            const std::string name =
                line.c_str() + std::string_view(KorString::LANG_STATEMENT).size();
            const bool canBeAskedFor = !name.empty() || names.empty();
            if (canBeAskedFor && known.insert(detail::LowerAscii(name)).second) {
                names.push_back(name);
            }
        }
    }
    if (stream.bad()) {
        return std::nullopt;
    }
    return names;
}

// Languages by the names that they have for themselves.
inline const std::vector<SectionTag>& CommonSections() {
    static const std::vector<SectionTag> sections = {
        {"English", "en"},
        {"Bahasa Indonesia", "id"},
        {"Català", "ca"},
        {"Čeština", "cs"},
        {"Dansk", "da"},
        {"Deutsch", "de"},
        {"Eesti", "et"},
        {"Español", "es"},
        {"Français", "fr"},
        {"Hrvatski", "hr"},
        {"Italiano", "it"},
        {"Latviešu", "lv"},
        {"Lietuvių", "lt"},
        {"Magyar", "hu"},
        {"Nederlands", "nl"},
        {"Norsk", "nb"},
        {"Norsk bokmål", "nb"},
        {"Norsk nynorsk", "nn"},
        {"Polski", "pl"},
        {"Português", "pt"},
        {"Português (Brasil)", "pt-BR"},
        {"Română", "ro"},
        {"Slovenčina", "sk"},
        {"Slovenščina", "sl"},
        {"Suomi", "fi"},
        {"Svenska", "sv"},
        {"Tiếng Việt", "vi"},
        {"Türkçe", "tr"},
        {"Ελληνικά", "el"},
        {"Български", "bg"},
        {"Русский", "ru"},
        {"Українська", "uk"},
        {"עברית", "he"},
        {"العربية", "ar"},
        {"हिन्दी", "hi"},
        {"ไทย", "th"},
        {"한국어", "ko"},
        {"日本語", "ja"},
        {"简体中文", "zh-Hans"},
        {"繁體中文", "zh-Hant"},
    };
    return sections;
}

// Loads the section in the first of the user's languages that the file has, and says which it is.
//
// tags      the user's languages, the preferred one first, such as from PreferredLanguages: BCP 47
//           tags ("de-AT", "zh-Hant-TW") or POSIX locales ("de_AT.UTF-8@euro", "sr_RS@latin").
//           Language, script and region count, ignoring case. "C" and "POSIX" end the list: there
//           the file's first section is what is wanted.
// file, bundle  as for ZuLoadStrings
// sections  the language of each section that the file may have. To be found, a section must be
//           known here by its name, or have a tag as its name, such as "de" or "pt-BR". It may have
//           one blank after its name in the file. Names with double quotes are not found.
//
// For each tag, the sections in its language are tried, the best first: the same script before one
// that is not given on both sides, then the same region, then no region, then another one, then the
// order in sections. After these, the tag itself and its shorter forms are tried as names: "de-AT",
// "de_AT", "de". So "de-AT" finds "de", and "pt-BR" finds "pt" before "pt-PT". A section in
// another script does not match: "zh-TW" finds "zh-Hant" but not "zh-CN". "nb" and "nn" find each
// other last. Some codes are other names of a language: former ones such as "iw" and "sh", and those
// of three letters for the languages of CommonSections. Nothing more is known of related languages:
// "gsw" does not find "de". Whether the file has a
// section shows only after a load: "QVLANG" must then answer its name, ignoring the case of ASCII
// letters.
//
// If no tag finds a section, the file's first one is loaded, as the fallback. If the file has no
// section or can't be loaded, entries is 0, and the table is as ZuLoadStrings leaves it then.
//
// It loads at least once, so it must not run at the same time as another load or a lookup, and texts
// handed out earlier are invalid afterwards, as after ZuLoadStrings. If memory runs out, the table
// may be that of any section, or part of it.
inline LoadedSection LoadPreferred(const std::vector<std::string>& tags, const char* file,
                                   __CFBundle* bundle,
                                   const std::vector<SectionTag>& sections = CommonSections()) {
    for (const std::string& tag : tags) {
        detail::Language wanted = detail::ParseTag(tag);
        if (wanted.language == "c" || wanted.language == "posix") {
            break;
        }
        if (auto loaded = detail::LoadLanguage(wanted, file, bundle, sections)) {
            return *std::move(loaded);
        }
        // Whoever reads one Norwegian reads the other.
        const bool isBokmal = wanted.language == "nb";
        if (isBokmal || wanted.language == "nn") {
            wanted.language = isBokmal ? "nn" : "nb";
            if (auto loaded = detail::LoadLanguage(wanted, file, bundle, sections)) {
                return *std::move(loaded);
            }
        }
    }
    LoadedSection loaded = detail::Load("", file, bundle);
    loaded.isFallback = loaded.entries > 0;
    return loaded;
}

// The user's languages as the system knows them, the preferred one first: for LoadPreferred.
//
// On macOS, BCP 47 tags from the user's settings; the host links with CoreFoundation. Elsewhere,
// POSIX names from the environment, as gettext reads it: the colon-separated list in LANGUAGE;
// without it, or if the locale is unset, "C" or "POSIX", only the locale, which is the first of
// LC_ALL, LC_MESSAGES and LANG that is not empty. The list is empty if nothing is set.
//
// Must not run while another thread changes the environment.
inline std::vector<std::string> PreferredLanguages() {
    std::vector<std::string> languages;
#ifdef __APPLE__
    const CFArrayRef tags = CFLocaleCopyPreferredLanguages();
    if (tags == nullptr) {
        return languages;
    }
    for (CFIndex i = 0; i < CFArrayGetCount(tags); ++i) {
        char tag[256];
        if (CFStringGetCString(static_cast<CFStringRef>(CFArrayGetValueAtIndex(tags, i)), tag,
                               sizeof tag, kCFStringEncodingUTF8) != 0) {
            languages.emplace_back(tag);
        }
    }
    CFRelease(tags);
#else
    const auto variable = [](const char* name) {
        const char* const value = std::getenv(name);
        return std::string_view(value != nullptr ? value : "");
    };
    std::string_view locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        locale = locale.empty() ? variable(name) : locale;
    }
    std::string_view list = variable("LANGUAGE");
    if (list.empty() || locale.empty() || locale == "C" || locale == "POSIX") {
        list = locale;
    }
    while (!list.empty()) {
        const std::string_view language = list.substr(0, list.find(':'));
        if (!language.empty()) {
            languages.emplace_back(language);
        }
        list.remove_prefix(language.size() < list.size() ? language.size() + 1 : language.size());
    }
#endif
    return languages;
}

// The text of a key, or fallback where ZuGetLocalizedString answers null. Neither is copied: a text
// from the library lives as long as ZuGetLocalizedString says, and fallback as long as the caller
// keeps it. key must not be null; fallback may be. Throws nothing, and may run at the same time as
// the lookups that ZuGetLocalizedString allows.
inline const char* TextOr(const char* key, const char* fallback) noexcept {
    const char* const text = ZuGetLocalizedString(key);
    return text != nullptr ? text : fallback;
}

// A copy of a key's text, which survives a reload, or nothing where ZuGetLocalizedString answers
// null. The rules for key and threads are those of TextOr.
inline std::optional<std::string> CopyText(const char* key) {
    const char* const text = ZuGetLocalizedString(key);
    return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace OrvaLanguage

#endif
#endif
