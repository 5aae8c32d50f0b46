// Writing text and bytes, and making elements on the way to them.
#include "support/xml-test.h"

#include <limits>

using namespace maxhost;

namespace {

class XmlWritingTest : public XmlTest {
  protected:
    // A set that is refused with one line and changes nothing.
    void expect_refused(const std::string &path_and_data, const std::string &line, const Atoms &more = {}) {
        const std::string before = document();
        EXPECT_EQ(set(path_and_data, more), -1) << path_and_data;
        EXPECT_EQ(take_lines(), (Lines{line})) << path_and_data;
        EXPECT_EQ(document(), before) << path_and_data;
    }
};

} // namespace

// ---- writing text

TEST_F(XmlWritingTest, AnElementIsMadeOnceAndFoundAgain) {
    load("<a/>");
    EXPECT_EQ(set("a b attr n 7 text hello"), 0);
    EXPECT_EQ(document(), "<a><b n=\"7\">hello</b></a>");
    EXPECT_EQ(set("a b attr n 7 text again"), 0);
    EXPECT_EQ(document(), "<a><b n=\"7\">again</b></a>");
}

TEST_F(XmlWritingTest, DataAtomsAreJoinedWithBlanks) {
    load("<a/>");
    EXPECT_EQ(set("a text 1 2.5 x"), 0);
    EXPECT_EQ(text("a"), "1 2.500000 x");
    EXPECT_EQ(set("a text -3 \"two words\" 0.1"), 0);
    EXPECT_EQ(text("a"), "-3 two words 0.100000");
}

TEST_F(XmlWritingTest, ABlockInTextIsTakenUpToItsFirstZeroAndStaysTheCallers) {
    load("<a/>");
    const t_atom whole = block_atom("block text"), zero = block_atom(std::string("z\0z", 3));
    EXPECT_EQ(set("a text x", {whole, zero, symbol_atom("y")}), 0);
    EXPECT_EQ(text("a"), "x block text z y");
    sysmem_freeptr(atom_getobj(&whole));
    sysmem_freeptr(atom_getobj(&zero));
}

TEST_F(XmlWritingTest, AtomsOfOtherTypesAreLeftOut) {
    load("<a/>");
    t_atom odd = symbol_atom("odd"), null;
    odd.a_type = 77;
    atom_setobj(&null, nullptr);
    EXPECT_EQ(set("a text x", {odd, symbol_atom("y")}), 0);
    EXPECT_EQ(text("a"), "x y");
    EXPECT_EQ(set("a text", {odd}), 0);
    EXPECT_EQ(text("a"), "");
    EXPECT_EQ(set("a text x", {null}), 0);
    EXPECT_EQ(text("a"), "x");
    EXPECT_EQ(set("a cdata AB", {odd}), 0);
    EXPECT_EQ(get("a"), "block 41 42");
}

TEST_F(XmlWritingTest, NoDataIsAnEmptyText) {
    load("<a>before</a>");
    EXPECT_EQ(set("a text"), 0);
    EXPECT_EQ(document(), "<a/>");
    EXPECT_EQ(text("a"), "");
}

TEST_F(XmlWritingTest, TextTakesThePlaceOfAllContent) {
    load("<a>one<b>two</b><![CDATA[FF]]></a>");
    EXPECT_EQ(set("a text new"), 0);
    EXPECT_EQ(document(), "<a>new</a>");
}

TEST_F(XmlWritingTest, TheFirstKeywordEndsThePath) {
    load("<a/>");
    EXPECT_EQ(set("a text text cdata attr"), 0);
    EXPECT_EQ(text("a"), "text cdata attr");
    EXPECT_EQ(set("text x"), -1);
    EXPECT_EQ(take_lines(), (Lines{unable("evaluate", "")}));
}

