#include <cstddef>
#include <initializer_list>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "fuzz/NaiveStrings.h"
#include "tools/orva-strings/document/SyncedStrings.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

constexpr char kReference[] = "QVLANG=en\nAAAA=1\nBBBB=2\nCCCC=3\n";

SyncOptions Filling() {
    SyncOptions options;
    options.isFilled = true;
    return options;
}

SyncOptions Pruning() {
    SyncOptions options;
    options.isPruned = true;
    return options;
}

std::string BytesOf(const SyncedStrings& synced) {
    std::string bytes;
    synced.WriteInPieces([&](std::string_view piece) { bytes += piece; });
    return bytes;
}

std::string Synced(const std::string& bytes, const SyncOptions& options = {}) {
    const SyncedStrings synced(bytes, options);
    EXPECT_FALSE(HasError(synced.Obstacles()));
    std::string result = BytesOf(synced);
    EXPECT_EQ(BytesOf(SyncedStrings(result, options)), result) << "a second run changed it";
    return result;
}

// What becomes of a section of these lines below the reference.
std::string SyncedBelow(const std::string& section, const SyncOptions& options = {}) {
    const std::string result = Synced(kReference + section, options);
    EXPECT_EQ(result.substr(0, sizeof kReference - 1), kReference);
    return result.substr(sizeof kReference - 1);
}

struct Case {
    std::string section;
    std::string synced;
};

void ExpectSynced(const std::vector<Case>& cases, const SyncOptions& options = {}) {
    for (const Case& c : cases) {
        EXPECT_EQ(SyncedBelow(c.section, options), c.synced) << PrintToString(c.section);
    }
}

TEST(SyncedStrings, KeepsTheLanguageBelowTheHeader) {
    ExpectSynced({
        {"QVLANG=de\n# orva: language de\nBBBB=2\n# a\nAAAA=1\n",
         "QVLANG=de\n# orva: language de\n# a\nAAAA=1\nBBBB=2\n"},
        {"QVLANG=de\n# by X\n# orva: language de\n# b\nBBBB=2\nAAAA=1\n",
         "QVLANG=de\n# by X\n# orva: language de\nAAAA=1\n# b\nBBBB=2\n"},
        {"QVLANG=de\n# orva: max-length 9\nBBBB=2\nAAAA=1\n",
         "QVLANG=de\nAAAA=1\n# orva: max-length 9\nBBBB=2\n"},
        {"QVLANG=de\nCCCC=3\n# orva: language de\nBBBB=2\n",
         "QVLANG=de\n# orva: language de\nBBBB=2\nCCCC=3\n"},
    });
    ExpectSynced({{"QVLANG=de\n# orva: language de\nBBBB=2\n",
                   "QVLANG=de\n# orva: language de\nAAAA=1\nBBBB=2\nCCCC=3\n"},
                  {"QVLANG=de\n# orva: language de\n",
                   "QVLANG=de\n# orva: language de\nAAAA=1\nBBBB=2\nCCCC=3\n"}},
                 Filling());
}

TEST(SyncedStrings, PrunesDirectivesWithTheirEntry) {
    ExpectSynced(
        {{"QVLANG=de\n# kept\n# orva: max-length 3\nXXXX=x\n# orva: max-length 4\nBBBB=2\n",
          "QVLANG=de\n# kept\n# orva: max-length 4\nBBBB=2\n"}},
        Pruning());
}

TEST(SyncedStrings, PutsEntriesInTheOrderOfTheReference) {
    ExpectSynced({
        {"QVLANG=de\nCCCC=3\nBBBB=2\nAAAA=1\n", "QVLANG=de\nAAAA=1\nBBBB=2\nCCCC=3\n"},
        {"QVLANG=de\nBBBB=2\n", "QVLANG=de\nBBBB=2\n"},
        {"QVLANG=de\r\nBBBB=\"2\" ;x\r\nAAAA =\t1\r\n",
         "QVLANG=de\r\nAAAA =\t1\r\nBBBB=\"2\" ;x\r\n"},
        {"QVLANG=de\nBBBB=\xFF\0\x1B\nAAAA=\n"s, "QVLANG=de\nAAAA=\nBBBB=\xFF\0\x1B\n"s},
        {"QVLANG=de\nBBBB=2\nAAAA=1\nQVLANG=fr\nCCCC=3\nBBBB=2\n",
         "QVLANG=de\nAAAA=1\nBBBB=2\nQVLANG=fr\nBBBB=2\nCCCC=3\n"},
        {"QVLANG=de\n", "QVLANG=de\n"},
        {"", ""},
    });
}

