// Files made to break a load: the result and the table are as the format and the header promise.
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <OrvaLanguage/KorString.h>
#include <OrvaLanguage/OrvaLanguage.h>
#include <gtest/gtest.h>

#include "fuzz/NaiveStrings.h"
#include "support/TemporaryBundle.h"
#include "tests/strings/HostileFiles.h"
#include "tests/support/PipeWriter.h"

namespace {

std::string Repeated(std::string_view text, std::size_t times) {
    std::string repeated;
    repeated.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        repeated += text;
    }
    return repeated;
}

TEST_F(HostileFiles, TenMillionLinesAreReadToTheEnd) {
    const std::size_t lines = 10'000'000 / kPart;
    for (const char* line : {"x\n", "\n", "=\n", "\r\n", "\"\n"}) {
        const std::string many = Repeated(line, lines);
        SCOPED_TRACE(::testing::PrintToString(line));
        EXPECT_TRUE(Loads(many + "QVLANG=en\nABCD=1\n" + many + "EFGH=2", "en",
                          {{"QVLANG", "en"}, {"ABCD", "1"}, {"EFGH", "2"}}));
    }
}

TEST_F(HostileFiles, AMillionSectionsAreSearchedToTheLast) {
    const std::size_t sections = 1'000'000 / kPart;
    std::string file = "QVLANG=first\nABCD=1\n";
    for (std::size_t i = 2; i < sections; ++i) {
        file += "QVLANG=section " + std::to_string(i) + "\n";
    }
    file += "QVLANG=last\nABCD=2\n";
    EXPECT_TRUE(Loads(file, "LAST", {{"QVLANG", "last"}, {"ABCD", "2"}}));
    EXPECT_TRUE(Loads(file, "none of them", {{"QVLANG", "first"}, {"ABCD", "1"}}));
    EXPECT_TRUE(Loads(file, "section 2", {{"QVLANG", "section 2"}}));
}

TEST_F(HostileFiles, AMillionEntriesWithOneKeyKeepTheFirst) {
    std::string file = "QVLANG=en\n";
    for (std::size_t i = 1; i <= 1'000'000 / kPart; ++i) {
        file += "SAME=" + std::to_string(i) + "\n";
    }
    file += "QVLANG=de\n";
    EXPECT_TRUE(Loads(file, "en", {{"QVLANG", "en"}, {"SAME", "1"}}));
    EXPECT_STREQ(ZuGetLocalizedString("SAME"), "1");
}

TEST_F(HostileFiles, LongNamesAreToldApartByAnyByte) {
    for (const std::size_t length : Sizes{255, 256, 1023, 1024, 4096, 1'000'000}) {
        const std::string name(length, 'n');
        const std::string other = name.substr(1) + 'm';
        const std::string file =
            "QVLANG=first\nABCD=1\nQVLANG=" + name + "\nABCD=2\nQVLANG=" + other + "\nABCD=3\n";
        EXPECT_TRUE(
            Loads(file, std::string(length, 'N').c_str(), {{"QVLANG", name}, {"ABCD", "2"}}));
        EXPECT_TRUE(Loads(file, other.c_str(), {{"QVLANG", other}, {"ABCD", "3"}}));
        for (const std::string& none : {name + 'n', name.substr(1)}) {
            EXPECT_TRUE(Loads(file, none.c_str(), {{"QVLANG", "first"}, {"ABCD", "1"}}));
        }
    }
}

TEST_F(HostileFiles, KeysOfAMegabyteAreToldApartByAnyByte) {
    const std::string key(1'000'000, 'k');
    Table table = {{"QVLANG", "en"}, {key, "all k"}};
    // At the front, at the back, in the middle, and by length alone.
    for (const std::size_t place : Sizes{0, 15, 16, 499'999, 999'983, 999'984, 999'999}) {
        std::string other = key;
        other[place] = 'K';
        table[other] = "K at " + std::to_string(place);
        table[key.substr(0, place + 4)] = "the first " + std::to_string(place);
    }
    std::string file = "QVLANG=en\n";
    for (const auto& [each, value] : table) {
        file.append(each == "QVLANG" ? "" : each + "=" + value + "\n");
    }
    EXPECT_TRUE(Loads(file, "en", table));
    for (const auto& [each, value] : table) {
        EXPECT_STREQ(ZuGetLocalizedString(each.c_str()), value.c_str());
    }
}