TEST_F(XmlWritingTest, AMissingKeywordIsABadArgument) {
    load("<a/>");
    EXPECT_EQ(set("a b"), -2);
    EXPECT_EQ(set(""), -2);
    const t_atom block = block_atom("x");
    EXPECT_EQ(set("a b", {block}), -2);
    sysmem_freeptr(atom_getobj(&block)); // it is data of no kind, and has stayed the caller's
    EXPECT_EQ(document(), "<a/>");
    EXPECT_EQ(take_lines(), Lines());
}

// ---- writing bytes

TEST_F(XmlWritingTest, BytesAreWrittenAsHexadecimal) {
    load("<resourcefile><resource/></resourcefile>");
    EXPECT_EQ(set("resourcefile resource 1 cdata 1 2 255"), 0);
    EXPECT_EQ(document(), "<resourcefile><resource><![CDATA[0102FF]]></resource></resourcefile>");
    EXPECT_EQ(get("resourcefile resource", 3), "1 2 -1");
    EXPECT_EQ(get("resourcefile resource"), "block 01 02 FF");
}

TEST_F(XmlWritingTest, NumbersAreTheirLowEightBits) {
    load("<a/>");
    EXPECT_EQ(set("a cdata -1 257 65.9 -1.5 0.5 1e300 300.7"), 0);
    EXPECT_EQ(get("a"), "block FF 01 41 FF 2C") << "zeros leave no trace";
}

TEST_F(XmlWritingTest, NumbersThatHaveNoLowBitsLeaveNoTrace) {
    load("<a/>");
    Atoms atoms(3);
    atom_setfloat(&atoms[0], std::numeric_limits<double>::infinity());
    atom_setfloat(&atoms[1], std::numeric_limits<double>::quiet_NaN());
    atom_setlong(&atoms[2], 65);
    EXPECT_EQ(set("a cdata", atoms), 0);
    EXPECT_EQ(get("a"), "block 41");
}

TEST_F(XmlWritingTest, ZerosAmongSingleBytesAreOverwritten) {
    load("<a/>");
    EXPECT_EQ(set("a cdata 1 0 2 0"), 0);
    EXPECT_EQ(get("a"), "block 01 02");
}

TEST_F(XmlWritingTest, SymbolsAreTheirBytes) {
    load("<a/>");
    EXPECT_EQ(set("a cdata AB é \"\" c"), 0);
    EXPECT_EQ(get("a"), "block 41 42 C3 A9 63");
}

TEST_F(XmlWritingTest, ABlockReplacesWhatCameBefore) {
    load("<a/>");
    EXPECT_EQ(set("a cdata 9 9", {block_atom(std::string("\0\xFF\n", 3))}), 0);
    EXPECT_EQ(get("a"), "block 00 FF 0A");
    EXPECT_EQ(set("a cdata", {block_atom("x"), block_atom("yz"), typed("65")[0]}), 0);
    EXPECT_EQ(get("a"), "block 79 7A 41");
    EXPECT_EQ(set("a cdata 9", {block_atom("")}), 0);
    EXPECT_EQ(get("a"), "block");
}

TEST_F(XmlWritingTest, NoDataIsAnEmptySection) {
    load("<a/>");
    EXPECT_EQ(set("a cdata"), 0);
    EXPECT_EQ(document(), "<a><![CDATA[]]></a>");
    EXPECT_EQ(get("a"), "block");
}

TEST_F(XmlWritingTest, BytesTakeThePlaceOfTheFirstChildAndTheOthersStay) {
    load("<a>one<b/>two</a>");
    EXPECT_EQ(set("a cdata A"), 0);
    EXPECT_EQ(document(), "<a><![CDATA[41]]><b/>two</a>");
}

TEST_F(XmlWritingTest, ABlockPassesToTheHolderInEveryCase) {
    const auto expect_taken = [this](const std::string &path_and_keyword, long result) {
        const t_atom block = block_atom("x");
        const size_t blocks = memory_in_use().blocks;
        EXPECT_EQ(set(path_and_keyword, {block}), result) << path_and_keyword;
        EXPECT_EQ(memory_in_use().blocks, blocks - 1) << path_and_keyword;
    };
    expect_taken("a cdata", -1); // nothing is loaded
    load("<a/>");
    expect_taken("a cdata", 0);
    expect_taken("a b[ cdata", -1);
    expect_taken("other cdata", 0);
    expect_taken("cdata", -1);
    take_lines();
}

