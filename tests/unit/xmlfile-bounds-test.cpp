// Files that would keep libxml2 busy for minutes, or fill the memory, are refused before it sees them.
#include "support/xml-test.h"

#include "vrk.jxml-bounds.h"

using namespace maxhost;

namespace {

std::string repeated(long times, const std::string &text) {
    std::string all;
    all.reserve(static_cast<size_t>(times) * text.size());
    for (long i = 0; i < times; ++i)
        all += text;
    return all;
}

// " PREFIX0=''" and so on, with END between the quotes.
std::string attributes(long count, const std::string &prefix = "k", const std::string &value = "") {
    std::string all;
    for (long i = 0; i < count; ++i)
        all += " " + prefix + std::to_string(i) + "='" + value + "'";
    return all;
}

// A document type with so many words, the names of the declaration included.
std::string words(long count, const std::string &declarations = "") {
    return "<!DOCTYPE a [" + declarations + "<!ELEMENT a (" + repeated(count - 3, "b|") + "b)>]><a/>";
}

// Why a text is refused, for the name "it"; "read" when it is not.
std::string verdict(const std::string &text) {
    std::string_view seen(text);
    const jxml_refusal refusal = jxml_bounds_check(&seen).refusal;
    char line[200];
    std::snprintf(line, sizeof line, refusal.format ? refusal.format : "read", "it", refusal.limit);
    return line;
}

// How much of a text libxml2 gets to see.
std::string cut(const std::string &text) {
    std::string_view seen(text);
    EXPECT_EQ(jxml_bounds_check(&seen).refusal.format, nullptr);
    return std::string(seen);
}

const std::string many_attributes = "a tag of it has more than 1000 attributes";
const std::string many_pieces = "it has more than 2000000 tags, attributes and references";
const std::string many_words = "the document type of it has more than 20000 words";
const std::string many_comparisons = "attributes of it need more than 2000000000 comparisons";
const std::string many_identifiers = "it has more than 100000 identifiers";

using XmlBounds = XmlTest;

} // namespace

// ---- what is counted: just below the bound, and at it

TEST(JxmlBounds, AttributesOfATag) {
    EXPECT_EQ(verdict("<a" + attributes(1000) + "/>"), "read");
    EXPECT_EQ(verdict("<a" + attributes(1001) + "/>"), many_attributes);
    EXPECT_EQ(verdict("<a" + attributes(500, "xmlns:p", "u") + attributes(501) + "/>"), many_attributes);
    EXPECT_EQ(verdict("<a><b" + attributes(600) + "/><b" + attributes(600) + "/></a>"), "read");
}

TEST(JxmlBounds, AttributesWithinAnEntity) {
    const auto entity = [](const std::string &value) {
        return "<!DOCTYPE a [<!ENTITY e \"" + value + "\">]><a>&e;</a>";
    };
    EXPECT_EQ(verdict(entity("<b" + attributes(1000) + "/>")), "read");
    EXPECT_EQ(verdict(entity("<b" + attributes(1001) + "/>")), many_attributes);
    EXPECT_EQ(verdict(entity("&#60;b" + repeated(1001, " k&#61;''") + "/>")), many_attributes);
    EXPECT_EQ(verdict(entity(repeated(2000, "x=y "))), "read") << "no tag is in it";
}