TEST(SyncedStrings, MovesAnEntryWithTheLinesThatBelongToIt) {
    ExpectSynced({
        // Comments and blank lines above it.
        {"QVLANG=de\n# b\n// 2\nBBBB=2\n# a\nAAAA=1\n",
         "QVLANG=de\n# a\nAAAA=1\n# b\n// 2\nBBBB=2\n"},
        {"QVLANG=de\nBBBB=2\n\n# A\n\n# a\nAAAA=1\n", "QVLANG=de\n\n# A\n\n# a\nAAAA=1\nBBBB=2\n"},
        {"QVLANG=de\nBBBB=2\n\nnote\nAAAA=1\n", "QVLANG=de\n\nnote\nAAAA=1\nBBBB=2\n"},
        {"QVLANG=de\nBBBB=2\n# x\nnote\nAAAA=1\n", "QVLANG=de\n# x\nnote\nAAAA=1\nBBBB=2\n"},
        // The rest of its text below it.
        {"QVLANG=de\nBBBB=\"2\nmore\"\nand more\nAAAA=1\n",
         "QVLANG=de\nAAAA=1\nBBBB=\"2\nmore\"\nand more\n"},
        {"QVLANG=de\nBBBB=\"2\nmore\"\n# a\nAAAA=1\n",
         "QVLANG=de\n# a\nAAAA=1\nBBBB=\"2\nmore\"\n"},
        {"QVLANG=de\nAAAA=1\nBBBB=2\nmore\n", "QVLANG=de\nAAAA=1\nBBBB=2\nmore\n"},
        // A comment that is an entry, too.
        {"QVLANG=de\n# b = 2\nBBBB=2\nAAAA=1\n", "QVLANG=de\nAAAA=1\n# b = 2\nBBBB=2\n"},
    });
}

TEST(SyncedStrings, LeavesTheHeadAndTheEndOfASection) {
    ExpectSynced({
        {"QVLANG=de\n# by me\n\nBBBB=2\nAAAA=1\n", "QVLANG=de\n# by me\nAAAA=1\n\nBBBB=2\n"},
        {"QVLANG=de\n# by me\n\n\n# b\nBBBB=2\n\nAAAA=1\n",
         "QVLANG=de\n# by me\n\nAAAA=1\n\n\n# b\nBBBB=2\n"},
        {"QVLANG=de\n# by me\n\n# now\n\nBBBB=2\nAAAA=1\n",
         "QVLANG=de\n# by me\n\n# now\nAAAA=1\n\nBBBB=2\n"},
        {"QVLANG=de\nnote\nBBBB=2\nAAAA=1\n", "QVLANG=de\nnote\nAAAA=1\nBBBB=2\n"},
        {"QVLANG=de\n\nBBBB=2\n\nAAAA=1\n", "QVLANG=de\n\nAAAA=1\n\nBBBB=2\n"},
        {"QVLANG=de\nBBBB=2\nAAAA=1\n\n# French\nQVLANG=fr\n",
         "QVLANG=de\nAAAA=1\nBBBB=2\n\n# French\nQVLANG=fr\n"},
        {"QVLANG=de\nBBBB=2\nAAAA=1\n# the end = 1\n",
         "QVLANG=de\nAAAA=1\nBBBB=2\n# the end = 1\n"},
    });
    EXPECT_EQ(Synced("BBBB=0\nAAAA=0\n" + (kReference + "QVLANG=de\nBBBB=2\nAAAA=1"s)),
              "BBBB=0\nAAAA=0\n" + (kReference + "QVLANG=de\nAAAA=1\nBBBB=2\n"s));
}

TEST(SyncedStrings, EndsTheLineThatWasTheLast) {
    ExpectSynced({
        {"QVLANG=de\nBBBB=2\nAAAA=1", "QVLANG=de\nAAAA=1\nBBBB=2\n"},
        {"QVLANG=de\nBBBB=2\nAAAA=1\r", "QVLANG=de\nAAAA=1\nBBBB=2\n"},
        {"QVLANG=de\nAAAA=1\nBBBB=2", "QVLANG=de\nAAAA=1\nBBBB=2"},
    });
    ExpectSynced({{"QVLANG=de", "QVLANG=de\nAAAA=1\nBBBB=2\nCCCC=3\n"}}, Filling());
    EXPECT_EQ(Synced("QVLANG=en\r\nAAAA=1\r\nBBBB=2\r\nQVLANG=de\r\nBBBB=2\r\nAAAA=1"),
              "QVLANG=en\r\nAAAA=1\r\nBBBB=2\r\nQVLANG=de\r\nAAAA=1\r\nBBBB=2\r\n");
}

