// Files in every encoding that libxml2 knows are read as it reads them, and what needs no encoding too.
#include <cerrno>

#include "support/xml-test.h"

#include "vrk.jxml-encoding.h"
#include "vrk.pathname.h"

using namespace maxhost;

namespace {

// A text as it stands in a file with units of so many bytes; `text` is ASCII.
std::string wide(const std::string &text, size_t unit, bool big_endian, const std::string &mark = "") {
    std::string bytes = mark;
    for (const char c : text) {
        const std::string zeros(unit - 1, '\0');
        bytes += big_endian ? zeros + c : c + zeros;
    }
    return bytes;
}

std::string declared(const std::string &encoding) { return "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>\n"; }

const std::string little = "\xFF\xFE", big = "\xFE\xFF";

class XmlEncodingsTest : public XmlTest {
  protected:
    // What the holder makes of a file that is named and read: the content of the root element, "refused" with the line
    // for the reason, if any. libxml2 alone has to agree.
    std::string read_in(const std::string &bytes) {
        write_file("encoded.xml", bytes);
        holder->file_path = nullptr;
        jxmlfile_read(holder, gensym("encoded.xml"));
        drain_queue();
        const Lines told = take_lines();
        const xml_doc alone = read_alone();
        EXPECT_EQ(alone != nullptr, holder->loaded == 1);
        if (!alone || !holder->loaded) {
            EXPECT_EQ(told.back(), error("unable to parse file " + path_of("encoded.xml")));
            return told.size() == 1 ? "refused" : "refused: " + told.front();
        }
        EXPECT_EQ(told, Lines());
        EXPECT_TRUE(xmlStrEqual(alone->encoding, holder->doc->encoding));
        const xml_text there(xmlNodeGetContent(xmlDocGetRootElement(alone.get())));
        const xml_text here(xmlNodeGetContent(xmlDocGetRootElement(holder->doc)));
        EXPECT_TRUE(xmlStrEqual(there.get(), here.get()));
        return reinterpret_cast<const char *>(here.get());
    }

  private:
    xml_doc read_alone() {
        constexpr int no_blanks = 256;
        const quiet_libxml quiet;
        return xml_doc(xmlReadFile(path_of("encoded.xml").c_str(), nullptr, no_blanks));
    }
};

} // namespace

// ---- encodings with units of a byte

TEST_F(XmlEncodingsTest, EncodingsAreKnownByEveryNameThatLibxmlKnows) {
    struct row {
        std::vector<std::string> names;
        std::string bytes, text;
    };
    const row rows[] = {
        {{"UTF-8", "utf-8", "utf8", "UTF8"}, "\xC3\xA9", "é"},
        {{"ISO-8859-1", "iso-8859-1", "ISO_8859-1", "latin1", "L1", "csISOLatin1", "iso-ir-100"}, "\xE9", "é"},
        {{"ISO-8859-15", "LATIN-9"}, "\xA4", "€"},
        {{"US-ASCII", "ASCII", "ANSI_X3.4-1968"}, "e", "e"},
        {{"windows-1252", "CP1252"}, "\x80", "€"},
        {{"windows-874", "TIS-620"}, "\xA1", "ก"},
        {{"macintosh", "MacRoman", "x-mac-roman", "MAC"}, "\x8E", "é"},
        {{"MacCyrillic"}, "\x80", "А"},
        {{"IBM850", "CP850", "CP437"}, "\x82", "é"},
        {{"CP866"}, "\x80", "А"},
        {{"KOI8-R"}, "\xC1", "а"},
        {{"VISCII", "TCVN"}, "", ""},
        {{"Shift_JIS", "SJIS", "CP932", "windows-31j"}, "\x93\xFA", "日"},
        {{"EUC-JP"}, "\xC6\xFC", "日"},
        {{"ISO-2022-JP"}, "\x1B$BF|\x1B(B", "日"},
        {{"CP949", "KS_C_5601-1987", "EUC-KR"}, "\xC0\xCF", "일"},
        {{"GBK", "GB2312", "GB18030"}, "\xC8\xD5", "日"},
        {{"Big5"}, "\xA4\xE9", "日"},
        {{"UTF-7"}, "+ZeU-", "日"},
    };
    for (const row &row : rows)
        for (const std::string &name : row.names) {
            SCOPED_TRACE(name);
            if (!jxml_find_encoder(name.c_str()) && name != "utf8" && name != "UTF8")
                ADD_FAILURE() << "the libxml2 of this system does not know it";
            const std::string rest = "<a>." + row.bytes + ".</a>";
            EXPECT_EQ(read_in(declared(name) + rest), "." + row.text + ".");
        }
}

