// What goes in comes out: texts and bytes that are written, saved and read again, and those that XML cannot hold.
#include <libxml/parserInternals.h>

#include "support/xml-test.h"

using namespace maxhost;

namespace {

class XmlTextsTest : public XmlTest {
  protected:
    void SetUp() override {
        XmlTest::SetUp();
        load("<a/>");
    }

    // A refusal by set and setattr, with the same line, that changes nothing.
    void expect_unholdable(const std::string &text, size_t byte) {
        const std::string before = document();
        const std::string line = error("text cannot be held by xml (byte " + std::to_string(byte) + ")");
        EXPECT_EQ(set("a new text", {symbol_atom(text)}), -1) << text;
        EXPECT_EQ(setattr("a k", {symbol_atom(text)}), -1) << text;
        EXPECT_EQ(take_lines(), (Lines{line, line})) << text;
        EXPECT_EQ(document(), before);
    }

    static Atoms data(const std::string &text) { return {symbol_atom(text)}; }
};

const std::string texts[] = {
    "a & b",
    "&amp; &lt; &#65; &undefined;",
    "<b>no markup</b>",
    "a > b ]]> c",
    "<![CDATA[no section]]>",
    "<!-- no comment -->",
    "single ' and double \" quotes",
    "one\ntwo\n\nthree",
    "tab\tand\rcarriage\r\nreturn",
    "%s %n %d",
    "back\\slash",
    "Grüße, élève, naïve",
    "Ελληνικά",
    "Кириллица",
    "עברית",
    "العربية",
    "हिन्दी",
    "日本語 中文 한국어",
    "emoji 😀 and 𝔣𝔯𝔞𝔨𝔱𝔲𝔯",
    "combining e\u0301",
    "next line \u0085 and separators \u2028 \u2029",
    "delete \x7F",
    "last of their kind \uD7FF \uE000 \uFFFD \U00010000 \U0010FFFF",
    "0",
    "-",
};

void append_utf8(std::string &text, int character) {
    xmlChar bytes[4];
    const int length = xmlCopyChar(0, bytes, character);
    text.append(reinterpret_cast<const char *>(bytes), static_cast<size_t>(length));
}

} // namespace

// ---- round trips