TEST(SyncedStrings, KeepsRepeatedEntriesInTheirOrder) {
    ExpectSynced({
        {"QVLANG=de\nBBBB=2\nAAAA=1\nBBBB=4\nAAAA=3\n",
         "QVLANG=de\nAAAA=1\nAAAA=3\nBBBB=2\nBBBB=4\n"},
        {"QVLANG=de\nBBBB=2\nXXXX=1\nAAAA=1\nXXXX=2\n",
         "QVLANG=de\nAAAA=1\nBBBB=2\nXXXX=1\nXXXX=2\n"},
    });
    const std::string repeated = "QVLANG=en\nAAAA=1\nBBBB=2\nAAAA=3\nQVLANG=de\nBBBB=2\nAAAA=1\n";
    EXPECT_EQ(Synced(repeated), "QVLANG=en\nAAAA=1\nBBBB=2\nAAAA=3\nQVLANG=de\nAAAA=1\nBBBB=2\n")
        << "the reference stays";
}

TEST(SyncedStrings, LeavesAKeyThatTheReferenceLacksBehindTheOneBefore) {
    ExpectSynced({
        {"QVLANG=de\nXXXX=0\nBBBB=2\nYYYY=1\nZZZZ=1\nAAAA=1\n",
         "QVLANG=de\nXXXX=0\nAAAA=1\nBBBB=2\nYYYY=1\nZZZZ=1\n"},
        {"QVLANG=de\nBBBB=2\n# a\nAAAA=1\n# x\nXXXX=0\n",
         "QVLANG=de\n# a\nAAAA=1\n# x\nXXXX=0\nBBBB=2\n"},
    });
}

TEST(SyncedStrings, FillsInWhatIsMissingWithTheReferencesTexts) {
    ExpectSynced(
        {
            {"QVLANG=de\n", "QVLANG=de\nAAAA=1\nBBBB=2\nCCCC=3\n"},
            {"QVLANG=de\nnote\n# by me\n\nQVLANG=fr\nCCCC=3\nBBBB=2\nAAAA=1\n",
             "QVLANG=de\nnote\nAAAA=1\nBBBB=2\nCCCC=3\n# by me\n\n"
             "QVLANG=fr\nAAAA=1\nBBBB=2\nCCCC=3\n"},
            {"QVLANG=de\n# b\nBBBB=zwei\nXXXX=0\n\n",
             "QVLANG=de\nAAAA=1\n# b\nBBBB=zwei\nXXXX=0\nCCCC=3\n\n"},
            {"QVLANG=de\nCCCC=\nAAAA =1\n", "QVLANG=de\nAAAA =1\nBBBB=2\nCCCC=\n"},
        },
        Filling());
    EXPECT_EQ(Synced("QVLANG=en\n# a\nAAAA=\"\"\nBBBB=\nCCCC =\"3\" ;x\r\n# DDDD=4\n# e\nEEEE= \n"
                     "QVLANG=de\n",
                     Filling()),
              "QVLANG=en\n# a\nAAAA=\"\"\nBBBB=\nCCCC =\"3\" ;x\r\n# DDDD=4\n# e\nEEEE= \n"
              "QVLANG=de\nCCCC =\"3\" ;x\nEEEE= \n")
        << "never an empty text, and no comments";
    EXPECT_EQ(Synced("QVLANG=en\nAAAA=1\nAAAA=2\nQVLANG=de\n", Filling()),
              "QVLANG=en\nAAAA=1\nAAAA=2\nQVLANG=de\nAAAA=1\n");
}

TEST(SyncedStrings, PrunesOnlyEntriesWhoseKeysTheReferenceLacks) {
    ExpectSynced(
        {
            {"QVLANG=de\nXXXX=0\nBBBB=2\n\n# x\nXXXX=1\nmore\n# a\nAAAA =1\n# YYYY=0\n# end\n",
             "QVLANG=de\n# a\nAAAA =1\nBBBB=2\n\n# x\nmore\n# YYYY=0\n# end\n"},
            {"QVLANG=de\nXXXX=0\n", "QVLANG=de\n"},
        },
        Pruning());
    const std::string bytes = kReference + "QVLANG=de\nXXXX=0\nYYYY=1\nAAAA=1\nYYYY=1\n"s;
    EXPECT_EQ(SyncedStrings(bytes, Pruning()).Pruned(), 3);
    EXPECT_EQ(SyncedStrings(bytes, {}).Pruned(), 0);
}