TEST_F(XmlEncodingsTest, AnEncodingThatIsNotKnownIsRefusedAndTold) {
    const std::string refused = "refused: " + error("the encoding of " + path_of("encoded.xml") + " is not supported");
    EXPECT_EQ(read_in(declared("nonesuch") + "<a/>"), refused);
    EXPECT_EQ(read_in(wide(declared("nonesuch") + "<a/>", 2, false, little)), refused);
    EXPECT_EQ(read_in(std::string("\0\0<\0<?xml?>", 11)), refused) << "an order of bytes that nobody uses";
    EXPECT_EQ(read_in(declared("no such") + "<a/>"), "refused") << "what is no name is malformed";
    EXPECT_EQ(read_in(declared("") + "<a/>"), "refused");
    EXPECT_EQ(read_in(declared("1") + "<a/>"), "refused");
}

TEST_F(XmlEncodingsTest, BytesThatAreNotInTheEncodingEndTheText) {
    EXPECT_EQ(read_in(declared("US-ASCII") + "<a>\xE9</a>"), "refused");
    EXPECT_EQ(read_in(declared("Shift_JIS") + "<a>\x93</a>"), "refused");
    EXPECT_EQ(read_in(declared("Shift_JIS") + "<a>x</a>\x93"), "x") << "half a character after the end";
    EXPECT_EQ(read_in(declared("HTML") + "<a>x</a>"), "refused") << "it is only written";
    EXPECT_EQ(read_in(declared("UTF-16LE") + "<a>x</a>"), "refused");
}

TEST_F(XmlEncodingsTest, ALongTextIsConvertedWhole) {
    std::string bytes, text;
    for (int i = 0; i < 30'000; ++i) { // two bytes that come to lie across every boundary, and three
        bytes += i % 7 ? "\x93\xFA" : "x";
        text += i % 7 ? "日" : "x";
    }
    EXPECT_EQ(read_in(declared("Shift_JIS") + "<a>" + bytes + "</a>"), text);
    EXPECT_EQ(read_in(declared("Shift_JIS") + "<a>x" + bytes + "</a>"), "x" + text);
}

// ---- wider encodings

TEST_F(XmlEncodingsTest, WideTextsAreReadInTheOrderOfTheirBytes) {
    const std::string root = "<a>text</a>", plain = "<?xml version=\"1.0\"?>" + root;
    for (const std::string &text :
         {plain, declared("UTF-16") + root, declared("utf16") + root, declared("UTF-8") + root}) {
        EXPECT_EQ(read_in(wide(text, 2, false, little)), "text") << text;
        EXPECT_EQ(read_in(wide(text, 2, true, big)), "text") << text;
        EXPECT_EQ(read_in(wide(text, 2, false)), "text") << text;
        EXPECT_EQ(read_in(wide(text, 2, true)), "text") << text;
    }
    EXPECT_EQ(read_in(wide(root, 2, false, little)), "text");
    EXPECT_EQ(read_in(wide(declared("UTF-16LE") + root, 2, false, little)), "text");
    EXPECT_EQ(read_in(wide(declared("UTF-16BE") + root, 2, true)), "text");
    EXPECT_EQ(read_in(wide(declared("UCS-4") + root, 4, true)), "text");
    const std::string hidden = wide("<a><!-- ", 2, false, little) + "\xFE\xFF" + wide("--></a>", 2, false);
    EXPECT_EQ(read_in(hidden), "refused") << "U+FFFE is no character";
}

TEST_F(XmlEncodingsTest, ATextThatIsNotAsWideAsItSaysIsRefused) {
    const std::string refused =
        "refused: " + error(path_of("encoded.xml") + " is not in the encoding that it declares");
    EXPECT_EQ(read_in(declared("UTF-16") + "<a/>"), refused);
    EXPECT_EQ(read_in(declared("utf16") + "<a/>"), refused);
    EXPECT_EQ(read_in(wide(declared("ISO-8859-1") + "<a/>", 2, false, little)), "refused");
}

TEST_F(XmlEncodingsTest, EbcdicIsReadInTheCodePageThatItDeclares) {
    // <?xml version="1.0" encoding="IBM037"?><a>é</a>
    const std::string head = "\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7F\xF1\x4B\xF0\x7F\x40"
                             "\x85\x95\x83\x96\x84\x89\x95\x87\x7E\x7F";
    const std::string tail = "\x7F\x6F\x6E\x4C\x81\x6E\x51\x4C\x61\x81\x6E";
    EXPECT_EQ(read_in(head + "\xC9\xC2\xD4\xF0\xF3\xF7" + tail), "é");
    EXPECT_EQ(read_in(head + "\xC9\xC2\xD4\xF1\xF0\xF4\xF7" + tail), "é") << "IBM1047";
}

