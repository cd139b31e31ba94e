// The command report. What a browser makes of the page is tested by report_page_test.py.
#include <cstddef>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gtest/gtest.h>

#include "tests/tools/ToolTest.h"
#include "tools/orva-strings/page/Html.h"
#include "tools/orva-strings/system/Files.h"

using namespace std::string_literals;  // for texts that hold NUL bytes

namespace {

class Report : public ToolTest {
protected:
    // Runs the command on a file, and takes the page's body.
    void Show(const std::string& bytes, const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments = {"report", "-"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(Run(arguments, bytes), 0) << m_err;
        EXPECT_EQ(m_err, "");
        const std::size_t begin = m_out.find("<main>");
        m_body = m_out.substr(begin, m_out.find("</main>") - begin);
        // Line ends between elements are for whoever reads the source.
        for (std::size_t end = 0; (end = m_body.find(">\n", end)) != std::string::npos;) {
            m_body.erase(end + 1, 1);
        }
    }

    bool Has(const std::string& part) const { return m_body.find(part) != std::string::npos; }

    std::string m_body;
};

TEST(Html, EscapesTexts) {
    EXPECT_EQ(HtmlText("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c&#39;");
    EXPECT_EQ(HtmlText("\t\n é\xC2\x85~"), "\t\n é\xC2\x85~");
    const std::string replaced = "\xEF\xBF\xBD";
    EXPECT_EQ(HtmlText("\0|\x1F|\x7F|\r|\xFF|\xE2\x82"s), replaced + '|' + replaced + '|' +
                                                              replaced + '|' + replaced + '|' +
                                                              replaced + '|' + replaced);
    EXPECT_EQ(HtmlText(""), "");
}

TEST(Html, NamesAScriptByItsDigest) {
    EXPECT_EQ(InlineSource("abc"), "'sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0='");
    EXPECT_EQ(InlineSource(""), "'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='");
}

TEST_F(Report, IsOnePageThatAllowsNothingButItsOwnScript) {
    Show("QVLANG=en\n");
    EXPECT_EQ(
        m_out.find("<!DOCTYPE html>\n<html lang=\"en\">\n<!-- Written by orva-strings report"), 0U);
    EXPECT_EQ(m_out.substr(m_out.size() - 8), "</html>\n");
    for (const auto& [tag, directive] :
         {std::pair{"style", "style-src "}, {"script", "script-src "}}) {
        const std::string open = std::string("<") + tag + ">";
        const std::size_t begin = m_out.find(open) + open.size();
        const std::string source = m_out.substr(begin, m_out.find(std::string("</") + tag) - begin);
        EXPECT_GT(source.size(), 500U);
        EXPECT_NE(m_out.find(directive + InlineSource(source) + "; "), std::string::npos);
        EXPECT_EQ(m_out.find(open, begin), std::string::npos) << "only one";
    }
    EXPECT_NE(m_out.find("content=\"default-src 'none'; "), std::string::npos);
    for (const char* const other :
         {"http:", "https:", "url(", "@import", " src=", " href=", " on", "style="}) {
        const std::string head = m_out.substr(0, m_out.find("<style>"));
        EXPECT_EQ(head.find(other), std::string::npos) << other;
        EXPECT_FALSE(Has(other)) << other;
    }
}

TEST_F(Report, DrawsABarForEachLanguage) {
    const std::string base = Write("base", "QVLANG=en\nAAAA=0\nBBBB=2\nQVLANG=de\nAAAA=a\n");
    Show(
        "QVLANG=en\nAAAA=1\nBBBB=2\nCCCC=3\nDDDD=4\nEEEE=5\n"
        "QVLANG=de\nAAAA=a\nBBBB=2\nCCCC=c\nDDDD=\n"
        "QVLANG=fr\nAAAA=a\nBBBB=b\nCCCC=c\nDDDD=d\nEEEE=e\n",
        {"--base", base});
    EXPECT_TRUE(Has(
        "<bdi>en</bdi></span><span class=\"bar-space\"></span><span>reference, 5 texts</span>"));
    EXPECT_TRUE(
        Has("<bdi>de</bdi></span><svg class=\"bar\" role=\"img\" aria-label=\"40 % translated\" "
            "viewBox=\"0 0 5 1\" preserveAspectRatio=\"none\">"
            "<rect class=\"ok\" x=\"0\" width=\"2\" height=\"1\"/>"
            "<rect class=\"stale\" x=\"2\" width=\"1\" height=\"1\"/>"
            "<rect class=\"empty\" x=\"3\" width=\"1\" height=\"1\"/></svg>"
            "<span>40 %, <span class=\"missing\">1 missing</span>, "
            "<span class=\"stale\">1 stale</span>, <span class=\"empty\">1 empty</span></span>"))
        << m_body;
    EXPECT_TRUE(Has("<span>100 %</span>"));
    // The matrix has the texts that are not complete.
    EXPECT_TRUE(
        Has("<tr><th scope=\"col\">Key</th><th scope=\"col\"><bdi>de</bdi></th>"
            "<th scope=\"col\"><bdi>fr</bdi></th></tr></thead><tbody>"
            "<tr><th scope=\"row\" class=\"key\">AAAA</th><td class=\"stale\">stale</td>"
            "<td class=\"ok\">✓</td></tr>"
            "<tr><th scope=\"row\" class=\"key\">DDDD</th><td class=\"empty\">empty</td>"
            "<td class=\"ok\">✓</td></tr>"
            "<tr><th scope=\"row\" class=\"key\">EEEE</th><td class=\"missing\">missing</td>"
            "<td class=\"ok\">✓</td></tr></tbody>"))
        << m_body;
}

TEST_F(Report, ShowsTextsSideBySideWithTheirLines) {
    Show("QVLANG=en\nAAAA=\"1\\n2\"\nBBBB=2\nQVLANG=de\n\nAAAA=a\n");
    EXPECT_TRUE(Has("<details><summary><bdi>de</bdi></summary><table class=\"texts\">")) << m_body;
    EXPECT_TRUE(
        Has("<th scope=\"row\" class=\"key\">AAAA</th>"
            "<td><span class=\"line\">line 2</span> "
            "<div class=\"text\" dir=\"auto\">1\n2</div></td>"
            "<td><span class=\"line\">line 6</span> "
            "<div class=\"text\" dir=\"auto\">a</div></td></tr>"))
        << m_body;
    EXPECT_TRUE(
        Has("<div class=\"text\" dir=\"auto\">2</div></td>"
            "<td class=\"badge missing\">missing</td></tr>"));
    Show("QVLANG=en\nAAAA=1\nQVLANG=de\nAAAA=\n");
    EXPECT_TRUE(Has("<span class=\"line\">line 4</span> <span class=\"badge empty\">empty</span>"));
}

TEST_F(Report, GroupsFindingsByRule) {
    Show("QVLANG=en\nAAAA=%d\nBBBB=2\nnote\nQVLANG=de\nAAAA=%s\nmore\n");
    EXPECT_TRUE(
        Has("<select><option value=\"\">all rules</option>"
            "<option value=\"unread-line\">unread-line (2)</option>"
            "<option value=\"placeholder\">placeholder (1)</option>"
            "<option value=\"missing-key\">missing-key (1)</option></select>"))
        << m_body;
    EXPECT_TRUE(
        Has("<details open data-rule=\"placeholder\"><summary><strong>placeholder (1)</strong>"));
    EXPECT_TRUE(
        Has("<li><strong>error</strong><span class=\"line\">line 6</span> "
            "<span class=\"quiet\"><bdi>de</bdi></span><bdi>AAAA: the reference has %d, but "
            "this text has %s</bdi></li>"))
        << m_body;
    Show("\xFF\xFE\nQVLANG=en\n");
    EXPECT_TRUE(
        Has("<li><strong>error</strong><bdi>no load finds a section, since the file is in "
            "UTF-16; save it in UTF-8</bdi></li>"))
        << m_body;
}

TEST_F(Report, SaysThatNothingIsWrong) {
    Show("QVLANG=en\nAAAA=1\nQVLANG=de\nAAAA=a\n");
    EXPECT_TRUE(Has("<p>Every language has every text.</p>"));
    EXPECT_TRUE(Has("<p>The check has found nothing.</p>"));
    Show("QVLANG=en\nAAAA=1\n");
    EXPECT_FALSE(Has("<h3>Texts</h3>"));
    EXPECT_FALSE(Has("<h3>Missing"));
    Show("QVLANG=en\nQVLANG=de\n");
    EXPECT_TRUE(Has("aria-label=\"100 % translated\" viewBox=\"0 0 1 1\""));
}

TEST_F(Report, NeverShowsAProtectedText) {
    Show(
        "QVLANG=en\nIDE_A=secret\nIDE =secret\n IDE_B=secret\nide_c=\"secret\"\nIdE.d=secret\n"
        "QVLANG=de\nIDE_A=secret\nIDE_B =secret\nide_c=secret\nIDE_E=secret\n");
    EXPECT_EQ(m_out.find("secret"), std::string::npos) << m_body;
    EXPECT_TRUE(
        Has("<span class=\"line\">line 2</span> <div class=\"quiet\">protected</div></td>"));
    Show(
        "QVLANG=en\n\"IDE_QUOTED\" = \"secret-1\"\n- IDE_DASH=\"secret-2\"\nDIE_SWAP=\"secret-3\"\n"
        "\"MENU_X\": \"IDE_IN=\"secret-4\"\nIDE_NAME:\"secret-5\"=\"\"\n"
        "MENU_SAME=\"secret-1\"\nMENU_HINT=\"see secret-2 there\"\nIDE_PH=\"%(secret-7)s\"\n"
        "QVLANG=de\nIDE_PH=x\nMENU_OK=gut\n");
    EXPECT_EQ(m_out.find("secret-"), std::string::npos) << m_body;
    EXPECT_TRUE(Has("<th scope=\"row\" class=\"key\">IDE_NAME</th>")) << m_body;
    EXPECT_TRUE(Has("about a protected text"));
    // Too short to be looked for in a text: in a key, and in what a finding quotes.
    Show(
        "QVLANG=en\nIDE_KEY:\"S4\"=\"\"\nIDE_PH=\"a long text with "
        "%(S7)s\"\nQVLANG=de\nIDE_PH=x\n");
    EXPECT_EQ(m_out.find("S4"), std::string::npos) << m_body;
    EXPECT_EQ(m_out.find("S7"), std::string::npos) << m_body;
    Show("QVLANG=en\nADE_A=one\nIXE_A=two\nIDX_A=three\nID  =four\nQVLANG=de\n");
    EXPECT_TRUE(Has(">one<") && Has(">two<") && Has(">three<") && Has(">four<"));
}

TEST_F(Report, TrustsNothingInAFile) {
    const std::string hostile = "<script>x</script>\"'><img src=x onerror=y>&amp;";
    const std::string escaped =
        "&lt;script&gt;x&lt;/script&gt;&quot;&#39;&gt;&lt;img src=x onerror=y&gt;&amp;amp;";
    const std::string key = "<img onerror>";
    Show("QVLANG=" + hostile + "\n" + key + "=" + "x>\n" + "AAAA=" + "<b>\n<!-- \n" + "QVLANG=de" +
         hostile + "\n" + hostile + "\nAAAA=</td>%s\n");
    EXPECT_TRUE(Has("<bdi>" + escaped + "</bdi>")) << m_body;
    EXPECT_TRUE(Has("class=\"key\">&lt;img onerror&gt;</th>"));
    EXPECT_FALSE(Has("<script")) << m_body;
    EXPECT_FALSE(Has("<img"));
    EXPECT_FALSE(Has("<b>"));
    EXPECT_FALSE(Has("<!--"));
    const std::string file = Write("<i>&.strings", "QVLANG=en\n");
    EXPECT_EQ(Run({"report", file}), 0);
    EXPECT_NE(m_out.find("&lt;i&gt;&amp;.strings</bdi></h2>"), std::string::npos);
}

TEST_F(Report, WritesAFileButReplacesNoOther) {
    const std::string file = Write("x", "QVLANG=en\nAAAA=1\n");
    const std::string page = Path("page.html");
    EXPECT_EQ(Run({"report", "-o", page, file, "-"}, "QVLANG=fr\n"), 0);
    EXPECT_EQ(m_out, "");
    EXPECT_EQ(m_err, page + ": wrote the report on 2 files\n");
    EXPECT_NE(ReadFile(page).find("<bdi>fr</bdi>"), std::string::npos);
    EXPECT_EQ(Run({"report", "-o", page, file}), 0);
    EXPECT_EQ(m_err, page + ": wrote the report on 1 file\n");
    EXPECT_EQ(ReadFile(page).find("<bdi>fr</bdi>"), std::string::npos);
    EXPECT_EQ(Run({"report", "-o", Write("empty", ""), file}), 0);
    EXPECT_EQ(Run({"report", "-o", file, file}), 2);
    EXPECT_EQ(m_err, "orva-strings: error: " + file +
                         ": not replaced, since 'orva-strings report' has not written it\n");
    EXPECT_EQ(ReadFile(file), "QVLANG=en\nAAAA=1\n");
    EXPECT_EQ(Run({"report", "-o", "-", file}), 0);
    EXPECT_EQ(m_out, ReadFile(page));
    EXPECT_EQ(Run({"report", "-o", Path("none"), Path("missing")}), 2);
    EXPECT_FALSE(std::filesystem::exists(Path("none")));
    EXPECT_EQ(Run({"report", "-o", Path("none"), Write("bad", "AAAA=1\n")}), 1);
    EXPECT_FALSE(std::filesystem::exists(Path("none")));
    EXPECT_EQ(Run({"report", file, Path("missing")}), 2);
    EXPECT_EQ(m_out, ReadFile(page));
}

}  // namespace

TEST_F(Report, ReplacesNoPipeOrDevice) {
    const std::string file = Write("file.strings", "QVLANG=en\n");
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    for (const std::string& output : {Path("pipe"), std::string("/dev/full")}) {
        EXPECT_EQ(Run({"report", "-o", output, file}), 2);
        EXPECT_EQ(m_err,
                  "orva-strings: error: " + output + ": only a regular file can be replaced\n");
    }
}
