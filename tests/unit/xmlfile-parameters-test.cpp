// Parameter entities: those of ordinary document types are read, those that multiply are refused.
#include "support/xml-test.h"

using namespace maxhost;

namespace {

std::string repeated(int times, const std::string &text) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

// Entities %e0; to %eN;, each of which refers so often to the one before, with `percent` for the sign.
std::string chain(const std::string &innermost, int levels, int times, const std::string &percent,
                  const std::string &after = "") {
    std::string text = "<!ENTITY % e0 \"" + innermost + "\">";
    for (int i = 1; i <= levels; ++i)
        text += "<!ENTITY % e" + std::to_string(i) + " \"" +
                repeated(times, percent + "e" + std::to_string(i - 1) + ";" + after) + "\">";
    return "<!DOCTYPE a [" + text + "%e" + std::to_string(levels) + ";]><a/>";
}

class XmlParametersTest : public XmlTest {
  protected:
    void expect_refused(const std::string &content) {
        SCOPED_TRACE(content.substr(0, 200));
        EXPECT_EQ(load(content), 1);
        EXPECT_EQ(holder->doc, nullptr);
        const Lines told = take_lines();
        ASSERT_EQ(told.size(), 2u);
        const std::string reason = error("parameter entities of " + path_of("test.xml") + " expand to more than ");
        EXPECT_EQ(told[0].substr(0, reason.size()), reason);
        EXPECT_EQ(told[1], error("unable to parse file " + path_of("test.xml")));
        EXPECT_EQ(xmlGetLastError(), nullptr) << "libxml2 has no reason of its own";
    }
    void expect_read(const std::string &content) {
        SCOPED_TRACE(content.substr(0, 200));
        EXPECT_EQ(load(content), 1);
        EXPECT_EQ(take_lines(), Lines());
        EXPECT_EQ(holder->loaded, 1);
    }
};

} // namespace

TEST_F(XmlParametersTest, ReferencesThatMultiplyAreRefusedHoweverTheyAreWritten) {
    for (const char *percent : {"&#37;", "&#x25;", "&#037;", "&#x000025;"})
        for (const char *innermost : {"x", " ", "<!ELEMENT b ANY>", "<!-- c -->"}) {
            expect_refused(chain(innermost, 4, 10, percent));
            expect_refused(chain(innermost, 13, 2, percent));
            expect_refused(chain(innermost, 10, 10, percent));
        }
}

TEST_F(XmlParametersTest, ReferencesThatMultiplyInADeclarationOfTheirOwnAreRefused) {
    const std::string inner = "<!ENTITY % b0 '<!ELEMENT b ANY>'><!ENTITY % make \"" + [] {
        std::string made;
        for (int i = 1; i < 6; ++i)
            made += "<!ENTITY &#37; b" + std::to_string(i) + " '" +
                    repeated(10, "&#38;#37;b" + std::to_string(i - 1) + ";") + "'>";
        return made;
    }() + "\">%make;%b5;";
    expect_refused("<!DOCTYPE a [" + inner + "]><a/>");
}

TEST_F(XmlParametersTest, ManyWordsAndManyBytesAreRefused) {
    const auto used = [](const std::string &words, int times) {
        return "<!DOCTYPE a [<!ENTITY % p '" + words + "'>" + repeated(times, "%p;<?x?>") + "]><a/>";
    };
    const std::string comment = "<!--" + repeated(96, " b") + "-->"; // 97 words with their last one
    expect_read(used(comment, 100));
    expect_refused(used(comment, 110));
    const std::string long_word = "<!--" + std::string(99'993, 'x') + "-->"; // counts as a thousand
    expect_read(used(long_word, 9));
    expect_refused(used(long_word, 10));
    expect_refused("<!DOCTYPE a SYSTEM 'elsewhere' [" + repeated(6000, "%unknown;") + "]><a/>");
}

TEST_F(XmlParametersTest, DefaultsThatParameterEntitiesDeclareAreCounted) {
    std::string attributes;
    for (int i = 0; i < 500; ++i)
        attributes += " b" + std::to_string(i) + " CDATA \"\"";
    const std::string start = "<!DOCTYPE a [<!ENTITY % p '<!ATTLIST b" + attributes + ">'>%p;]><a>";
    expect_read(start + repeated(100, "<b/>") + "</a>");
    expect_refused(start + repeated(10'000, "<b/>") + "</a>");
}

TEST_F(XmlParametersTest, OrdinaryDocumentTypesAreRead) {
    // As in the XML recommendation, appendix D.
    expect_read("<!DOCTYPE a [\n<!ELEMENT a (#PCDATA) >\n<!ENTITY % xx '&#37;zz;'>\n"
                "<!ENTITY % zz '&#60;!ENTITY tricky \"error-prone\" >' >\n%xx;\n]>\n"
                "<a>This sample shows a &tricky; method.</a>");
    EXPECT_EQ(text("a"), "This sample shows a error-prone method.");
    // As documents of manuals begin.
    expect_read("<!DOCTYPE a PUBLIC \"-//OASIS//DTD DocBook XML V4.5//EN\" \"docbookx.dtd\" [\n"
                "<!ENTITY % common SYSTEM \"common.ent\">\n%common;\n<!ENTITY version \"1.2\">\n"
                "<!ENTITY % local.class \"| b | c\">\n<!ENTITY % module \"INCLUDE\">\n]><a>&version;</a>");
    expect_read(chain("<!ELEMENT b ANY>", 3, 5, "&#37;", "<?x?>"));
    expect_read("<!DOCTYPE a [<!ENTITY % list '<!ATTLIST b c CDATA \"d\">'>%list;]><a>" + repeated(1000, "<b/>") +
                "</a>");
    EXPECT_EQ(attribute("a b[1] c"), "d");
}

TEST_F(XmlParametersTest, WhatIsNotUsedDoesNotCount) {
    expect_read("<!DOCTYPE a [<!ENTITY % p '" + repeated(50'000, "b ") + "'>]><a/>");
}

TEST_F(XmlParametersTest, ADeclarationIsNotAReferenceHoweverOftenItComes) {
    expect_read("<!DOCTYPE a [" + repeated(4000, "<!ENTITY % e \"x y z\">") + "]><a/>");
    expect_refused("<!DOCTYPE a [" + repeated(4000, "<!ENTITY % e \"<?x y z?>\">%e;") + "]><a/>");
    expect_refused("<!DOCTYPE a [<!ENTITY % e \"<?x y z?>\">" + repeated(4000, "%e;<?x?>") + "]><a/>");
}