TEST_F(XmlEncodingsTest, AByteOrderMarkIsNoText) {
    EXPECT_EQ(read_in("\xEF\xBB\xBF<a>é</a>"), "é");
    EXPECT_EQ(read_in("\xEF\xBB\xBF" + declared("UTF-8") + "<a>é</a>"), "é");
    EXPECT_EQ(read_in("\xEF\xBB\xBF" + declared("ISO-8859-1") + "<a>\xE9</a>"), "é") << "the declaration comes later";
}

TEST_F(XmlEncodingsTest, ATextMayEndAnywhere) {
    const std::string text = declared("UTF-16LE") + "<a/>";
    for (const std::string &whole : {wide(text, 2, false, little), wide(text, 4, true), declared("CP437") + "<a/>"})
        for (size_t length = 0; length <= whole.size(); ++length) {
            const std::vector<char> bytes(whole.data(), whole.data() + length); // a byte after it is an overrun
            jxml_decoded decoded;
            jxml_decode(std::string_view(bytes.data(), length), &decoded);
            EXPECT_LE(decoded.text.size(), length);
        }
}

// ---- what looks like a declaration

TEST_F(XmlEncodingsTest, OnlyAnXmlDeclarationNamesAnEncoding) {
    for (const char *head : {"<?xml-stylesheet type=\"text/xsl\" href=\"style.xsl\"?>\n",
                             "<?xml-model href=\"a.rng\" encoding=\"nonesuch\"?>\n", "<?xml-x > <c d?>\n",
                             "<?xml version=\"1.0\"?>\n<?é a<b ?>", "<?xml\tversion\r=\n'1.0' standalone='yes' ?>"})
        EXPECT_EQ(read_in(head + std::string("<a>é</a>")), "é") << head;
    EXPECT_EQ(read_in("<?xml version = '1.0' \n encoding = 'L1' standalone=\"no\"?><a>\xE9</a>"), "é");
    for (const char *broken :
         {"<?xml encoding='L1'?>", "<?xml version='1.0' encoding?>", "<?xml version='1.0' encoding=L1?>",
          "<?xml version='1.0' encoding='L1?>", "<?xml version='1.0'encoding='L1'?>"})
        EXPECT_EQ(read_in(broken + std::string("<a>\xE9</a>")), "refused") << broken;
}

TEST_F(XmlEncodingsTest, AStylesheetIsReadByNameToo) {
    write_file("styled.xml", "<?xml-stylesheet type=\"text/xsl\" href=\"style.xsl\"?>\n<a>x</a>");
    EXPECT_EQ(load_file("styled.xml"), 1);
    EXPECT_EQ(text("a"), "x");
    EXPECT_EQ(take_lines(), Lines());
}

// ---- saving

TEST_F(XmlEncodingsTest, ADocumentIsSavedInTheEncodingThatItDeclares) {
    for (const std::string &bytes :
         {declared("MacRoman") + "<a>\x8E</a>\n", declared("ISO-2022-JP") + "<a>\x1B$BF|\x1B(B</a>\n"}) {
        read_in(bytes);
        ASSERT_TRUE(reload());
        EXPECT_EQ(read_file(path_of("reload.xml")), bytes);
    }
}

TEST_F(XmlEncodingsTest, WhatIsSavedIsReadAgain) {
    for (const char *encoding :
         {"UTF-8",    "UTF-16",       "UTF-16LE", "UTF-16BE",    "UCS-4",       "ISO-8859-1", "LATIN-9",
          "US-ASCII", "windows-1252", "TIS-620",  "MacRoman",    "IBM850",      "KOI8-R",     "VISCII",
          "TCVN",     "Shift_JIS",    "CP932",    "EUC-JP",      "ISO-2022-JP", "EUC-KR",     "CP949",
          "GB18030",  "Big5",         "UTF-7",    "ISO-2022-KR", "ISO-2022-CN", "ISO646-DE",  "IBM037"}) {
        SCOPED_TRACE(encoding);
        load("<a/>");
        holder->doc->encoding = xmlStrdup(reinterpret_cast<const xmlChar *>(encoding));
        EXPECT_EQ(set("a text \"[x] <&> é.\""), 0);
        const std::string path = path_of("saved.xml");
        write_file("saved.xml", "before");
        const int result = vrk_save_document(gensym(path.c_str()), holder->doc);
        const std::string name = encoding;
        if (name == "UTF-7" || name == "ISO-2022-KR" || name == "ISO646-DE") {
            EXPECT_EQ(result, -ENOTSUP);
            EXPECT_EQ(read_file(path), "before");
            continue;
        }
        EXPECT_EQ(result, static_cast<int>(read_file(path).size()));
        holder->file_path = nullptr;
        jxmlfile_read(holder, gensym("saved.xml"));
        drain_queue();
        EXPECT_EQ(text("a"), "[x] <&> é.");
        EXPECT_EQ(take_lines(), Lines());
    }
}