TEST_F(HostileFiles, ValuesOfSixteenMegabytesAreWhole) {
    const std::size_t size = 16 * kMebi / kPart;
    const std::string text(size, 'v');
    EXPECT_TRUE(Loads("QVLANG=en\nABCD=" + text + "\n", "en", {{"QVLANG", "en"}, {"ABCD", text}}));
    EXPECT_TRUE(
        Loads("QVLANG=en\nABCD=\"" + text + "\"\n", "en", {{"QVLANG", "en"}, {"ABCD", text}}));
    // Texts made of what the line parser looks for.
    const struct {
        std::string text;
        std::string value;
    } cases[] = {
        {Repeated("\\n", size / 2), std::string(size / 2, '\n')},
        {std::string(size, '\\'), std::string(size, '\\')},
        {std::string(size, '"'), std::string(size, '"')},
        {std::string(size, '='), std::string(size, '=')},
        {std::string(size, '\r'), std::string(size, '\r')},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE("of " + ::testing::PrintToString(c.text.substr(0, 2)));
        EXPECT_TRUE(Loads("QVLANG=en\nABCD=\"" + c.text + "\"\nEFGH=1", "en",
                          {{"QVLANG", "en"}, {"ABCD", c.value}, {"EFGH", "1"}}));
    }
}

TEST_F(HostileFiles, EveryByteAtEveryPlaceIsReadAsTheFormatSays) {
    const std::string file = "QVLANG=en\nKEY1=\"a\\nb\"\r\nKEY1=c\nQVLANG=de\nKEY2=d";
    m_bundle.Write("x", file);
    const int handle = open(Path("x").c_str(), O_WRONLY);
    ASSERT_NE(handle, -1);
    const auto rewrite = [&](const std::string& bytes) {
        return ftruncate(handle, static_cast<off_t>(bytes.size())) == 0 &&
               pwrite(handle, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size());
    };
    for (const std::size_t replaced : Sizes{1, 0}) {  // 0: the byte is inserted
        for (std::size_t place = 0; place < file.size(); ++place) {
            for (int byte = 0; byte < 256; ++byte) {
                std::string bytes = file;
                bytes.replace(place, replaced, 1, static_cast<char>(byte));
                ASSERT_TRUE(rewrite(bytes));
                for (const char* language : {"en", "DE"}) {
                    const Table expected = naive::Table(bytes, language);
                    ASSERT_EQ(Load(language), static_cast<int>(expected.size()))
                        << language << " of " << ::testing::PrintToString(bytes);
                    ASSERT_EQ(LoadedTable(), expected)
                        << language << " of " << ::testing::PrintToString(bytes);
                }
            }
        }
    }
    close(handle);
}

TEST_F(HostileFiles, APipeLoadsAsAFileDoes) {
    // Longer than a pipe's buffer, so that reading and writing overlap.
    const std::string file = LongFile(std::string(200, 't'));
    const PipeWriter writer(Path("pipe"), [&] { std::ofstream(Path("pipe")) << file; });
    EXPECT_EQ(Load("de", "pipe"), 1001);
    EXPECT_TRUE(TableIs(naive::Table(file, "de")));
}

// Whether this process has a file open. Of the descriptors only the lowest are looked at, since the
// system gives those first.
bool IsOpen(const std::filesystem::path& path) {
    struct stat file = {};
    EXPECT_EQ(stat(path.c_str(), &file), 0);
    constexpr int kLowest = 256;
    for (int descriptor = 0; descriptor < kLowest; ++descriptor) {
        struct stat opened = {};
        if (fstat(descriptor, &opened) == 0 && opened.st_dev == file.st_dev &&
            opened.st_ino == file.st_ino) {
            return true;
        }
    }
    return false;
}

