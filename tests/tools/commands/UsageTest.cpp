// The command usage, run in this process. Its output is compared whole.
#include <algorithm>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"

namespace fs = std::filesystem;

namespace {

class Usage : public ToolTest {
protected:
    void SetUp() override { fs::create_directories(m_folder.Path() / "src"); }

    // What usage says about a source with this name and a strings file with these keys. Names are
    // without the folder.
    std::string Find(const std::string& name, const std::string& source, const std::string& keys,
                     const std::vector<std::string>& options = {}) {
        Write("src/" + name, source);
        return FindIn(keys, options);
    }

    std::string FindIn(const std::string& keys, const std::vector<std::string>& options = {}) {
        std::string file = "QVLANG=en\n";
        for (std::size_t i = 0; i < keys.size();) {
            const std::size_t end = std::min(keys.find(' ', i), keys.size());
            file += keys.substr(i, end - i) + "=x\n";
            i = end + 1;
        }
        std::vector<std::string> arguments = {"usage", "--source", Path("src"),
                                              Write("App.strings", file)};
        arguments.insert(arguments.end(), options.begin(), options.end());
        m_status = Run(arguments);
        EXPECT_EQ(m_err, "");
        const std::string folder = m_folder.Path().string() + '/';
        std::string text = m_out;
        for (std::size_t at; (at = text.find(folder)) != std::string::npos;) {
            text.erase(at, folder.size());
        }
        return text;
    }

