#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/cli/Nearest.h"

namespace {

TEST(Nearest, NamesTheWordsThatMayHaveBeenMeant) {
    const struct {
        const char* word;
        std::vector<std::string> candidates;
        const char* text;
    } cases[] = {
        {"TITLE", {}, ""},
        {"TITLE", {"MENU"}, ""},
        // One letter another, too many, too few; two swapped are two others.
        {"TITLE", {"TITLA"}, "; did you mean 'TITLA'?"},
        {"TITLE", {"TITLES"}, "; did you mean 'TITLES'?"},
        {"TITLE", {"TITL"}, "; did you mean 'TITL'?"},
        {"TITLE", {"TILTE"}, "; did you mean 'TILTE'?"},
        {"TITLE", {"xTITLEx"}, "; did you mean 'xTITLEx'?"},
        {"TITLE", {"TL"}, ""},
        {"TITLE", {"TITLExxx"}, ""},
        {"TITLE", {"xITxEx"}, ""},
        // The nearest win, in their order, at most three and each once.
        {"TITLE", {"TIT", "TITL", "TITLEX"}, "; did you mean 'TITL' or 'TITLEX'?"},
        {"TITLE", {"TITL", "TIT"}, "; did you mean 'TITL'?"},
        {"KEY1",
         {"KEY2", "KEY3", "KEY2", "KEY4", "KEY5"},
         "; did you mean 'KEY2', 'KEY3' or 'KEY4'?"},
        // Blanks and the case of letters count less than a letter.
        {"TITLE", {"TITLES", "TITLE "}, "; did you mean 'TITLE '?"},
        {"TITLE", {"Title", "TITLES"}, "; did you mean 'Title'?"},
        {" ti\ttle  ", {"TITLES", "TITLE"}, "; did you mean 'TITLE'?"},
        {"title of this", {"TITLE_OF_THAT", "Title Of This"}, "; did you mean 'Title Of This'?"},
        {"[", {"{"}, ""},
        {"\xC3\x84", {"\xC3\xA4"}, "; did you mean '\xC3\xA4'?"},
        // Fewer changes than the word has letters.
        {"", {"a", "TITLE"}, ""},
        {"", {" "}, "; did you mean ' '?"},
        {"a", {"b", ""}, ""},
        {"a", {"A"}, "; did you mean 'A'?"},
        {"ab", {"a"}, "; did you mean 'a'?"},
        {"ab", {"cd"}, ""},
        {"abc", {"xyc"}, "; did you mean 'xyc'?"},
        {"abc", {"xyz"}, ""},
    };
    for (const auto& c : cases) {
        Nearest nearest(c.word);
        for (const std::string& candidate : c.candidates) {
            nearest.Offer(candidate);
        }
        EXPECT_EQ(nearest.DidYouMean(), c.text)
            << c.word << ' ' << ::testing::PrintToString(c.candidates);
    }
}

TEST(Nearest, NamesThemAfterAPrefix) {
    Nearest nearest("shw");
    nearest.Offer("show");
    nearest.Offer("shew");
    EXPECT_EQ(nearest.DidYouMean("key "), "; did you mean 'key show' or 'key shew'?");
}

// With time that grew with the square of the length, this would exceed the time limit.
TEST(Nearest, IsFastWithLongWords) {
    const std::string word(1'000'000, 'x');
    const std::string other = word.substr(1) + 'y';
    const std::string far = std::string(500'000, 'x') + "abc" + word.substr(500'000);
    Nearest nearest(word);
    for (int i = 0; i < 20; ++i) {
        nearest.Offer(far);
        nearest.Offer(other);
    }
    EXPECT_EQ(nearest.DidYouMean(), "; did you mean '" + other + "'?");
}

}  // namespace
