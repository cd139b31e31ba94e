// What is read in an XLIFF document, and what is refused.
#include <algorithm>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tools/orva-strings/exchange/XliffReader.h"

using namespace std::string_literals;  // for texts that hold NUL bytes
using ::testing::PrintToString;

namespace {

const std::string kNamespace = "xmlns=\"urn:oasis:names:tc:xliff:document:1.2\"";
const std::string kStart = "<xliff version=\"1.2\" " + kNamespace +
                           "><file source-language=\"en\" target-language=\"de\"><body>";
const std::string kEnd = "</body></file></xliff>";

// A document of these units.
std::string Document(const std::string& units) {
    return kStart + units + kEnd;
}

std::string Unit(const std::string& content) {
    return "<trans-unit id=\"KEY\">" + content + "</trans-unit>";
}

struct Parts {
    std::vector<XliffFile> files;
    std::vector<XliffUnit> units;
};

Parts Read(const std::string& document, std::size_t pieceSize = 65'536) {
    Parts parts;
    XliffReader reader([&](const XliffFile& file) { parts.files.push_back(file); },
                       [&](const XliffUnit& unit) { parts.units.push_back(unit); });
    for (std::string_view rest = document; !rest.empty();
         rest.remove_prefix(std::min(pieceSize, rest.size()))) {
        reader.Read(rest.substr(0, pieceSize));
    }
    reader.Finish();
    return parts;
}

// The unit of a document that has a single one.
XliffUnit UnitOf(const std::string& content) {
    const Parts parts = Read(Document(Unit(content)));
    EXPECT_EQ(parts.units.size(), 1U) << content;
    return parts.units.at(0);
}

// "LINE: TEXT"; empty if the document can be read.
std::string ErrorOf(const std::string& document) {
    try {
        Read(document);
    } catch (const XliffError& error) {
        return std::to_string(error.Line() + 1) + ": " + error.what();
    }
    return "";
}

TEST(XliffReader, ReadsFilesAndTheirUnits) {
    for (const std::size_t pieceSize : {std::size_t{1}, std::size_t{7}, std::size_t{65'536}}) {
        SCOPED_TRACE(pieceSize);
        const Parts parts = Read(
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!-- made by hand --><xliff version=\"1.2\" " +
                kNamespace +
                ">\n"
                "<file original=\"App.strings\" source-language=\"en\" target-language=\"de-AT\">\n"
                "<header><note>a <trans-unit id=\"no\"><source/></trans-unit></note></header>\n"
                "<body>\n"
                "<trans-unit id=\"MENU_OPEN\" resname=\"NAME\" approved=\"yes\">\n"
                "<source xml:lang=\"en\">Open &amp; <![CDATA[<read>]]></source>\n"
                "<target state=\"translated\">&#xD6;ffnen\r\n&lt;b&#13;</target>\n"
                "<note from=\"developer\">Not <x/> this</note>\n"
                "<alt-trans><source>a</source><target state=\"new\">b</target></alt-trans>\n"
                "</trans-unit>\n"
                "<group><group><trans-unit id=\"A\"><source> </source></trans-unit></group>\n"
                "<trans-unit id=\"B\"><source/><target/></trans-unit></group>\n"
                "<bin-unit id=\"C\"><source>x</source></bin-unit>\n"
                "<trans-unit><target>c</target><source>s</source></trans-unit>\n"
                "</body><source>x</source></file>\n"
                "<file source-language=\"de\"/>\n"
                "</xliff>\n",
            pieceSize);
        ASSERT_EQ(parts.files.size(), 2U);
        EXPECT_EQ(parts.files[0].line, 2U);
        EXPECT_EQ(parts.files[0].sourceLanguage, "en");
        EXPECT_EQ(parts.files[0].targetLanguage, "de-AT");
        EXPECT_EQ(parts.files[1].sourceLanguage, "de");
        EXPECT_EQ(parts.files[1].targetLanguage, "");
        ASSERT_EQ(parts.units.size(), 4U);
        const XliffUnit& first = parts.units[0];
        EXPECT_EQ(first.line, 5U);
        EXPECT_EQ(first.id, "MENU_OPEN");
        EXPECT_EQ(first.resname, "NAME");
        EXPECT_EQ(first.source, "Open & <read>");
        EXPECT_EQ(first.target, "\u00D6ffnen\n<b\r");
        EXPECT_EQ(first.state, "translated");
        EXPECT_EQ(first.lost, "");
        EXPECT_EQ(parts.units[1].id, "A");
        EXPECT_EQ(parts.units[1].resname, "");
        EXPECT_EQ(parts.units[1].source, " ");
        EXPECT_EQ(parts.units[1].target, std::nullopt);
        EXPECT_EQ(parts.units[1].state, "");
        EXPECT_EQ(parts.units[2].id, "B");
        EXPECT_EQ(parts.units[2].source, "");
        EXPECT_EQ(parts.units[2].target, "");
        EXPECT_EQ(parts.units[3].id, "");
        EXPECT_EQ(parts.units[3].source, "s");
        EXPECT_EQ(parts.units[3].target, "c");
    }
}

TEST(XliffReader, KnowsElementsByTheirNamespace) {
    const std::string other = "xmlns:o=\"urn:other\"";
    const Parts parts = Read(
        "<l:xliff version=\"1.2\" xmlns:l=\"urn:oasis:names:tc:xliff:document:1.2\" " + other +
        "><o:file><l:body><l:trans-unit id=\"A\"/></l:body></o:file><l:file "
        "target-language=\"de\"><l:body><o:trans-unit id=\"B\"/><l:trans-unit id=\"C\">"
        "<o:target>x</o:target><l:target>y</l:target></l:trans-unit></l:body></l:file></l:xliff>");
    ASSERT_EQ(parts.files.size(), 1U);
    ASSERT_EQ(parts.units.size(), 1U);
    EXPECT_EQ(parts.units[0].id, "C");
    EXPECT_EQ(parts.units[0].target, "y");

    // An attribute of another namespace is not the one of that name.
    const XliffUnit unit =
        UnitOf("<target " + other + " o:state=\"new\" state=\"final\">x</target>");
    EXPECT_EQ(unit.state, "final");
    EXPECT_EQ(UnitOf("<target><o:ph " + other + ">x</o:ph></target>").lost, "urn:other ph");

    EXPECT_EQ(
        Read("<xliff version=\"1.2\"><file><body><trans-unit id=\"A\"/></body></file></xliff>")
            .units.size(),
        1U)
        << "without a namespace";
}

TEST(XliffReader, ReadsVersion11WithEitherNamespace) {
    for (const std::string space : {"1.1", "1.2"}) {
        const Parts parts =
            Read("<xliff version=\"1.1\" xmlns=\"urn:oasis:names:tc:xliff:document:" + space +
                 "\"><file><body><trans-unit id=\"A\"/></body></file></xliff>");
        ASSERT_EQ(parts.units.size(), 1U) << space;
        EXPECT_EQ(parts.units[0].id, "A");
    }
}

TEST(XliffReader, ReadsUnitsOfVersion12InADocumentOf11) {
    const std::string old = "\"urn:oasis:names:tc:xliff:document:1.1\"";
    const std::string current = "\"urn:oasis:names:tc:xliff:document:1.2\"";
    const std::string units =
        "<file target-language=\"de\"><body><trans-unit id=\"A\"><target>a</target></trans-unit>"
        "<n:trans-unit id=\"B\"><n:target>b<n:ph>c</n:ph></n:target></n:trans-unit></body></file>"
        "</xliff>";
    const Parts parts =
        Read("<xliff version=\"1.1\" xmlns=" + old + " xmlns:n=" + current + ">" + units);
    ASSERT_EQ(parts.files.size(), 1U);
    ASSERT_EQ(parts.units.size(), 2U);
    EXPECT_EQ(parts.units[0].target, "a");
    EXPECT_EQ(parts.units[1].target, "bc");
    EXPECT_EQ(parts.units[1].lost, "");

    const Parts newer =
        Read("<xliff version=\"1.2\" xmlns=" + current + " xmlns:n=" + old + ">" + units);
    ASSERT_EQ(newer.units.size(), 1U);
    EXPECT_EQ(newer.units[0].id, "A");
}

TEST(XliffReader, TakesTheFirstSourceAndTarget) {
    const XliffUnit unit = UnitOf(
        "<source>a</source><target>b</target><source>c</source><target state=\"new\">d</target>");
    EXPECT_EQ(unit.source, "a");
    EXPECT_EQ(unit.target, "b");
    EXPECT_EQ(unit.state, "");
}

TEST(XliffReader, ReadsElementsWithManyAttributes) {
    std::string attributes;
    for (int i = 0; i < 100; ++i) {
        attributes += " a" + std::to_string(i) + "=\"" + std::string(1000, 'x') + '"';
    }
    const Parts parts = Read(Document("<trans-unit id=\"A\"" + attributes + " resname=\"B\"/>"));
    ASSERT_EQ(parts.units.size(), 1U);
    EXPECT_EQ(parts.units[0].id, "A");
    EXPECT_EQ(parts.units[0].resname, "B");
}

TEST(XliffReader, KeepsNothingOfTheUnitBefore) {
    const Parts parts = Read(Document(
        "<trans-unit id=\"A\" resname=\"R\"><source>a</source><target state=\"new\"><g>b</g>"
        "</target></trans-unit><trans-unit/>"));
    ASSERT_EQ(parts.units.size(), 2U);
    EXPECT_EQ(parts.units[1].id, "");
    EXPECT_EQ(parts.units[1].resname, "");
    EXPECT_EQ(parts.units[1].source, std::nullopt);
    EXPECT_EQ(parts.units[1].target, std::nullopt);
    EXPECT_EQ(parts.units[1].state, "");
    EXPECT_EQ(parts.units[1].lost, "");
}

TEST(XliffReader, FlattensInlineElements) {
    const struct {
        std::string target;
        std::string text;
        std::string lost;
    } cases[] = {
        {"a <ph id=\"1\">%1</ph> b", "a %1 b", ""},
        {"<bpt id=\"1\">&lt;b></bpt>a<ept id=\"1\">&lt;/b></ept>", "<b>a</b>", ""},
        {"<it id=\"1\" pos=\"open\">[</it>a", "[a", ""},
        {"<ph id=\"1\">&lt;img alt='<sub>a <ph>b</ph></sub>'></ph>", "<img alt='a b'>", ""},
        {"a<mrk mtype=\"seg\">b</mrk><mrk mtype=\"x-empty\"/>c", "abc", ""},
        {"<mrk mtype=\"seg\" equiv-text=\"no\"/>", "", ""},
        {"a <x id=\"1\" equiv-text=\"%1\"/> b", "a %1 b", ""},
        {"<bx id=\"1\" equiv-text=\"[\"/>a<ex id=\"1\" equiv-text=\"]\"/>", "[a]", ""},
        {"<ph id=\"1\" equiv-text=\"%1\"/>", "%1", ""},
        {"<ph id=\"1\" equiv-text=\"%2\">%1</ph>", "%1", ""},
        {"<bpt id=\"1\" equiv-text=\"a\"/><ept id=\"1\" equiv-text=\"b\"/>"
         "<it id=\"2\" equiv-text=\"c\"/>",
         "abc", ""},
        {"a<x id=\"1\"/>b", "ab", "x"},
        {"a<x id=\"1\" equiv-text=\"\"/>b", "ab", "x"},
        {"a<ph id=\"1\"></ph>", "a", "ph"},
        {"<g id=\"1\">a</g>", "a", "g"},
        {"<g id=\"1\" equiv-text=\"b\"/>a", "a", "g"},
        {"<b>a</b>", "a", "b"},
        {"a<bx id=\"1\"/><g id=\"2\">b</g>", "ab", "bx"},
        {"<g id=\"1\"><x id=\"2\"/></g>", "", "g"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.target);
        const XliffUnit target = UnitOf("<source>s</source><target>" + c.target + "</target>");
        EXPECT_EQ(target.target, c.text);
        EXPECT_EQ(target.lost, c.lost);
        const XliffUnit source = UnitOf("<source>" + c.target + "</source><target>t</target>");
        EXPECT_EQ(source.source, c.text);
        EXPECT_EQ(source.target, "t");
        EXPECT_EQ(source.lost, "");
    }
}

TEST(XliffReader, ReadsTheEncodingsOfXml) {
    const std::string latin =
        "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + Document(Unit("<target>\xD6</target>"));
    EXPECT_EQ(Read(latin).units.at(0).target, "\u00D6");
    std::string utf16 = "\xFE\xFF";
    for (const char c : Document(Unit("<target>a</target>"))) {
        utf16 += {'\0', c};
    }
    EXPECT_EQ(Read(utf16).units.at(0).target, "a");
    EXPECT_EQ(Read("\xEF\xBB\xBF" + Document(Unit("<target>a</target>"))).units.at(0).target, "a");
}

TEST(XliffReader, RefusesWhatIsNotXliff) {
    const struct {
        std::string document;
        std::string error;
    } cases[] = {
        {"", "1: this is not well-formed XML: no element found"},
        {"\n\n", "3: this is not well-formed XML: no element found"},
        {"QVLANG=en\n", "1: this is not well-formed XML: not well-formed (invalid token)"},
        {"<xliff", "1: this is not well-formed XML: unclosed token"},
        {kStart, "1: this is not well-formed XML: no element found"},
        {Document("\n<trans-unit>"), "2: this is not well-formed XML: mismatched tag"},
        {Document("") + "<x/>", "1: this is not well-formed XML: junk after document element"},
        {Document(Unit("\n<target>&nbsp;</target>")),
         "2: this is not well-formed XML: undefined entity"},
        {Document(Unit("<target>&#1;</target>")),
         "1: this is not well-formed XML: reference to invalid character number"},
        {Document(Unit("<target>\x01</target>")),
         "1: this is not well-formed XML: not well-formed (invalid token)"},
        {Document(Unit("<target>\0</target>"s)),
         "1: this is not well-formed XML: not well-formed (invalid token)"},
        {Document(Unit("<target>\xFF</target>")),
         "1: this is not well-formed XML: not well-formed (invalid token)"},
        {Document("<trans-unit id=\"a\" id=\"b\"/>"),
         "1: this is not well-formed XML: duplicate attribute"},
        {Document("<o:a/>"), "1: this is not well-formed XML: unbound prefix"},
        {"<?xml version=\"1.0\" encoding=\"windows-1252\"?><xliff/>",
         "1: this is not well-formed XML: unknown encoding"},
        {"<html>", "1: not an XLIFF document: it begins with <html>, not with <xliff>"},
        {"\n<xliff/>", "2: XLIFF of version ''; only 1.1 and 1.2 are read"},
        {"<xliff version=\"1.0\"/>", "1: XLIFF of version '1.0'; only 1.1 and 1.2 are read"},
        {"<xliff version=\"2.0\" xmlns=\"urn:oasis:names:tc:xliff:document:2.0\"/>",
         "1: XLIFF of version '2.0'; only 1.1 and 1.2 are read"},
        {"<xliff version=\"1.2\" xmlns=\"urn:other\"/>",
         "1: XLIFF of version 1.2 does not have the namespace 'urn:other'"},
        {"<!DOCTYPE xliff>\n" + Document(""),
         "1: a document type, which could define entities, is not accepted"},
        {"\n<!DOCTYPE xliff SYSTEM \"file:///etc/passwd\">" + Document(""),
         "2: a document type, which could define entities, is not accepted"},
        {"<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">]>" +
             Document(Unit("<target>&b;</target>")),
         "1: a document type, which could define entities, is not accepted"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ErrorOf(c.document), c.error) << PrintToString(c.document);
    }
}

TEST(XliffReader, RefusesEachTruncatedDocument) {
    const std::string document = Document(Unit("<source>a</source><target>b</target>"));
    EXPECT_EQ(ErrorOf(document), "");
    for (std::size_t size = 0; size < document.size(); ++size) {
        EXPECT_NE(ErrorOf(document.substr(0, size)), "") << size;
    }
}

// The time of what is hostile is limited, too: the test would run into its limit.
TEST(XliffReader, RefusesALongTagOrComment) {
    const std::string large(std::size_t{100} << 20U, 'a');
    const std::string error = "1: a tag or comment is longer than 1 MiB";
    EXPECT_EQ(ErrorOf("<!--" + large), error);
    EXPECT_EQ(ErrorOf("<xliff version=\"" + large), error);
    EXPECT_EQ(ErrorOf(kStart + "<" + large), error);
    EXPECT_EQ(ErrorOf(kStart + "<!--" + large), error);
    EXPECT_EQ(ErrorOf(kStart + "<?a " + large), error);
    EXPECT_EQ(ErrorOf(Document("<!--" + large.substr(0, 1'000'000) + "-->")), "");
}

TEST(XliffReader, ReadsATextOfMegabytes) {
    const std::string large(std::size_t{100} << 20U, 'a');
    EXPECT_TRUE(UnitOf("<target>" + large + "</target>").target == large);
    EXPECT_TRUE(UnitOf("<target><![CDATA[" + large + "]]></target>").target == large);
}

TEST(XliffReader, ReadsDeeplyNestedElements) {
    constexpr std::size_t kDepth = 200'000;
    std::string begin;
    std::string end;
    for (std::size_t i = 0; i < kDepth; ++i) {
        begin += "<mrk>";
        end += "</mrk>";
    }
    EXPECT_EQ(UnitOf("<target>" + begin + "a" + end + "</target>").target, "a");
    EXPECT_EQ(ErrorOf(Document(Unit("<target>" + begin))),
              "1: this is not well-formed XML: mismatched tag");
}

TEST(XliffReader, HandsOnWhatTheCallerThrows) {
    const std::string document = Document(Unit(""));
    const auto refuse = [](const auto&) { throw std::runtime_error("refused"); };
    const auto accept = [](const auto&) {};
    for (const bool isFile : {true, false}) {
        XliffReader reader(isFile ? XliffReader::TakeFile(refuse) : accept,
                           isFile ? XliffReader::TakeUnit(accept) : refuse);
        try {
            reader.Read(document);
            FAIL();
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "refused");
        }
    }
}

}  // namespace