TEST(SyncedStrings, SyncsTheSectionsThatAreNamed) {
    const std::string en = "QVLANG=en\nBBBB=2\nAAAA=1\n";
    const std::string de = "QVLANG=de\nAAAA=1\nBBBB=2\n";
    const std::string fr = "QVLANG=fr\nAAAA=1\nBBBB=2\n";
    const std::string syncedDe = "QVLANG=de\nBBBB=2\nAAAA=1\n";
    const std::string syncedFr = "QVLANG=fr\nBBBB=2\nAAAA=1\n";
    SyncOptions options;
    EXPECT_EQ(Synced(en + de + fr), en + syncedDe + syncedFr);
    options.languages = {"DE"};
    EXPECT_EQ(Synced(en + de + fr, options), en + syncedDe + fr);
    options.languages = {"fr", "de"};
    EXPECT_EQ(Synced(en + de + fr, options), en + syncedDe + syncedFr);
    options.languages = {"fr"};
    options.reference = "de";
    EXPECT_EQ(Synced(en + de + syncedFr, options), en + de + fr);
    options.languages = {"de"};
    EXPECT_EQ(Synced(en + de, options), en + de);
}

TEST(SyncedStrings, LeavesSectionsThatNoLoadCanReach) {
    const std::string bytes =
        kReference + "QVLANG=de\nAAAA=1\nQVLANG=EN\nBBBB=2\nAAAA=1\nQVLANG=DE\nBBBB=2\nAAAA=1\n"s;
    EXPECT_EQ(Synced(bytes), bytes);
}

void ExpectObstacle(const std::string& bytes, std::optional<std::size_t> line,
                    const std::string& text, const SyncOptions& options = {}) {
    const SyncedStrings synced(bytes, options);
    ASSERT_EQ(synced.Obstacles().size(), 1) << PrintToString(bytes);
    EXPECT_EQ(synced.Obstacles()[0].severity, Severity::kError);
    EXPECT_EQ(synced.Obstacles()[0].line, line);
    EXPECT_EQ(synced.Obstacles()[0].text, text);
    EXPECT_TRUE(synced.Lines().empty());
}

TEST(SyncedStrings, SaysWhatKeepsAFileFromBeingSynced) {
    ExpectObstacle("QVLANG=en\n<<<<<<< HEAD\n", 1, "git left a conflict here: resolve it first");
    ExpectObstacle("AAAA=1\n", std::nullopt, "the file has no section");
    SyncOptions options;
    options.languages = {"deu", "en"};
    ExpectObstacle("QVLANG=en\nQVLANG=de\n", std::nullopt,
                   "there is no section deu; did you mean 'de'?", options);
    options.languages.clear();
    options.reference = "dex";
    ExpectObstacle("QVLANG=en\nQVLANG=de\n", std::nullopt,
                   "there is no section dex; did you mean 'de'?", options);
    const std::string bytes = "QVLANG=en\nAAAA=1\n QVLANG=de\nAAAA=1\n";
    const SyncedStrings lost(bytes, {});
    EXPECT_TRUE(HasError(lost.Obstacles()));
    EXPECT_EQ(lost.Obstacles()[0].line, 2);
    EXPECT_TRUE(lost.Lines().empty());
}

TEST(SyncedStrings, RefusesToChangeWhatLookupsAnswer) {
    const std::string what =
        ": this comment is an entry, since it has an equals sign, and would be moved before "
        "another "
        "one of its key; write it without";
    ExpectObstacle(kReference + "QVLANG=de\n# max=1\nBBBB=2\n# max=2\nAAAA=1\n"s, 7,
                   "# max" + what);
    // The first of the key stays the first, or says the same.
    ExpectSynced({
        {"QVLANG=de\n# max=1\nBBBB=2\n# max=\"1\"\nAAAA=1\n",
         "QVLANG=de\n# max=\"1\"\nAAAA=1\n# max=1\nBBBB=2\n"},
        {"QVLANG=de\n# max=1\nAAAA=1\n# max=2\nCCCC=3\n# max=3\nBBBB=2\n",
         "QVLANG=de\n# max=1\nAAAA=1\n# max=3\nBBBB=2\n# max=2\nCCCC=3\n"},
    });
}

