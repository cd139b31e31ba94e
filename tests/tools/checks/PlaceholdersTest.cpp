// Which parts of a text a host replaces, and which of two texts' are the same.
#include <string>

#include <gtest/gtest.h>

#include "tools/orva-strings/checks/Placeholders.h"

namespace {

// The meanings of a text's placeholders, separated by blanks.
std::string Meanings(const char* text) {
    std::string meanings;
    for (const Placeholder& placeholder : FindPlaceholders(text).list) {
        meanings += (meanings.empty() ? "" : " ") + placeholder.meaning;
    }
    return meanings;
}

std::string Written(const char* text) {
    return Missing(FindPlaceholders(text), {});
}

TEST(Placeholders, AreThoseOfPrintf) {
    EXPECT_EQ(Meanings("%d of %s"), "%1$d %2$s");
    EXPECT_EQ(Meanings("%i"), "%1$d") << "the same conversion as %d";
    EXPECT_EQ(Meanings("%x %X %o %u"), "%1$x %2$x %3$o %4$u");
    EXPECT_EQ(Meanings("%e %E %f %F %g %G %a %A"), "%1$e %2$e %3$f %4$f %5$g %6$g %7$a %8$a");
    EXPECT_EQ(Meanings("%c %C %s %S"), "%1$c %2$C %3$s %4$S") << "of other types";
    EXPECT_EQ(Meanings("%8ldK"), "%1$ld");
    EXPECT_EQ(Meanings("%lu %lld %zu %hhd %jd %td %Lf %qd"),
              "%1$lu %2$lld %3$zu %4$hhd %5$jd %6$td %7$Lf %8$qd");
    EXPECT_EQ(Meanings("%-5.2f %+d %05d %#x %'d"), "%1$f %2$d %3$d %4$x %5$d");
    EXPECT_EQ(Meanings("%*d"), "%1$d %2$d") << "a star takes an argument";
    EXPECT_EQ(Meanings("%.*s"), "%1$d %2$s");
    EXPECT_EQ(Meanings("%@ and %1$@"), "%1$@");
    EXPECT_EQ(Meanings("%p%c%a%n"), "%1$p %2$c %3$a %4$n");
    EXPECT_EQ(Meanings("(%d)"), "%1$d");
    EXPECT_EQ(Meanings("%dpx and %ss"), "%1$d %2$s") << "a word may follow";
}

TEST(Placeholders, MayHavePositions) {
    EXPECT_EQ(Meanings("%2$s: %1$d"), "%1$d %2$s");
    EXPECT_EQ(Meanings("%1$s %1$s"), "%1$s") << "each once";
    EXPECT_EQ(Meanings("%10$ld"), "%10$ld");
}

TEST(Placeholders, AreNotPercentSigns) {
    EXPECT_EQ(Meanings("100 % done"), "") << "no blank flag";
    EXPECT_EQ(Meanings("100%"), "");
    EXPECT_EQ(Meanings("100%%d"), "");
    EXPECT_EQ(Meanings("100%iges"), "") << "part of a word after a number";
    EXPECT_EQ(Meanings("%"), "");
    EXPECT_EQ(Meanings("%-encoding"), "");
    EXPECT_EQ(Meanings("%time %zdash %qdash %jdash"), "");
    EXPECT_EQ(Meanings("From%*sLatest"), "%1$d %2$s");
    EXPECT_EQ(Meanings("%-5ds"), "%1$d");
    EXPECT_EQ(Meanings("%5"), "%5");
    EXPECT_EQ(Meanings("% d"), "");
    EXPECT_EQ(Meanings("%-"), "");
    EXPECT_EQ(Meanings("%*"), "") << "no conversion, so its star takes no argument";
    EXPECT_EQ(Meanings("%* %d"), "%1$d");
}

TEST(Placeholders, MayBeNumbers) {
    EXPECT_EQ(Meanings("%1 of %2"), "%1 %2");
    EXPECT_EQ(Meanings("%L1"), "%1") << "the same, with the locale's digits";
    EXPECT_EQ(Meanings("%1days"), "%1") << "no conversion within a word";
    EXPECT_EQ(Meanings("%12345"), "%12") << "two digits at most";
    EXPECT_EQ(Meanings("%2d%%"), "%1$d") << "a width";
}

TEST(Placeholders, MayHaveNames) {
    EXPECT_EQ(Meanings("%(count)d of %(name)s"), "%(count)d %(name)s");
    EXPECT_EQ(Meanings("%(count)05d"), "%(count)d");
    EXPECT_EQ(Meanings("%(count"), "");
    EXPECT_EQ(Meanings("%(count) d"), "");
    EXPECT_EQ(Meanings("{0} {name} {a.b_2}"), "{0 {a.b_2 {name");
    EXPECT_EQ(Meanings("{} {}"), "{ 1 { 2");
    EXPECT_EQ(Meanings("{name:>10} {0!r}"), "{0 {name") << "a format is not compared";
    EXPECT_EQ(Meanings("{count, plural, one {# file} other {files}}"), "{count");
    EXPECT_EQ(Meanings("${name}"), "{name");
}

TEST(Placeholders, AreNotBraces) {
    EXPECT_EQ(Meanings("{ }"), "");
    EXPECT_EQ(Meanings("{a b}"), "");
    EXPECT_EQ(Meanings("{"), "");
    EXPECT_EQ(Meanings("{name"), "");
    EXPECT_EQ(Meanings("{name:"), "");
    EXPECT_EQ(Meanings("}{name, "), "");
    EXPECT_EQ(Meanings("{:}"), "");
    EXPECT_EQ(Meanings("{...}"), "");
    EXPECT_EQ(Meanings("${HOME} \\x{HEX}"), "") << "a shell's and an escape";
    EXPECT_EQ(Meanings("{ascii,ibm}"), "") << "a list";
    EXPECT_EQ(Meanings("{a,-5} {b, number} {c,choice,0#x}"), "{a {b {c");
}

TEST(Placeholders, KnowTimes) {
    EXPECT_TRUE(FindPlaceholders("%H:%M").isTime);
    EXPECT_TRUE(FindPlaceholders("%-d. %B %Y").isTime);
    EXPECT_TRUE(FindPlaceholders("%Oy").isTime);
    EXPECT_FALSE(FindPlaceholders("%d %s").isTime);
    EXPECT_FALSE(FindPlaceholders("100 %").isTime);
    EXPECT_FALSE(FindPlaceholders("100% Yes").isTime);
}

TEST(Placeholders, AreShownAsWritten) {
    EXPECT_EQ(Written("%-5d and {name:x} and %1$s"), "%-5d %1$s {name}");
}

TEST(Placeholders, AreComparedByMeaning) {
    const auto missing = [](const char* a, const char* b) {
        return Missing(FindPlaceholders(a), FindPlaceholders(b));
    };
    EXPECT_EQ(missing("%s %d", "%2$i %1$s"), "");
    EXPECT_EQ(missing("%s %d", "%d %s"), "%s %d (argument 2)");
    EXPECT_EQ(missing("%ld", "%d"), "%ld");
    EXPECT_EQ(missing("{a}", "{b}"), "{a}");
    EXPECT_EQ(missing("%1 %2", "%2"), "%1");
    EXPECT_EQ(missing("none", "%2"), "");
}

}  // namespace