TEST_F(HostileFiles, APipeThatLacksTheSectionIsReadFromASecondWriterToo) {
    const std::string pipe = Path("pipe");
    // Longer than a pipe's buffer, so when it is written the load has the pipe open.
    const std::string first = LongFile(std::string(200, 't'));
    const PipeWriter writers(pipe, [&] {
        std::ofstream(pipe) << first;
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
        while (IsOpen(pipe) && std::chrono::steady_clock::now() < end) {
            std::this_thread::yield();
        }
        std::ofstream(pipe) << "QVLANG=fr\nABCD=second\n";
    });
    EXPECT_EQ(Load("none", "pipe"), 2);
    EXPECT_TRUE(TableIs({{"QVLANG", "fr"}, {"ABCD", "second"}}));
}

TEST_F(HostileFiles, WhatIsNotOpenedKeepsTheTableAndWhatHoldsNothingEmptiesIt) {
    m_bundle.Write("x", "QVLANG=en\nABCD=1\n");
    const Table before = {{"QVLANG", "en"}, {"ABCD", "1"}};
    std::filesystem::create_directory(Path("folder"));
    std::filesystem::create_symlink("folder", Path("link to a folder"));
    std::filesystem::create_symlink("/dev/null", Path("null"));
    std::filesystem::create_symlink("nowhere", Path("dangling"));
    std::filesystem::create_symlink("loop", Path("loop"));
    std::filesystem::create_symlink("there", Path("back"));
    std::filesystem::create_symlink("back", Path("there"));
    m_bundle.Write("empty", "");
    const struct {
        const char* name;
        Table after;
    } cases[] = {
        {"folder", {}},       {"link to a folder", {}}, {"null", {}},      {"empty", {}},
        {"dangling", before}, {"loop", before},         {"there", before}, {"dangling/x", before},
        {"loop/x", before},   {"null/x", before},       {"x/x", before},   {"folder/x", before},
        {"x/../x", before},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(Load("en"), 2);
        EXPECT_EQ(Load("en", c.name), 0);
        EXPECT_EQ(LoadedTable(), c.after);
        // After a load that returned 0, lookups answer null whatever the table holds.
        EXPECT_EQ(ZuGetLocalizedString("ABCD"), nullptr);
    }
}

// While it lives, the process does not run as root, which may read everything.
class NotRoot {
public:
    NotRoot() : m_user(geteuid()) {
        constexpr uid_t kNobody = 65534;
        m_isOther = m_user != 0 || seteuid(kNobody) == 0;
    }
    ~NotRoot() { EXPECT_EQ(seteuid(m_user), 0); }
    NotRoot(const NotRoot&) = delete;
    NotRoot& operator=(const NotRoot&) = delete;

    bool IsOther() const { return m_isOther; }

private:
    uid_t m_user;
    bool m_isOther;
};

TEST_F(HostileFiles, AFileThatMayNotBeReadKeepsTheTable) {
    m_bundle.Write("x", "QVLANG=en\nABCD=1\n");
    m_bundle.Write("secret", "QVLANG=en\nABCD=2\n");
    std::filesystem::permissions(Path("secret"), std::filesystem::perms::none);
    // The other user must be able to reach the files.
    std::filesystem::path folder = m_bundle.Resources();
    for (int i = 0; i < 3; ++i, folder = folder.parent_path()) {
        std::filesystem::permissions(folder, std::filesystem::perms(0755));
    }
    std::filesystem::permissions(Path("x"), std::filesystem::perms(0644));

    const NotRoot user;
    if (!user.IsOther() || Load("en") != 2) {
        GTEST_SKIP() << "this root may not become another user, or none may read here";
    }
    EXPECT_EQ(Load("en", "secret"), 0);
    EXPECT_EQ(LoadedTable(), (Table{{"QVLANG", "en"}, {"ABCD", "1"}}));
}

}  // namespace