TEST(JxmlBounds, Pieces) {
    for (const char *piece : {"<a/>", "&#1;"}) {
        EXPECT_EQ(verdict("<r>" + repeated(1'999'999, piece) + "</r>"), "read") << piece;
        EXPECT_EQ(verdict("<r>" + repeated(2'000'000, piece) + "</r>"), many_pieces) << piece;
    }
    EXPECT_EQ(verdict("<r>" + repeated(400'000, "<a k=''/><!----><?p?><![CDATA[]]>") + "</r>"), many_pieces);
}

TEST(JxmlBounds, ReferencesWhereverTheyStand) {
    const auto text = [](const std::string &references) { return "<r>" + references + "</r>"; };
    const auto value = [](const std::string &references) { return "<r k='" + references + "'/>"; };
    const auto entity = [](const std::string &references) {
        return "<!DOCTYPE r [<!ENTITY e '" + references + "'>]><r/>";
    };
    EXPECT_EQ(verdict(text(std::string(1'999'999, '&'))), "read");
    EXPECT_EQ(verdict(text(std::string(2'000'000, '&'))), many_pieces);
    EXPECT_EQ(verdict(text(std::string(1'999'999, '&') + "<a/>")), many_pieces) << "a tag counts as much";
    EXPECT_EQ(verdict(value(std::string(2'000'000, '&'))), many_pieces);
    EXPECT_EQ(verdict(entity(std::string(1'999'999, '&'))), "read");
    EXPECT_EQ(verdict(entity(std::string(2'000'001, '&'))), many_pieces);
}

TEST(JxmlBounds, WordsOfADocumentType) {
    EXPECT_EQ(verdict(words(20'000)), "read");
    EXPECT_EQ(verdict(words(20'001)), many_words);
    EXPECT_EQ(verdict(words(19'997, "<!ENTITY e 'a text of many words'>")), "read");
    EXPECT_EQ(verdict(words(19'998, "<!ENTITY e 'a text of many words'>")), many_words);
    EXPECT_EQ(verdict("<!DOCTYPE a [<!ENTITY e " + repeated(20'000, "''") + ">]><a/>"), many_words);
}

TEST(JxmlBounds, ComparisonsOfAttributesAndNamespaces) {
    EXPECT_EQ(verdict("<r>" + repeated(1900, "<a" + attributes(1000) + "/>") + "</r>"), "read");
    const std::string nested = repeated(10, "<r" + attributes(999, "xmlns:p", "u") + ">");
    EXPECT_EQ(verdict(nested + repeated(190'000, "<a/>")), "read");
    EXPECT_EQ(verdict(nested + repeated(200'000, "<a/>")), many_comparisons);
    EXPECT_EQ(verdict("<r>" + repeated(100'000, "<a xmlns:p='u'/>") + "</r>"), "read") << "they go out of scope";
    const std::string defaults = "<!DOCTYPE r [<!ATTLIST a " + repeated(1000, "b CDATA '' ") + ">]><r>";
    EXPECT_EQ(verdict(defaults + repeated(100, "<a/>") + "</r>"), "read");
    EXPECT_EQ(verdict(defaults + repeated(1000, "<a/>") + "</r>"), many_comparisons);
}

TEST(JxmlBounds, ComparisonsWithinEntitiesAddToTheOthers) {
    const std::string tags = repeated(950, "<a" + attributes(1000, "xmlns:p", "u") + "/>"); // two million each
    const auto entities = [](long count) {
        return "<!DOCTYPE a [" + repeated(count, "<!ENTITY e \"<b" + attributes(1000) + "/>\">") + "]>";
    };
    EXPECT_EQ(verdict(tags + entities(98)), "read");
    EXPECT_EQ(verdict(tags + entities(100)), many_comparisons);
    EXPECT_EQ(verdict(entities(100) + tags), many_comparisons);
}

TEST(JxmlBounds, Identifiers) {
    const std::string declared = "<!DOCTYPE r [<!ATTLIST a i ID #IMPLIED>]>", element = "<a i=''/>";
    EXPECT_EQ(verdict("<r>" + repeated(100'000, "<a xml:id=''/>") + "</r>"), "read");
    EXPECT_EQ(verdict("<r>" + repeated(100'001, "<a xml:id=''/>") + "</r>"), many_identifiers);
    EXPECT_EQ(verdict(declared + "<r>" + repeated(100'001, element) + "</r>"), many_identifiers);
    EXPECT_EQ(verdict("<r>" + repeated(100'001, element) + "</r>"), "read");
    const auto typed_by = [&](const std::string &declarations) {
        return "<!DOCTYPE r [" + declarations + "]><r>" + repeated(100'001, element) + "</r>";
    };
    EXPECT_EQ(verdict(typed_by("<!ATTLIST a i IDREF #IMPLIED>")), "read");
    EXPECT_EQ(verdict(typed_by("<!ENTITY % t 'CDATA'><!ATTLIST a i %t; #IMPLIED>")), "read");
    EXPECT_EQ(verdict(typed_by("<!ENTITY % t 'ID'><!ATTLIST a i %t; #IMPLIED>")), many_identifiers);
    EXPECT_EQ(verdict(typed_by("<!ENTITY % t '&#73;D'><!ATTLIST a i %t; #IMPLIED>")), many_identifiers);
}

TEST(JxmlBounds, TagsOfAnyName) {
    for (const std::string name : {"A", "_a", ":a", "a:a", "\xC3\xA9"})
        EXPECT_EQ(verdict("<" + name + attributes(1001) + ">"), many_attributes) << name;
}

// ---- what hides tags from a look at the bytes

TEST(JxmlBounds, NothingIsReadBehindAPlaceWhereAllParsersGiveUp) {
    const std::string tag = "<hidden" + attributes(2000) + ">";
    for (const std::string start : {"<a k=\"",
                                    "<a k='",
                                    "<a \"",
                                    "<a k=v '",
                                    "<a k",
                                    "<a",
                                    "</a ",
                                    "<a/><!-- \x01 ",
                                    "<a/><!-- \xEF\xBF\xBE ",
                                    "<a/><!-- \xEF\xBF\xBF ",
                                    "<a/><!-- \xED\xA0\x80 ",
                                    "<a><![CDATA[ \x02",
                                    "<a><!DOCTYPE a [",
                                    "<a><? ",
                                    "<a><?1 ",
                                    "<a><?\xC3\x97 ",
                                    "<a><?\xC3",
                                    "<a><?\xD7 ",
                                    "<a><?\x97 ",
                                    "<a><!x ",
                                    "<a><{",
                                    "<a>< ",
                                    "<!DOCTYPE \"",
                                    "<!DOCTYPE a [<",
                                    "<!DOCTYPE a [<? ",
                                    "<!DOCTYPE a [<!x",
                                    "<!DOCTYPE a [<!ELEMENT a ",
                                    "<!DOCTYPE a [<!ELEMENT a > ",
                                    "<!DOCTYPE a [] ",
                                    "<!DOCTYPE a [%p",
                                    "<!DOCTYPE a [<!ATTLIST a ] "})
        EXPECT_EQ(cut(start + tag + "\" '-->]]>?>>").find("k1999"), std::string::npos) << start;
    EXPECT_EQ(verdict("<?xml version=\"1.0\" >" + tag + "?>"), many_attributes);
    EXPECT_EQ(cut("<a><!--" + std::string(10'000'001, 'x') + tag + "-->").find("k1999"), std::string::npos)
        << "libxml2 leaves a comment that is too long";
    EXPECT_EQ(cut("<a><?" + std::string(50'001, 'x') + tag + "?>").find("k1999"), std::string::npos)
        << "and the name of an instruction";
    EXPECT_EQ(cut(repeated(300, "<a>") + tag).find("k1999"), std::string::npos);
}

TEST(JxmlBounds, WellFormedTextsAreNotCut) {
    for (const std::string text :
         {"<?xml version=\"1.0\" encoding=\"UTF-8\" standalone='yes'?>\n<!-- < \" -- > --><a/>\n",
          "<!DOCTYPE a SYSTEM \"x'y\" [<!ENTITY e '<b k=\"1\">]]></b>'><!-- ' --><?p ' ?> %p;\n]\n >\n<a>&e;</a>",
          "<!DOCTYPE a><a k='>' l = \"'\"\n>text > ' \" ]] <b /></a>", "<a><![CDATA[<b k=]] >]]]]><?p <b k=?></a >",
          "<?xml version='1.0' standalone='no'?>\r\n<a\tk\r=\r'v'\r/>\r\n", "<a><?\xC3\xA9 a<b ?></a>",
          "<?xml-stylesheet type='text/xsl' href='style.xsl'?>\n<a/>", "<?xml-x > <c d?>\n<a/>",
          "\xEF\xBB\xBF<a>\xC3\xA9</a>", "<\xC3\xA9 \xC3\xA9='\xED\x9F\xBF\xEF\xBF\xBD\xEF\xBC\x81'/>"})
        EXPECT_EQ(cut(text), text);
}

TEST(JxmlBounds, ATextMayEndAnywhereAndIsNotReadBeyond) {
    const std::string whole = "<?xml version='1.0'?><!DOCTYPE a SYSTEM 'x' [ <!-- c --><?p q?>"
                              "<!ENTITY % p '<!ELEMENT b ANY>'>%p;<!ATTLIST a i ID #IMPLIED>]> <?p ?><!-- c -->"
                              "<a k = 'v' l=\"&#1;\">&lt;<![CDATA[ ]]><b /><\xC3\xA9/><?\xC3\xA9?></a>\xEF\xBF\xBD";
    for (size_t length = 0; length <= whole.size(); ++length) {
        const std::vector<char> bytes(whole.data(), whole.data() + length); // a byte behind it is an overrun
        std::string_view seen(bytes.data(), length);
        EXPECT_EQ(jxml_bounds_check(&seen).refusal.format, nullptr) << length;
    }
}

TEST(JxmlBounds, ControlCharactersAreFoundWhereverTheyStand) {
    for (size_t place = 0; place < 40; ++place)
        for (const std::string impossible : {"\x01", "\x1F", "\xEF\xBF\xBF", "\xED\xA0\x80"}) {
            const std::string before(place, 'x');
            EXPECT_EQ(cut(before + impossible + "after").size(), place + 1);
            EXPECT_EQ(cut(before + "\t\r\n\x20\x7F\xC3\xA9" + impossible + "after").size(), place + 8);
        }
}

TEST(JxmlBounds, WhatParameterEntitiesMayExpandToDependsOnTheTags) {
    const auto words = [](const std::string &declarations, long tags) {
        const std::string text = "<!DOCTYPE a [" + declarations + "]><a>" + repeated(tags, "<b/>") + "</a>";
        std::string_view seen(text);
        return jxml_bounds_check(&seen).parameter_words;
    };
    EXPECT_EQ(words("<!ENTITY % p '<!ELEMENT a ANY>'>%p;", 20'000), 10'000);
    EXPECT_EQ(words("<!ENTITY % p '<!ATTLIST a b CDATA #IMPLIED>'>%p;", 1), 10'000);
    for (const char *declaration : {"<!ENTITY % p '<!ATTLIST a b CDATA #IMPLIED>'>", "<!ENTITY % p '&#60;'>"})
        EXPECT_EQ(words(declaration, 19'998), 632) << "20,000 tags, 2 * sqrt(2,000,000,000 / 20,000)";
}

// ---- through the holder

TEST_F(XmlBounds, ARefusalIsToldBeforeTheFile) {
    EXPECT_EQ(load("<a" + attributes(1001) + "/>"), 1);
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(holder->doc, nullptr);
    EXPECT_EQ(take_lines(), (Lines{error("a tag of " + path_of("test.xml") + " has more than 1000 attributes"),
                                   error("unable to parse file " + path_of("test.xml"))}));
    EXPECT_EQ(load("<a" + attributes(1000, "k", "v") + "/>", "other.xml"), 1);
    EXPECT_EQ(attribute("a k999"), "v");
}

TEST_F(XmlBounds, NamesAreBounded) {
    std::string names;
    for (long i = 0; i < 60'000; ++i)
        names += "<a-name-of-quite-some-length-" + std::to_string(i) + "/>";
    EXPECT_EQ(load("<a>" + names.substr(0, names.find("-20000/>") + 8) + "</a>"), 1);
    EXPECT_EQ(count("a *"), "20001");
    for (const char first : std::string("abcdefghij"))
        EXPECT_EQ(setattr("a " + std::string(40'000, first) + " v"), 0) << "the document may go on growing";
    EXPECT_EQ(take_lines(), Lines());
    EXPECT_EQ(load("<a>" + names + "</a>"), 1);
    EXPECT_EQ(take_lines(), (Lines{error("names in " + path_of("test.xml") + " take more than 1000000 bytes"),
                                   error("unable to parse file " + path_of("test.xml"))}));
}

TEST_F(XmlBounds, LargeFilesAreReadAsLongAsTheyAreSimple) {
    const std::string bytes = "<b><![CDATA[" + std::string(4'000'000, 'F') + "]]></b>";
    ASSERT_EQ(load("<a>" + repeated(5, bytes) + "</a>"), 1);
    EXPECT_EQ(count("a b"), "5");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlBounds, TheEditorsTextIsBoundedToo) {
    load("<kept/>");
    std::string text = "<a" + attributes(1001) + "/>";
    char *edited = text.data();
    EXPECT_EQ(jxmlfile_edsave(holder, &edited, static_cast<long>(text.size()), nullptr, 0), -1);
    EXPECT_EQ(document(), "<kept/>");
    EXPECT_EQ(take_lines(), Lines{error("a tag of " + path_of("test.xml") + " has more than 1000 attributes")});
}

TEST_F(XmlBounds, NoMoreAttributesAreSetThanCanBeReadAgain) {
    load("<a" + attributes(998) + " xmlns:p='u'/>");
    EXPECT_EQ(setattr("a last v"), 0);
    EXPECT_EQ(setattr("a more v"), -1);
    EXPECT_EQ(setattr("a last w"), 0) << "it is there already";
    EXPECT_EQ(take_lines(), Lines{error("attributes are too many for xml (more than 1000)")});
    ASSERT_TRUE(reload());
    EXPECT_EQ(attribute("a last"), "w");
}

TEST_F(XmlBounds, ItemsOfAWideMenuAreNotSearchedForInAll) {
    std::string items;
    for (int i = 0; i < 2000; ++i)
        items += "<menu-item number='" + std::to_string(i) + "'>" + std::to_string(i) + "</menu-item>";
    load("<resourcefile><resource><menu number='3'>" + items + "</menu></resource></resourcefile>");
    const std::string path = "resourcefile resource menu attr number 3 menu-item attr number ";
    for (int i = 0; i < 2000; ++i) {
        path_selection selected;
        EXPECT_TRUE(jxml_index_select(&holder->index, holder->doc, expression(typed(path + std::to_string(i))).c_str(),
                                      &selected));
        ASSERT_EQ(selected.count, 1);
    }
}
