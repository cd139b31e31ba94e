// The command where, run in this process, with folders laid out like an application. Its output is
// compared whole.
#include <filesystem>
#include <string>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"

namespace fs = std::filesystem;

namespace {

class Where : public ToolTest {
protected:
    // Makes a file with all folders above it.
    std::string Make(const std::string& name, const std::string& bytes = "") {
        fs::create_directories(fs::path(Path(name)).parent_path());
        return fs::canonical(Write(name, bytes)).string();
    }

    std::string MakeProgram(const std::string& name, const std::string& bytes = "") {
        std::string path = Make(name, bytes);
        fs::permissions(path, fs::perms::owner_exec, fs::perm_options::add);
        return path;
    }

    static std::string Found(const std::string& executable, const std::string& path) {
        return "executable: " + executable + "\npath:       " + path + '\n';
    }

    const std::string kSource = "QVLANG=English\nABCD=1\nQVLANG=Deutsch\nABCD=1\nEFGH=2\n";
    const std::string kSections = "sections:   English, Deutsch\n";
};

TEST_F(Where, FindsTheFileInABundle) {
    const std::string host = MakeProgram("Host.app/Contents/MacOS/Host");
    const std::string file = Make("Host.app/Contents/Resources/Host.strings", kSource);
    EXPECT_EQ(Run({"where", host, "Host.strings"}), 0);
    EXPECT_EQ(m_out, Found(host, file) + kSections + "load:       2 entries, section English\n");
    EXPECT_EQ(Run({"where", host, "Host.strings", "deutsch"}), 0);
    EXPECT_EQ(m_out, Found(host, file) + kSections + "load:       3 entries, section Deutsch\n");
    EXPECT_EQ(m_err, "");
    EXPECT_EQ(Run({"where", host, "Host.strings", "Suomi"}), 0);
    EXPECT_EQ(m_out, Found(host, file) + kSections + "load:       2 entries, section English\n");
    EXPECT_EQ(m_err,
              "orva-strings: warning: there is no section Suomi, so a load takes the first one\n");
}

TEST_F(Where, FindsTheFileInThePlacesOfLinux) {
    const std::string host = MakeProgram("usr/bin/host");
    const std::string beside = Make("usr/bin/a.strings", kSource);
    const std::string load = kSections + "load:       2 entries, section English\n";
    EXPECT_EQ(Run({"where", host, "a.strings"}), 0);
    EXPECT_EQ(m_out, Found(host, beside) + load);
    const std::string shared = Make("usr/share/host/a.strings", kSource);
    EXPECT_EQ(Run({"where", host, "a.strings"}), 0);
    EXPECT_EQ(m_out, Found(host, shared) + load);
    // A process finds the executable at the end of its links.
    fs::create_symlink("usr/bin/host", Path("link"));
    EXPECT_EQ(Run({"where", Path("link"), "a.strings"}), 0);
    EXPECT_EQ(m_out, Found(host, shared) + load);
}

TEST_F(Where, SaysWhyALoadReturns0) {
    const std::string host = MakeProgram("Host.app/Contents/MacOS/Host");
    const std::string resources =
        fs::path(host).parent_path().parent_path().string() + "/Resources/";
    Make("Host.app/Contents/Resources/empty", "no section\n");
    Make("Host.app/Contents/Resources/folder/file");
    const auto expect = [&](const std::string& file, const std::string& path,
                            const std::string& more, const std::string& reason) {
        EXPECT_EQ(Run({"where", host, file, "English"}), 1) << file;
        EXPECT_EQ(m_out, Found(host, path) + more);
        EXPECT_EQ(m_err.substr(m_err.find("orva-strings: ")),
                  "orva-strings: error: a load returns 0: " + reason + '\n');
    };
    expect("missing", resources + "missing", "", "No such file or directory");
    expect("empty/file", resources + "empty/file", "", "Not a directory");
    expect("folder", resources + "folder", "", "that is a folder");
    expect("empty", resources + "empty", "sections:   \n", "the file has no section");
    expect("\xFF", "", "", "the file's name is not UTF-8");
    expect(std::string(1024, 'a'), "", "",
           "the path is too long, or the bundle has no resources folder");
}

TEST_F(Where, ReportsLostHeaders) {
    const std::string host = MakeProgram("Host.app/Contents/MacOS/Host");
    const std::string file =
        Make("Host.app/Contents/Resources/a", "\xEF\xBB\xBFQVLANG=en\nQVLANG=\n");
    EXPECT_EQ(Run({"where", host, "a"}), 0);
    EXPECT_EQ(m_out, Found(host, file) + "sections:   \"\"\nload:       1 entry, section \"\"\n");
    EXPECT_EQ(m_err.substr(0, file.size() + 11), file + ":1: warning");
}

TEST_F(Where, NeedsTheExecutable) {
    EXPECT_EQ(Run({"where", Path("missing"), "a.strings"}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + Path("missing") + ": No such file or directory\n");
    EXPECT_EQ(Run({"where", Path("missing")}), 2);
    for (const std::string& other :
         {Make("host.cpp"), MakeProgram("host.py", "#!/usr/bin/python3\n"), Path("")}) {
        EXPECT_EQ(Run({"where", other, "a.strings"}), 2);
        EXPECT_EQ(m_err, "orva-strings: error: " + other +
                             " is not a program; of a script, name the interpreter\n");
    }
}

// Where a host would wait.
TEST_F(Where, FindsPipesAndDevices) {
    const std::string host = MakeProgram("usr/bin/host");
    const std::string pipe = fs::path(host).parent_path() / "a.strings";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string device = fs::path(host).parent_path() / "b.strings";
    fs::create_symlink("/dev/zero", device);
    for (const std::string& path : {pipe, device}) {
        EXPECT_EQ(Run({"where", host, fs::path(path).filename()}), 1);
        EXPECT_EQ(m_out, Found(host, path));
        EXPECT_EQ(m_err,
                  "orva-strings: error: a load may never return: that is a pipe or a device\n");
    }
}

}  // namespace