TEST_F(XmlWritingTest, ABlockThatStandsThereTwiceIsReleasedOnce) {
    load("<a/>");
    const t_atom block = block_atom("q");
    EXPECT_EQ(set("a cdata", {block, symbol_atom("x"), block}), 0);
    EXPECT_EQ(get("a"), "block 71");
}

TEST_F(XmlWritingTest, NoBlockIsRefused) {
    load("<a>before</a>");
    t_atom null;
    atom_setobj(&null, nullptr);
    expect_refused("a cdata x", error("unable to create cdata  (err -1)"), {null});
}

// ---- making elements

TEST_F(XmlWritingTest, EveryMissingStepIsMade) {
    load("<a/>");
    EXPECT_EQ(set("a b c attr n 1 d text x"), 0);
    EXPECT_EQ(document(), "<a><b><c n=\"1\"><d>x</d></c></b></a>");
    EXPECT_EQ(set("a b c attr n 2.5 d text y"), 0);
    EXPECT_EQ(document(), "<a><b><c n=\"1\"><d>x</d></c><c n=\"2.500000\"><d>y</d></c></b></a>");
}

TEST_F(XmlWritingTest, WhatIsThereIsPreferredToWhatCouldBeMade) {
    load("<a><b/><b n='1'/></a>");
    EXPECT_EQ(set("a b text first"), 0);
    EXPECT_EQ(set("a b attr n 1 text second"), 0);
    EXPECT_EQ(document(), "<a><b>first</b><b n=\"1\">second</b></a>");
}

TEST_F(XmlWritingTest, AMissingPositionBecomesPartOfTheName) {
    load("<a><b/></a>");
    EXPECT_EQ(set("a b 1 text there"), 0);
    EXPECT_EQ(set("a b 3 text made"), 0);
    EXPECT_EQ(set("a b -1 text below"), 0);
    EXPECT_EQ(document(), "<a><b>there</b><b[3]>made</b[3]><b[-1]>below</b[-1]></a>");
}

TEST_F(XmlWritingTest, AFilterWithQuotesIsMadeAsItIsSpelled) {
    load("<a/>");
    EXPECT_EQ(set("a b attr n \"'x'\" text 1"), 0);
    EXPECT_EQ(attribute("a b n"), "'x'");
}

TEST_F(XmlWritingTest, EverySlashEndsAStepAlsoInAValue) {
    load("<a/>");
    expect_refused("a b attr n \"'x/y'\" text 1", unable("evaluate", "/a/b[@n='x"));
}

TEST_F(XmlWritingTest, UnderAnotherRootThereIsNothingToDo) {
    load("<a k='1'>text</a>");
    EXPECT_EQ(set("other b text x"), 0);
    EXPECT_EQ(set("a attr k 2 text x"), 0);
    EXPECT_EQ(set("a attr k 2 b text x"), 0);
    EXPECT_EQ(document(), "<a k=\"1\">text</a>");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlWritingTest, TheNodeThatIsSetIsHandedOut) {
    load("<a/>");
    for (const char *path : {"a b", "other"}) {
        Atoms atoms = typed(path);
        t_atom *at = atoms.data();
        long count = static_cast<long>(atoms.size());
        xmlNodePtr node = nullptr;
        EXPECT_EQ(jxmlfile_set_node(holder, &count, &at, &node, 1), 0);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(at, atoms.data() + atoms.size());
        EXPECT_EQ(node != nullptr, std::string(path) == "a b") << "a second root is never made";
    }
    EXPECT_EQ(document(), "<a><b/></a>");
}

