// The command reveal, run in this process.
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "tests/support/StoredForm.h"
#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/system/Files.h"

namespace {

class Reveal : public ToolTest {};

// Each error of reveal, in a file with a text that it can reveal.
TEST_F(Reveal, OnlyWarnsIfLenient) {
    const std::string stored = "IDE_A=\"" + Stored("text", DevelopmentKey()) + "\"\n";
    const std::string damaged = "IDE_B=\"" + std::string(64, '0') + "\"\n";
    const std::string unwritable = "IDE_B=\"" + Stored("a\\nb", DevelopmentKey()) + "\"\n";
    const std::pair<std::string, std::string> cases[] = {
        {"QVLANG=en\n" + stored + damaged,
         ":3: error: IDE_B: the value looks stored but does not decode: it was damaged or made "
         "with "
         "another key\n"},
        {"QVLANG=en\n" + stored + unwritable,
         ":3: error: IDE_B: the text can't be written as a quoted value that reads back the "
         "same\n"},
        {"IDE_B=\"x\"\nQVLANG=en\n" + stored,
         ":1: error: IDE_B: this entry is not read, because it comes before the first section\n"},
        {"MENU=1\n", ": error: the file has no section\n"},
        {"", ": error: the file has no section\n"},
    };
    for (const auto& [bytes, error] : cases) {
        SCOPED_TRACE(bytes);
        const std::string file = Write("x", bytes);
        EXPECT_EQ(Run({"reveal", file}), 1);
        EXPECT_EQ(m_out, "");
        EXPECT_EQ(m_err, file + error);
        std::string warning = error;
        warning.replace(warning.find("error"), 5, "warning");
        std::string revealed = bytes;
        if (const std::size_t at = bytes.find(stored); at != std::string::npos) {
            revealed.replace(at, stored.size(), "IDE_A=\"text\"\n");
        }
        EXPECT_EQ(Run({"reveal", "--lenient", file}), 0);
        EXPECT_EQ(m_out, revealed);
        EXPECT_EQ(m_err, file + warning);
        EXPECT_EQ(Run({"reveal", "--lenient", "--in-place", file}), 0);
        EXPECT_EQ(ReadFile(file), revealed);
    }
    EXPECT_EQ(Run({"reveal", "--lenient", Path("missing")}), 2);
    EXPECT_EQ(m_out, "");
}

TEST_F(Reveal, LeavesItsWarningsAsTheyAreIfLenient) {
    const std::string bytes = "QVLANG=en\nIDE_A=text\"\n";
    const std::string warning =
        "-:2: warning: IDE_A: the value begins at the first quote; the text before it stays "
        "readable (is the opening quote missing?)\n";
    for (const std::string option : {"--lenient", "--key-file=" DEVELOPMENT_KEY}) {
        EXPECT_EQ(Run({"reveal", option, "-"}, bytes), 0);
        EXPECT_EQ(m_out, bytes);
        EXPECT_EQ(m_err, warning);
    }
}

}  // namespace