    int m_status = 0;
};

constexpr char kNothing[] = "no findings in 2 files\n";

TEST_F(Usage, FindsNothingInKeysThatAreUsed) {
    EXPECT_EQ(Find("a.cpp", "f(ZuGetLocalizedString(\"ABCD\"), \"EFGH\");", "ABCD EFGH"), kNothing);
    EXPECT_EQ(m_status, 0);
}

TEST_F(Usage, FindsLiteralsInCallsThatAreNoKeys) {
    EXPECT_EQ(
        Find("a.cpp",
             "ZuGetLocalizedString(\"ABCE\");\n  KorString::KorGetLocalizedString(L\"X\");\n"
             "TextOr(\"YY\", \"A text\"); OrvaTextOr ( \"ZZ\" , x); CopyText(\"CC\"); "
             "OrvaCopyText(\"DD\");\nQVLANG(\"A\", \"ABCD\");"
             "ZuGetLocalizedString(\"QVLANG\"); ZuGetLocalizedString(\"AB\" \"CD\")",
             "ABCD"),
        "src/a.cpp:1:22: error: ABCE: there is no such key; did you mean 'ABCD'? [unknown-key]\n"
        "src/a.cpp:2:36: error: X: there is no such key [unknown-key]\n"
        "src/a.cpp:3:8: error: YY: there is no such key [unknown-key]\n"
        "src/a.cpp:3:38: error: ZZ: there is no such key [unknown-key]\n"
        "src/a.cpp:3:58: error: CC: there is no such key [unknown-key]\n"
        "src/a.cpp:3:78: error: DD: there is no such key [unknown-key]\n"
        "6 errors in 2 files\n");
    EXPECT_EQ(m_status, 1);
}

TEST_F(Usage, FindsThemWhereverTheFirstArgumentIsALiteral) {
    const char* const call = "ZuGetLocalizedString(";
    for (const char* const argument :
         {"\"XX\")", "(\"XX\"))", "c ? \"XX\" : d)", "c ? d : \"XX\")", "(c) ? (\"XX\") : d)",
          "(const char*)\"XX\")", "R\"(XX)\")", "\"X\" /* \"ABCD\" */ \"X\")",
          "[@\"XX\" UTF8String])", "@\"XX\".UTF8String)", "c ? [@\"XX\" UTF8String] : d)",
          "std::string(\"XX\").c_str())", "std::string{\"XX\"}.data())", "\"XX\"s.c_str())",
          "c ? std::string_view(\"XX\").data() : d)", "static_cast<const char*>(\"XX\"))",
          "const_cast<char*>(\"XX\"))", "reinterpret_cast<const char*>(\"XX\"))",
          "std::string(\"XX\"))"}) {
        const std::string found = Find("a.mm", std::string(call) + argument + ";\"ABCD\";", "ABCD");
        EXPECT_NE(found.find("error: XX: there is no such key [unknown-key]\n1 error"),
                  std::string::npos)
            << argument << '\n'
            << found;
    }
    for (const char* const argument : {"Key(\"XX\"))",
                                       "a[\"XX\"])",
                                       "b == \"XX\" ? \"ABCD\" : \"ABCD\")",
                                       "b, \"XX\")",
                                       "[a b:\"XX\"])",
                                       "a{\"XX\"})",
                                       "x); f(\"XX\")",
                                       "\"ABCD\", f(\"XX\"), (\"XX\"))",
                                       ")[\"XX\"]",
                                       "[@\"XX\" lowercaseString])",
                                       "[@\"XX\" UTF8String][0])",
                                       "[b c:[@\"XX\" UTF8String]])",
                                       "[[@\"XX\" UTF8String]])",
                                       "std::string(\"XX\").append(b))",
                                       "std::string(\"XX\", b).c_str())",
                                       "b + std::string(\"XX\"))",
                                       "b, std::string(\"XX\"))",
                                       "std::string(b + \"XX\"))",
                                       "std::string(b, \"XX\"))",
                                       "\"XX\".b())",
                                       "\"XX\".data(b))",
                                       "std::vector(\"XX\"))",
                                       "std::vector{\"XX\"}.data())",
                                       "f<char*>(\"XX\"))",
                                       "b, static_cast<char*>(\"XX\"))",
                                       "b == static_cast<char*>(\"XX\"))",
                                       "std::string(\"XX\".data(), b))",
                                       "std::string(\"XX\"s.data(), b))",
                                       "static_cast<T>(b) ? c > (\"XX\") : d)",
                                       "std::string{b[\"XX\"]})"}) {
        EXPECT_EQ(Find("a.mm", std::string(call) + argument + ";\"ABCD\";", "ABCD"), kNothing)
            << argument;
    }
}

TEST_F(Usage, FindsTheSameMistakeEachTime) {
    EXPECT_EQ(Find("a.c", "TextOr(\"ABCE\", 0);\nTextOr(\"ABCE\", 0); \"ABCD\"", "ABCD"),
              "src/a.c:1:8: error: ABCE: there is no such key; did you mean 'ABCD'? [unknown-key]\n"
              "src/a.c:2:8: error: ABCE: there is no such key; did you mean 'ABCD'? [unknown-key]\n"
              "2 errors in 2 files\n");
}

TEST_F(Usage, KnowsOtherCalls) {
    const std::string source = "tr(\"XXXX\"); _(\"YYYY\"); strtr(\"A\"); \"ABCD\"";
    EXPECT_EQ(Find("a.cpp", source, "ABCD"), kNothing);
    EXPECT_EQ(FindIn("ABCD", {"--call", "tr", "--call", "_"}),
              "src/a.cpp:1:4: error: XXXX: there is no such key [unknown-key]\n"
              "src/a.cpp:1:15: error: YYYY: there is no such key [unknown-key]\n"
              "2 errors in 2 files\n");
}

TEST_F(Usage, KnowsQualifiedCalls) {
    const std::string source =
        "Foo::tr(\"AAAA\"); a::Foo::tr(\"BBBB\"); Bar::tr(\"CCCC\"); tr(\"DDDD\"); "
        "x.Foo.tr(\"EEEE\");"
        "Foo(tr(\"FFFF\")); Foo; ::tr(\"GGGG\"); Foo::a; tr(\"HHHH\"); Foo::tr \"I\" (\"JJJJ\");"
        "c ? Foo : tr(\"KKKK\")";
    const std::string found = Find("a.cpp", source, "ABCD", {"--call", "Foo::tr", "--keep", "*"});
    EXPECT_EQ(found,
              "src/a.cpp:1:9: error: AAAA: there is no such key [unknown-key]\n"
              "src/a.cpp:1:29: error: BBBB: there is no such key [unknown-key]\n"
              "src/a.cpp:1:76: error: EEEE: there is no such key [unknown-key]\n"
              "3 errors in 2 files\n");
    EXPECT_EQ(FindIn("ABCD", {"--call", "Foo.tr", "--keep", "*"}), found);
    const std::string far = Find("a.cpp", std::string(300, 'x') + "::Foo::tr(\"AAAA\")", "ABCD",
                                 {"--call", "Foo::tr", "--keep", "*"});
    EXPECT_NE(far.find("error: AAAA"), std::string::npos) << far;
}

TEST_F(Usage, RefusesCallsThatNoSourceCanHave) {
    const std::string file = Write("App.strings", "QVLANG=en\n");
    for (const char* const call : {"", "a b", "1a", "a::", "::a", "a::1", "a..b", "a:b", "f()"}) {
        EXPECT_EQ(Run({"usage", "--source", Path("src"), "--call", call, file}), 2) << call;
        EXPECT_NE(m_err.find("--call: '" + std::string(call) + "' can't be the name of a function"),
                  std::string::npos)
            << m_err;
    }
    const std::string call = "größe9_";
    Write("src/a.c", call + "(\"XX\")");
    EXPECT_EQ(Run({"usage", "--source", Path("src"), "--call", call, file}), 1);
}

TEST_F(Usage, WarnsOfKeysThatNoSourceMentions) {
    EXPECT_EQ(Find("a.cpp", "// \"ABCD\"\nABCDE(\"xABCD\", 'EFGH')", "ABCD EFGH IJKL MNOP"),
              "App.strings:2:1: warning: ABCD: no source mentions this key [unused-key]\n"
              "App.strings:3:1: warning: EFGH: no source mentions this key [unused-key]\n"
              "App.strings:4:1: warning: IJKL: no source mentions this key [unused-key]\n"
              "App.strings:5:1: warning: MNOP: no source mentions this key [unused-key]\n"
              "4 warnings in 2 files\n");
    EXPECT_EQ(m_status, 0);
    EXPECT_EQ(FindIn("ABCD EFGH IJKL MNOP",
                     {"--keep", "?BCD", "--keep", "[EI]*", "--fail-on", "warning"}),
              "App.strings:5:1: warning: MNOP: no source mentions this key [unused-key]\n"
              "1 warning in 2 files\n");
    EXPECT_EQ(m_status, 1);
    EXPECT_EQ(FindIn("ABCD", {"--keep", "*", "--fail-on", "warning"}), kNothing);
    EXPECT_EQ(m_status, 0);
}

TEST_F(Usage, NeverNamesAKeyThatHoldsAProtectedText) {
    EXPECT_EQ(Find("a.cpp", "f(\"ABCD\")", "ABCD IDE_X:\"SECRET\""), kNothing);
}

TEST_F(Usage, TakesTheNamesOfConstantsForTheirKeys) {
    EXPECT_EQ(Find("a.c", "f(KEY_ABCD, KEY_a_bc);", "ABCD a.bc"), kNothing);
    EXPECT_EQ(Find("a.c", "f(keys::ABCD, .a_bc);", "ABCD a.bc a-bc"), kNothing);
    EXPECT_EQ(Find("a.c", "f(keys :: ABCD, b().a_bc);", "ABCD a.bc"), kNothing);
    EXPECT_EQ(Find("a.c", "f(T_ABCD);", "ABCD", {"--scope", "T"}), kNothing);
    EXPECT_EQ(Find("a.c", "f(T_ABCD);", "ABCD"),
              "App.strings:2:1: warning: ABCD: no source mentions this key [unused-key]\n"
              "1 warning in 2 files\n");
    // The constants themselves mention every key.
    ASSERT_EQ(Run({"keys", "--language", "c", "-o", Path("src/Keys.h"), "-"}, "QVLANG=\nABCD=1\n"),
              0);
    EXPECT_EQ(FindIn("ABCD"),
              "App.strings:2:1: warning: ABCD: no source mentions this key [unused-key]\n"
              "1 warning in 3 files\n");
}

// A variable may have the same name.
TEST_F(Usage, TakesABareNameForAConstantOnlyWithItsNamespace) {
    const std::string unused =
        "App.strings:2:1: warning: ABCD: no source mentions this key [unused-key]\n"
        "1 warning in 2 files\n";
    EXPECT_EQ(Find("a.cpp", "int ABCD = 1; g(ABCD);", "ABCD"), unused);
    EXPECT_EQ(Find("a.cpp", "using namespace other; c ? b : ABCD; d->ABCD", "ABCD"), unused);
    EXPECT_EQ(Find("a.cpp", "using namespace monkeys; ABCD", "ABCD"), unused);
    EXPECT_EQ(Find("a.cpp", "using namespace s; ABCD", "ABCD"), unused);
    EXPECT_EQ(Find("a.cpp", "namespace a; keys; ABCD", "ABCD"), unused);
    EXPECT_EQ(Find("a.cpp", "f(ABCD); using namespace keys;", "ABCD"), kNothing);
    EXPECT_EQ(Find("a.cpp", "using namespace app::keys; f(ABCD);", "ABCD"), kNothing);
    EXPECT_EQ(Find("a.cpp", "using namespace text; f(ABCD);", "ABCD", {"--scope", "app::text"}),
              kNothing);
    EXPECT_EQ(Find("a.cpp", "using namespace keys; f(ABCD);", "ABCD", {"--scope", "text"}), unused);
    EXPECT_EQ(Find("a.cpp", "using namespace keys; f(ABC_D); g(\"ABC_\" + h);", "ABC_D"), kNothing)
        << "not put together, too";
}

TEST_F(Usage, ListsKeysThatMayBePutTogetherAtRunTime) {
    EXPECT_EQ(
        Find("a.cpp",
             "f(\"MENU_\" + a);\n  \"MENU_\" + b; snprintf(c, n, \"ASK_%s\", d);\n\"MENU_A\"",
             "MENU_A MENU_B MENU_C ASK_D HELP"),
        "src/a.cpp:1:3: note: MENU_: keys that begin so may be put together at run time; 2 are "
        "mentioned nowhere else: MENU_B, MENU_C [built-key]\n"
        "src/a.cpp:2:31: note: ASK_: keys that begin so may be put together at run time; 1 is "
        "mentioned nowhere else: ASK_D [built-key]\n"
        "App.strings:6:1: warning: HELP: no source mentions this key [unused-key]\n"
        "1 warning and 2 notes in 2 files\n");
    EXPECT_EQ(m_status, 0);
}

TEST_F(Usage, KnowsTheWaysToPutAKeyTogether) {
    for (const char* const source :
         {"\"ABC\" + x", "std::string(\"ABC\") + x", "std::string{\"ABC\"} + x", "\"ABC%d\"",
          "std::format(\"ABC{}\")", "s << \"ABC\" << x", "f(\"ABC\" #x)", "\"ABC\" x",
          "[@\"ABC\" stringByAppendingString:x]", "@\"ABC%@\"", "\"ABC%s_\"",
          "ZuGetLocalizedString((\"ABC\" + x).c_str())"}) {
        EXPECT_NE(Find("a.mm", source, "ABCD").find("note: AB"), std::string::npos) << source;
    }
    for (const char* const source : {"x = \"AB_\"; x += y", "strcpy(x, \"AB_\")"}) {
        EXPECT_NE(Find("a.mm", source, "AB_CD").find("note: AB_: "), std::string::npos) << source;
    }
    EXPECT_EQ(Find("a.mm", "\"ABC\" + x; \"ABCD\"", "ABCD"), kNothing);
    EXPECT_NE(Find("a.mm", "\"ABCD\" + x", "ABCD ABCDE").find("note: ABCD: "), std::string::npos);
    for (const char* const source : {"x + \"ABC\"", "f(\"ABC\")", "\"ABC\", x", "\"%sABC\"",
                                     "\"\" + x", "x = \"ABC\"; y + z"}) {
        EXPECT_EQ(Find("a.mm", source, "ABCD").find("note"), std::string::npos) << source;
    }
    fs::remove(Path("src/a.mm"));
    EXPECT_NE(Find("a.swift", "f(\"ABC\\(x)\")", "ABCD").find("note: ABC: "), std::string::npos);
}

// Else the unused keys with one letter would be hidden.
TEST_F(Usage, TakesNoLetterForTheBeginningOfKeys) {
    for (const char* const source :
         {"\"A%d\"", "\"AB%d\"", "\"A\" + x", "std::string(\"AB\") + x"}) {
        EXPECT_EQ(Find("a.cpp", source, "ABCD").find("note"), std::string::npos) << source;
    }
    EXPECT_NE(Find("a.cpp", "\"A_%d\"", "A_CD").find("note: A_: "), std::string::npos);
    EXPECT_NE(Find("a.cpp", "TextOr(\"A%d\", 0)", "ABCD").find("note: A: "), std::string::npos);
}

TEST_F(Usage, FindsBeginningsThatNoKeyHas) {
    EXPECT_EQ(Find("a.cpp", "ZuGetLocalizedString(\"MENV_\" + x); ZuGetLocalizedString(\"A\" + x)",
                   "ABCD", {"--keep", "*"}),
              "src/a.cpp:1:22: error: MENV_: no key begins like this [unknown-key]\n"
              "src/a.cpp:1:57: note: A: keys that begin so may be put together at run time; 1 is "
              "mentioned nowhere else: ABCD [built-key]\n"
              "1 error and 1 note in 2 files\n");
}

TEST_F(Usage, NamesOnlySomeOfManyKeys) {
    EXPECT_EQ(
        Find("a.cpp", "\"KEY_\" + x",
             "KEY_a KEY_b KEY_c KEY_d KEY_e KEY_f KEY_g KEY_h KEY_i KEY_j KEY_k KEY_l"),
        "src/a.cpp:1:1: note: KEY_: keys that begin so may be put together at run time; 12 are "
        "mentioned nowhere else: KEY_a, KEY_b, KEY_c, KEY_d, KEY_e, KEY_f, KEY_g, KEY_h, "
        "KEY_i, KEY_j and 2 more [built-key]\n1 note in 2 files\n");
}

TEST_F(Usage, ReadsSwift) {
    EXPECT_EQ(
        Find("a.swift",
             "let a = ZuGetLocalizedString(\"ABCD\")!\n/* /* */ \"EFGH\" */\n"
             "b(ZuGetLocalizedString(\"X\\(c(\"EFGH\"))\"), TextOr(Keys.IJKL, \"d\"))",
             "ABCD EFGH IJKL"),
        "src/a.swift:3:24: error: X: no key begins like this [unknown-key]\n1 error in 2 files\n");
}

TEST_F(Usage, FindsSourcesByTheirNames) {
    for (const char* const name : {"a.c", "a.h", "a.cc", "a.cpp", "a.cxx", "a.hh", "a.hpp", "a.hxx",
                                   "a.m", "a.mm", "a.swift", "deeper/still/a.inl"}) {
        fs::create_directories(fs::path(Path(std::string("src/") + name)).parent_path());
        Write(std::string("src/") + name, "ZuGetLocalizedString(\"NONE\")");
    }
    fs::create_directories(Path("src/.git"));
    for (const char* const name : {"a.txt", "c", ".a.c", ".git/a.c", "a.strings"}) {
        Write(std::string("src/") + name, "ZuGetLocalizedString(\"HIDDEN\")");
    }
    fs::create_directory_symlink(".", Path("src/loop"));
    const std::string found = FindIn("ABCD", {"--keep", "*"});
    EXPECT_NE(found.find("\n12 errors in 13 files\n"), std::string::npos) << found;
    EXPECT_EQ(found.find("HIDDEN"), std::string::npos);
    EXPECT_EQ(found.substr(0, 13), "src/a.c:1:22:");
    // Twice the same folder, and a file that is named itself.
    EXPECT_NE(
        FindIn("ABCD", {"--keep", "*", "--source", Path("src/"), "--source", Path("src/a.txt")})
            .find("\n13 errors in 14 files\n"),
        std::string::npos);
}

TEST_F(Usage, SaysWhatItDoesNotRead) {
    Write("src/a.c", "\"ABCD\"");
    Write("src/utf16le.m", std::string("\xFF\xFE"
                                       "A\0",
                                       4));
    Write("src/utf16be.m", std::string("\xFE\xFF\0A", 4));
    Write("src/short.m", "\xFF");
    fs::create_symlink("missing", Path("src/link.c"));
    fs::create_symlink("missing", Path("src/other"));
    ASSERT_EQ(mkfifo(Path("src/pipe.h").c_str(), 0600), 0);
    const std::string file = Write("App.strings", "QVLANG=en\nABCD=1\n");
    const std::string warning = "orva-strings: warning: " + Path("src") + '/';
    EXPECT_EQ(Run({"usage", "--source", Path("src"), file}), 0);
    EXPECT_EQ(m_out, "no findings in 3 files\n");
    EXPECT_EQ(m_err.find("link.c: No such file or directory\n") != std::string::npos, true);
    EXPECT_NE(m_err.find(warning + "pipe.h: not a regular file\n"), std::string::npos) << m_err;
    EXPECT_NE(m_err.find(warning + "utf16be.m: not read, since it is UTF-16\n" + warning +
                         "utf16le.m: not read, since it is UTF-16\n"),
              std::string::npos)
        << m_err;
    EXPECT_EQ(std::count(m_err.begin(), m_err.end(), '\n'), 4) << m_err;
    // Not to wait for what may never come.
    EXPECT_EQ(Run({"usage", "--source", Path("src/pipe.h"), file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("src/pipe.h") + ": not a regular file\n");
}

// With a path that is too long to be opened, as not even root can.
TEST_F(Usage, NamesAFolderThatCannotBeRead) {
    const fs::path before = fs::current_path();
    const std::string name(250, 'x');
    Write("src/a.c", "");
    fs::current_path(Path("src"));
    for (int i = 0; i < 17; ++i) {
        fs::create_directory(name);
        fs::current_path(name);
    }
    fs::current_path(before);
    EXPECT_EQ(Run({"usage", "--source", Path("src"), Write("App.strings", "QVLANG=en\n")}), 2);
    EXPECT_NE(m_err.find(Path("src") + '/' + name), std::string::npos) << m_err;
    EXPECT_NE(m_err.find(name + ": File name too long\n"), std::string::npos) << m_err;
    // The folder of the tests is removed by paths, which would be too long here.
    EXPECT_GT(fs::remove_all(Path("src")), 17U);
}

TEST_F(Usage, NeedsSources) {
    const std::string file = Write("App.strings", "QVLANG=en\n");
    EXPECT_EQ(Run({"usage", file}), 2);
    EXPECT_EQ(Run({"usage", "--source", Path("src"), file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("src") +
                         ": no source in C, C++, Objective-C or Swift\n");
    EXPECT_EQ(Run({"usage", "--source", Path("missing"), file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("missing") + ": No such file or directory\n");
    EXPECT_EQ(Run({"usage", "--source", Path("src"), "-"}, "no section"), 1);
    EXPECT_EQ(m_err, "-: error: the file has no section\n");
}

TEST_F(Usage, WritesTheFormatsOfCheck) {
    Write("src/a.c", "ZuGetLocalizedString(\"X:Y\");\"ABC%s\"");
    const std::string file = Write("App.strings", "QVLANG=en\nABCD=1\nEFGH=2\n");
    const auto run = [&](const char* format) {
        EXPECT_EQ(Run({"usage", "--source", Path("src"), "--format", format, "--stdin-name",
                       "App.strings", "-"},
                      "QVLANG=en\nABCD=1\nEFGH=2\n"),
                  1);
        return m_out;
    };
    const std::string source = Path("src/a.c");
    EXPECT_EQ(
        run("github"),
        "::error file=" + source +
            ",line=1,col=22,title=unknown-key::X:Y: there is no such "
            "key\n::notice file=" +
            source +
            ",line=1,col=29,title=built-key::ABC: keys that begin "
            "so may be put together at run time; 1 is mentioned nowhere else: ABCD\n"
            "::warning file=App.strings,line=3,col=1,title=unused-key::EFGH: no source mentions "
            "this key\n1 error, 1 warning and 1 note in 2 files\n");
    const std::string json = run("json");
    EXPECT_NE(json.find("\"severity\":\"note\",\"rule\":\"built-key\""), std::string::npos) << json;
    EXPECT_NE(json.find("\"errors\":1,\"warnings\":1,\"files\":2}"), std::string::npos) << json;
    const std::string sarif = run("sarif");
    EXPECT_NE(sarif.find("{\"id\":\"unused-key\""), std::string::npos) << sarif;
    EXPECT_NE(sarif.find("\"level\":\"note\""), std::string::npos) << sarif;
}

// Many keys, many unknown ones, many beginnings, and names that are the same.
TEST_F(Usage, ReadsManyKeysAndUses) {
    std::string file = "QVLANG=en\n";
    std::string source = "using namespace keys;";
    for (int i = 0; i < 5'000; ++i) {
        const std::string number = std::to_string(i);
        file += "KEY." + number + "=x\n";
        source += "ZuGetLocalizedString(\"NONE" + number + "\"); \"KEY." + number + "%d\"; KEY_;\n";
    }
    for (int i = 0; i < 5'000; ++i) {  // all of one name
        std::string key = "SAME";
        for (int bit = 0; bit < 15; ++bit) {
            key += (i >> bit) % 2 != 0 ? '-' : '.';
        }
        file += key + "=x\n";
        source += "SAME_______________ ";
    }
    Write("src/a.c", source);
    EXPECT_EQ(Run({"usage", "--source", Path("src"), Write("App.strings", file)}), 1);
    EXPECT_NE(m_out.find("\n5000 errors and 10 notes in 2 files\n"), std::string::npos);
}

}  // namespace