TEST_F(XmlWritingTest, WhatCannotBeAnElementIsNotMade) {
    load("<a k='1'/>");
    for (const char *step :
         {"*", "@x", "text()", "child::c", "c=1", "c[d]", "c[last()]", "b[c]", "c[1+1]", "self::c", "b | id('[@n=')"})
        expect_refused("a \"" + std::string(step) + "\" text x", unable("create node at", "/a/" + std::string(step)));
    expect_refused("a .. b text x", unable("create node at", "/a/../b"));
    expect_refused("a @k b text x", unable("create node at", "/a/@k/b"));
}

TEST_F(XmlWritingTest, WhatCannotBeAnAttributeIsNotMade) {
    load("<a/>");
    expect_refused("a b attr * 5 text x", unable("create attribute at", "/a/b[@*=5]"));
    expect_refused("a b attr n \"'\xC3'\" text x", unable("create attribute at", "/a/b[@n='\xC3']"));
}

TEST_F(XmlWritingTest, AFilterWithoutAValueMakesNoAttribute) {
    load("<a/>");
    EXPECT_EQ(set("a \"b[@n]\" text one"), 0);
    EXPECT_EQ(set("a \"c[@n>'=]']\" text two"), 0);
    EXPECT_EQ(document(), "<a><b>one</b><c>two</c></a>");
}

TEST_F(XmlWritingTest, APathMayEndAtWhatIsNoElement) {
    load("<a xmlns:p='u' k='1' p:k='2' id='x'>text<b/><![CDATA[FF]]><!--note--><?do this?></a>");
    EXPECT_EQ(set("a @k text new 1"), 0);
    EXPECT_EQ(set("a \"@*[namespace-uri()='u']\" text a&b<\\\"e"), 0);
    EXPECT_EQ(set("a \"text()\" text x&amp;y"), 0);
    EXPECT_EQ(set("a \"node()[3]\" text 00]]>"), 0);
    EXPECT_EQ(set("a \"comment()\" text seen"), 0);
    EXPECT_EQ(set("a \"processing-instruction()\" text that"), 0);
    const std::string changed = "<a xmlns:p=\"u\" k=\"new 1\" p:k=\"a&amp;b&lt;&quot;e\" id=\"x\">x&amp;amp;y<b/>"
                                "<![CDATA[00]]]]><![CDATA[>]]><!--seen--><?do that?></a>";
    EXPECT_EQ(document(), changed);
    ASSERT_TRUE(reload());
    EXPECT_EQ(document(), changed);
    EXPECT_EQ(set("a @k text"), 0);
    EXPECT_EQ(set("a \"text()\" text"), 0);
    EXPECT_EQ(document().substr(0, 44), "<a xmlns:p=\"u\" k=\"\" p:k=\"a&amp;b&lt;&quot;e\"");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlWritingTest, AnAttributeThatAPathEndsAtIsFoundByItsNewValue) {
    load("<a><b number='1'>one</b></a>");
    EXPECT_EQ(count("a b attr number 1"), "1");
    EXPECT_EQ(set("a b @number text 2"), 0);
    EXPECT_EQ(count("a b attr number 1"), "0");
    EXPECT_EQ(text("a b attr number 2"), "one");
}

TEST_F(XmlWritingTest, WhatWouldNotBeReadAgainIsNotSet) {
    load("<a k='1'><!--note--><?do this?></a>");
    const auto refused = [this](const std::string &path, const std::string &text, int byte) {
        EXPECT_EQ(set(path + " text", {symbol_atom(text)}), -1);
        EXPECT_EQ(take_lines(), Lines{error("text cannot be held by xml (byte " + std::to_string(byte) + ")")}) << text;
    };
    refused("a \"comment()\"", "ab--cd", 3);
    refused("a \"comment()\"", "ab-", 3);
    refused("a \"comment()\"", "a\rb--", 2);
    refused("a \"comment()\"", "--\r", 1);
    refused("a \"processing-instruction()\"", "ab?>", 3);
    refused("a \"processing-instruction()\"", "a\r", 2);
    refused("a \"processing-instruction()\"", " a", 1);
    refused("a @k", "\x01", 1);
    const std::string quotes(2'000'000, '"');
    EXPECT_EQ(set("a @k text", {symbol_atom(quotes)}), -1);
    EXPECT_EQ(take_lines(), Lines{error("attributes are too long for xml (more than 9000000 bytes)")});
    EXPECT_EQ(document(), "<a k=\"1\"><!--note--><?do this?></a>");
}