TEST(SyncedStrings, MovesAsFewLinesAsItCan) {
    const auto moved = [](const std::string& section) {
        std::string numbers;
        const std::string bytes = kReference + section;
        const SyncedStrings synced(bytes, {});
        for (const SyncedLine& line : synced.Lines()) {
            if (line.hasMoved) {
                numbers += std::to_string(line.before.value()) + ' ';
            }
        }
        return numbers;
    };
    EXPECT_EQ(moved("QVLANG=de\nAAAA=1\nBBBB=2\n"), "");
    EXPECT_EQ(moved("QVLANG=de\nCCCC=1\nAAAA=2\nBBBB=3\n"), "5 ");
    EXPECT_EQ(moved("QVLANG=de\nBBBB=1\nCCCC=2\nAAAA=3\n"), "7 ");
    EXPECT_EQ(moved("QVLANG=de\n# c\nCCCC=1\n# b\n# 2\nBBBB=3\nAAAA=1\n"), "10 5 6 ");
}

using Table = std::map<std::string, std::string>;

// The lines of a file, in any order.
std::multiset<std::string> LinesOf(const std::string& bytes) {
    const std::vector<std::string> lines = naive::Lines(bytes);
    return {lines.begin(), lines.end()};
}

// A file of three languages, with few keys, so that they are repeated, and lines of all kinds.
std::string RandomFile(std::mt19937& random) {
    const std::vector<std::string> lines = {
        "AAAA=1\n",   "AAAA=2\n", "BBBB=\"3\"\n", "BBBB =4\n",          "BBBB=5\n",
        "CCCC=\n",    "CCCC=6\n", "DDDD=7\r\n",   "XXXX=\"\xFF\\n\"\n", "XXXX=8\n",
        "  AAAA=3\n", "# note\n", "# max=1\n",    "# max=2\n",          "\n",
        " \t\n",      "note\n",   "\r=\"==\"\n"};
    std::string bytes;
    for (const char* const header : {"QVLANG=en\n", "QVLANG=de\r\n", "QVLANG=fr\n"}) {
        bytes += header;
        for (std::size_t left = random() % 14; left > 0; --left) {
            bytes += lines[random() % lines.size()];
        }
    }
    if (random() % 4 == 0) {
        bytes.pop_back();
    }
    return bytes;
}

// What is left of a table without the entries whose keys the reference lacks.
Table Pruned(Table table, const Table& reference) {
    std::set<std::string> known;
    const auto trimmed = [](const std::string& key) {
        const std::size_t begin = key.find_first_not_of(' ');
        return key.substr(begin, key.find_last_not_of(' ') + 1 - begin);
    };
    for (const auto& [key, text] : reference) {
        known.insert(trimmed(key));
    }
    for (auto entry = table.begin(); entry != table.end();) {
        const bool isPruned = entry->first[0] != '#' && known.count(trimmed(entry->first)) == 0;
        entry = isPruned ? table.erase(entry) : std::next(entry);
    }
    return table;
}

TEST(SyncedStrings, ChangesNoAnswerButThoseThatAreFilledInOrPruned) {
    std::mt19937 random(1);
    std::size_t changed = 0;
    std::size_t refused = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::string bytes = RandomFile(random);
        SCOPED_TRACE(PrintToString(bytes));
        const SyncOptions options = i % 3 == 0 ? SyncOptions() : i % 3 == 1 ? Filling() : Pruning();
        if (HasError(SyncedStrings(bytes, options).Obstacles())) {
            ++refused;
            continue;
        }
        const std::string synced = Synced(bytes, options);
        changed += synced != bytes ? 1U : 0U;
        if (!options.isFilled && !options.isPruned) {
            EXPECT_EQ(LinesOf(synced), LinesOf(bytes)) << "a line is lost";
        }
        const Table reference = naive::Table(bytes, "en");
        for (const char* const language : {"en", "de", "fr"}) {
            const Table before = naive::Table(bytes, language);
            Table after = naive::Table(synced, language);
            for (const auto& [key, text] : reference) {
                if (options.isFilled && before.count(key) == 0 && after.count(key) != 0) {
                    EXPECT_EQ(after[key], text);
                    EXPECT_NE(text, "");
                    after.erase(key);
                }
            }
            EXPECT_EQ(after, options.isPruned ? Pruned(before, reference) : before);
        }
    }
    EXPECT_GT(changed, 1500U);
    EXPECT_GT(refused, 20U);
}

}  // namespace