TEST_F(XmlTextsTest, EveryTextBetweenTwoDotsReadsBackAsItWasWritten) {
    const auto path = [](size_t i) { return "a t attr n " + std::to_string(i); };
    for (size_t i = 0; i < std::size(texts); ++i)
        ASSERT_EQ(set(path(i) + " text", data("." + texts[i] + ".")), 0) << texts[i];
    for (size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(text(path(i)), "." + texts[i] + ".");
    ASSERT_TRUE(reload());
    for (size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(text(path(i)), "." + texts[i] + ".");
}

TEST_F(XmlTextsTest, ATextLosesWhatIsOutsideOfAsciiAtItsEndsAndThatIsCounted) {
    const std::pair<const char *, const char *> ends[] = {{"Café", "Caf"},      {"Ärger", "rger"},       {"日本", ""},
                                                          {" naïve ", "naïve"}, {"\t plain\n", "plain"}, {" ", ""}};
    for (const auto &[written, read] : ends) {
        load("<a>" + std::string(written) + "</a>");
        EXPECT_EQ(text("a"), read);
    }
    EXPECT_EQ(holder->texts_cut, 3) << "blanks are no letters";
    load("<a><![CDATA[436166C3A9]]></a>");
    EXPECT_EQ(get("a"), "block 43 61 66 C3 A9") << "bytes are not trimmed";
    EXPECT_EQ(holder->texts_cut, 3);
}

TEST_F(XmlTextsTest, EveryAttributeReadsBackAsItWasWritten) {
    const auto path = [](size_t i) { return "a t attr n " + std::to_string(i); };
    for (size_t i = 0; i < std::size(texts); ++i) {
        set(path(i) + " text");
        ASSERT_EQ(setattr(path(i) + " v", data(texts[i])), 0) << texts[i];
        EXPECT_EQ(attribute(path(i) + " v"), texts[i]);
    }
    ASSERT_TRUE(reload());
    for (size_t i = 0; i < std::size(texts); ++i)
        EXPECT_EQ(attribute(path(i) + " v"), texts[i]);
}

TEST_F(XmlTextsTest, EveryCharacterOfTheBasicPlaneReadsBack) {
    std::string all = ".\t\n\r"; // begins and ends with what is not trimmed
    for (int c = 0x20; c < 0xFFFE; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            append_utf8(all, c);
    all += '.';
    ASSERT_EQ(set("a text", data(all)), 0);
    ASSERT_EQ(setattr("a k", data(all)), 0);
    ASSERT_TRUE(reload());
    EXPECT_TRUE(text("a") == all); // too long to be shown
    EXPECT_TRUE(attribute("a k") == all);
}

TEST_F(XmlTextsTest, EveryByteReadsBackFromABlock) {
    std::string bytes, shown = "block", integers;
    static constexpr char digits[] = "0123456789ABCDEF";
    for (int i = 0; i < 256; ++i) {
        bytes += static_cast<char>(i);
        shown.append(" ").append(1, digits[i >> 4]).append(1, digits[i & 15]);
        integers.append(i ? " " : "").append(std::to_string(i < 128 ? i : i - 256));
    }
    ASSERT_EQ(set("a cdata", {block_atom(bytes)}), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(get("a"), shown);
    EXPECT_EQ(get("a", 256), integers);
}

TEST_F(XmlTextsTest, EveryByteReadsBackFromNumbers) {
    for (int i = 1; i < 256; ++i) {
        ASSERT_EQ(set("a cdata " + std::to_string(i)), 0);
        EXPECT_EQ(get("a", 2), std::to_string(i < 128 ? i : i - 256));
    }
}

TEST_F(XmlTextsTest, ATextInADocumentOfAnotherEncodingReadsBack) {
    write_file("latin.xml", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>.\xE9.</a>");
    ASSERT_EQ(load_file("latin.xml"), 1);
    EXPECT_EQ(text("a"), ".é.");
    ASSERT_EQ(set("a text", data(".é €.")), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(text("a"), ".é €.");
}

TEST_F(XmlTextsTest, NamesMayBeOfAnyScript) {
    EXPECT_EQ(set("a имя-1.ö text x"), 0);
    EXPECT_EQ(setattr("a имя-1.ö 名前 2"), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(text("a имя-1.ö"), "x");
    EXPECT_EQ(attribute("a имя-1.ö 名前"), "2");
}

// ---- what XML cannot hold

TEST_F(XmlTextsTest, ControlCharactersAreRefused) {
    for (char c = 1; c < 32; ++c)
        if (c != '\t' && c != '\n' && c != '\r')
            expect_unholdable(std::string("ab") + c + "d", 3);
}

TEST_F(XmlTextsTest, InvalidUtf8IsRefused) {
    const char *const invalid[] = {"\x80",
                                   "\xBF",
                                   "\xFF",
                                   "\xFE",
                                   "\xC3",
                                   "\xC3(",
                                   "\xC0\x80",
                                   "\xC1\xBF",
                                   "\xE2\x82",
                                   "\xE2(\xA1",
                                   "\xE0\x80\x80",
                                   "\xE0\x9F\xBF",
                                   "\xF0\x9F\x98",
                                   "\xF0\x80\x80\x80",
                                   "\xF0\x8F\xBF\xBF",
                                   "\xF8\x88\x80\x80\x80"};
    for (const char *text : invalid) {
        expect_unholdable(text, 1);
        expect_unholdable(std::string("é") + text + "x", 3);
    }
}

TEST_F(XmlTextsTest, CodePointsThatAreNoCharactersOfXmlAreRefused) {
    for (const char *text : {"\xED\xA0\x80", "\xED\xBF\xBF", "\xEF\xBF\xBE", "\xEF\xBF\xBF", "\xF4\x90\x80\x80"})
        expect_unholdable(text, 1);
}

TEST_F(XmlTextsTest, AnElementIsNotMadeForATextThatCannotBeStored) {
    EXPECT_EQ(set("a b c text", data("\x01")), -1);
    EXPECT_EQ(document(), "<a/>");
    EXPECT_EQ(take_lines(), (Lines{error("text cannot be held by xml (byte 1)")}));
}

TEST_F(XmlTextsTest, AFilterThatCannotBeStoredIsRefused) {
    EXPECT_EQ(set("a b attr n", {symbol_atom("'\x01'"), symbol_atom("text"), symbol_atom("x")}), -1);
    EXPECT_EQ(take_lines(), (Lines{error("unable to evaluate xpath expression \"/a/b[@n='\x01']\"")}));
    EXPECT_EQ(document(), "<a/>");
}

// ---- what libxml2 writes, but does not read again

TEST_F(XmlTextsTest, TheLongestTextReadsBack) {
    const std::string longest(10'000'000, 'x');
    ASSERT_EQ(set("a text", data(longest)), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(text("a"), longest);
}

TEST_F(XmlTextsTest, ALongerTextIsRefused) {
    const std::string line = error("text is too long for xml (more than 10000000 bytes)");
    EXPECT_EQ(set("a text", data(std::string(10'000'001, 'x'))), -1);
    EXPECT_EQ(set("a text", {symbol_atom(std::string(10'000'000, 'x')), symbol_atom("lost")}), -1);
    EXPECT_EQ(set("a text", Atoms(32000, symbol_atom(std::string(1000, 'y')))), -1);
    EXPECT_EQ(take_lines(), Lines(3, line));
    EXPECT_EQ(document(), "<a/>");
}

TEST_F(XmlTextsTest, ManyAtomsAreJoinedWithoutALimitOfTheirOwn) {
    ASSERT_EQ(set("a text", Atoms(9000, symbol_atom(std::string(1000, 'y')))), 0);
    EXPECT_EQ(text("a").size(), 9000u * 1001 - 1);
}

TEST_F(XmlTextsTest, TheMostBytesReadBack) {
    ASSERT_EQ(set("a cdata", {block_atom(std::string(5'000'000, '\xA5'))}), 0);
    ASSERT_TRUE(reload());
    Atoms path = typed("a");
    t_atom value;
    t_atom *first = &value;
    short room = 1;
    ASSERT_EQ(jxmlfile_get(holder, 1, path.data(), gensym("text"), &room, &first, 1), 0);
    EXPECT_EQ(sysmem_ptrsize(atom_getobj(&value)), 5'000'000u);
    sysmem_freeptr(atom_getobj(&value));
}

TEST_F(XmlTextsTest, MoreBytesAreRefused) {
    EXPECT_EQ(set("a cdata", {block_atom(std::string(5'000'001, 'x'))}), -1);
    EXPECT_EQ(set("a cdata", Atoms(5001, symbol_atom(std::string(1000, 'y')))), -1);
    EXPECT_EQ(take_lines(), Lines(2, error("data is too long for xml (more than 5000000 bytes)")));
    EXPECT_EQ(document(), "<a/>");
}

TEST_F(XmlTextsTest, AttributesThatAreTooLongTogetherAreRefused) {
    const std::string line = error("attributes are too long for xml (more than 9000000 bytes)");
    EXPECT_EQ(setattr("a k", data(std::string(8'900'000, 'k'))), 0);
    EXPECT_EQ(setattr("a l", data(std::string(200'000, 'l'))), -1);
    EXPECT_EQ(setattr("a k", data(std::string(1'600'000, '<'))), -1) << "as it is written: &lt;";
    EXPECT_EQ(take_lines(), Lines(2, line));
    EXPECT_EQ(setattr("a k", data(std::string(1'400'000, '<'))), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(attribute("a k").size(), 1'400'000u);
}

TEST_F(XmlTextsTest, ANameThatIsTooLongIsRefused) {
    EXPECT_EQ(setattr("a " + std::string(50'001, 'n') + " v"), -1);
    EXPECT_EQ(document(), "<a/>");
    ASSERT_EQ(take_lines().size(), 1u);
}