TEST_F(XmlWritingTest, ACarriageReturnInASectionIsRefused) {
    load("<a><![CDATA[x]]></a>");
    expect_refused("a \"text()\" text", error("text cannot be held by xml (byte 2)"), {symbol_atom("y\r")});
}

TEST_F(XmlWritingTest, ATextThatGetsEmptyIsGone) {
    load("<a>text<b/>more</a>");
    EXPECT_EQ(set("a \"text()\" text"), 0);
    EXPECT_EQ(document(), "<a><b/>more</a>");
    EXPECT_EQ(count("a \"text()\""), "1") << "as after the next reading";
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlWritingTest, BytesGoIntoElementsOnly) {
    load("<a k='1'>text</a>");
    for (const char *path : {"a @k", "a \"text()\""})
        expect_refused(std::string(path) + " cdata 1", invalid_node);
}

TEST_F(XmlWritingTest, NothingIsMadeUnderWhatIsNoElement) {
    load("<a k='1'>text</a>");
    expect_refused("a @k b text x", unable("create node at", "/a/@k/b"));
    expect_refused("a \"text()\" b text x", unable("create node at", "/a/text()/b"));
    for (const char *path : {"a \"namespace::*\"", "a .."})
        expect_refused(std::string(path) + " text x", invalid_node);
    expect_refused("a \"namespace::*\" b text x", unable("create node at", "/a/namespace::*/b"));
    EXPECT_EQ(set("a @k .. text new"), 0) << "on the way it is no harm";
    EXPECT_EQ(document(), "<a k=\"1\">new</a>");
}

TEST_F(XmlWritingTest, AStepThatIsTooLongIsRefused) {
    load("<a/>");
    const std::string longest(127, 'n');
    EXPECT_EQ(set("a " + longest + " text x"), 0);
    EXPECT_EQ(text("a " + longest), "x");
    expect_refused("a " + longest + "n text x", unable("create node at", "/a/" + longest + "n"));
    const std::string value(200, '7');
    expect_refused("a b attr n", unable("create node at", "/a/b[@n=" + value + "]"),
                   {symbol_atom(value), symbol_atom("text")});
}

TEST_F(XmlWritingTest, AnOverlongPathMakesNothingOnTheWay) {
    load("<a/>");
    std::string path = "a";
    for (int i = 0; i < 30; ++i)
        path += " " + std::string(100, 'c');
    EXPECT_EQ(set(path + " text x"), -1);
    EXPECT_EQ(document(), "<a/>");
    ASSERT_EQ(take_lines().size(), 1u);
}

TEST_F(XmlWritingTest, ElementsMadeBeforeAFailingStepStay) {
    load("<a/>");
    EXPECT_EQ(set("a b * text x"), -1);
    EXPECT_EQ(take_lines(), (Lines{unable("create node at", "/a/b/*")}));
    EXPECT_EQ(document(), "<a><b/></a>");
}

TEST_F(XmlWritingTest, NothingIsMadeDeeperThanLibxmlReads) {
    load("<a/>");
    std::string path = "a";
    for (int i = 1; i < 256; ++i)
        path += " a";
    EXPECT_EQ(set(path + " text x"), 0);
    EXPECT_EQ(set(path + " a text x"), -1);
    ASSERT_EQ(take_lines().size(), 1u);
    ASSERT_TRUE(reload());
    EXPECT_EQ(text(path), "x");
}
