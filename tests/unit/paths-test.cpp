// The path language: lists of atoms become XPath expressions.
#include "support/xml-test.h"

#include <fstream>

using namespace maxhost;

namespace {

class PathsTest : public XmlTest {
  protected:
    static constexpr size_t longest = JXMLFILE_EXPRESSION_SIZE - 1; // of an expression, without its terminating zero
};

// The expression of `count` steps of the same name.
Atoms steps(size_t count, const std::string &name) { return Atoms(count, symbol_atom(name)); }

} // namespace

TEST_F(PathsTest, TheTableHolds) {
    std::ifstream table(TEST_DATA_DIR "/paths.tsv");
    size_t rows = 0;
    for (std::string row; std::getline(table, row); ++rows) {
        const size_t tab = row.find('\t');
        ASSERT_NE(tab, row.npos) << row;
        EXPECT_EQ(expression(typed(row.substr(0, tab))), row.substr(tab + 1)) << row;
    }
    EXPECT_GE(rows, 40u);
}

TEST_F(PathsTest, NoAtomsMakeNoExpression) {
    EXPECT_EQ(expression({}), "");
    EXPECT_EQ(expression(typed("2.5")), "") << "nor do atoms that are left out";
}

TEST_F(PathsTest, TheExpressionIsAppended) {
    EXPECT_EQ(expression(typed("b 2"), "/a"), "/a/b[2]");
    EXPECT_EQ(expression({}, "/a"), "/a");
}

TEST_F(PathsTest, ThePathIsConsumedAndWhatFollowsIsLeft) {
    Atoms atoms = typed("a attr n 5 2 name value");
    long count = 5;
    t_atom *at = atoms.data();
    char buffer[JXMLFILE_EXPRESSION_SIZE] = "";
    char *text = buffer;
    jxmlfile_to_xmlXPath(&count, &at, &text);
    EXPECT_STREQ(buffer, "/a[@n=5][2]");
    EXPECT_EQ(count, 0);
    EXPECT_EQ(at, atoms.data() + 5);
}

TEST_F(PathsTest, AnIncompleteFilterReadsNoAtomBehindThePath) {
    for (const char *path : {"a attr", "a attr n"}) {
        Atoms atoms = typed(path); // of exactly that size, so that tools see a read behind it
        atoms.shrink_to_fit();
        EXPECT_EQ(expression(atoms), std::string(path) == "a attr" ? "/a" : "/a[@n=");
    }
}

TEST_F(PathsTest, AnObjectIsLeftOutAndLeavesAFilterOpen) {
    const t_atom block = block_atom("x");
    EXPECT_EQ(expression(typed("a attr id", {block})), "/a[@id=");
    EXPECT_EQ(expression(typed("a attr id", {block, symbol_atom("b")})), "/a[@id=/b");
    EXPECT_EQ(expression(typed("a", {block, symbol_atom("b")})), "/a/b");
    EXPECT_EQ(expression(typed("a attr", {block, symbol_atom("b")})), "/a/b");
    sysmem_freeptr(atom_getobj(&block));
}

TEST_F(PathsTest, AnAtomOfAnUnknownTypeIsLeftOut) {
    t_atom odd = symbol_atom("odd");
    odd.a_type = 77;
    EXPECT_EQ(expression(typed("a", {odd, symbol_atom("b")})), "/a/b");
    EXPECT_EQ(expression(typed("a attr id", {odd})), "/a[@id=");
}

TEST_F(PathsTest, TheLongestNumberFits) {
    t_atom number;
    atom_setfloat(&number, -1e300);
    const std::string text = expression(typed("a attr n", {number}));
    EXPECT_EQ(text.size(), std::string("/a[@n=]").size() + 1 + 301 + 7);
    EXPECT_TRUE(text.ends_with(".000000]"));
}

TEST_F(PathsTest, AnExpressionMayFillTheBuffer) {
    EXPECT_EQ(expression(steps(1, std::string(longest - 1, 'a'))), "/" + std::string(longest - 1, 'a'));
    const std::string text = expression(steps(longest / 89, std::string(88, 'a'))); // 23 times 89 is 2047
    EXPECT_EQ(text.size(), longest);
    EXPECT_EQ(text.back(), 'a');
}

TEST_F(PathsTest, AnExpressionThatIsTooLongIsCutAndCanNeverBeEvaluated) {
    for (const size_t length : {longest, longest + 1, size_t{5000}, size_t{100000}}) {
        const std::string text = expression(steps(1, std::string(length, 'a')));
        EXPECT_EQ(text, "/" + std::string(longest - 2, 'a') + "[") << length;
    }
    const std::string many = expression(steps(2000, "abc"));
    EXPECT_EQ(many.size(), longest);
    EXPECT_EQ(many.back(), '[');
}

TEST_F(PathsTest, NothingFollowsWhatDidNotFit) {
    const std::string text = expression(typed(std::string(longest, 'a') + " b 3 attr n 5"));
    EXPECT_EQ(text, "/" + std::string(longest - 2, 'a') + "[");
}

TEST_F(PathsTest, ACutLeavesNoHalfCharacter) {
    for (const size_t before : {0, 1, 2, 3}) {
        std::string name(before, 'a');
        for (int i = 0; i < 1000; ++i)
            name += "€";
        const std::string text = expression(steps(1, name));
        ASSERT_EQ(text.back(), '[');
        EXPECT_EQ((text.size() - 2 - before) % 3, 0u) << text.size();
        EXPECT_LE(text.size(), longest);
    }
}

TEST_F(PathsTest, ABufferWithoutAnEndIsNotOverrun) {
    std::vector<char> buffer(JXMLFILE_EXPRESSION_SIZE, 'x');
    char *text = buffer.data();
    Atoms atoms = typed("a b");
    t_atom *at = atoms.data();
    long count = 2;
    jxmlfile_to_xmlXPath(&count, &at, &text);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(buffer.back(), '\0');
}

TEST_F(PathsTest, OperationsRefuseAPathThatIsTooLong) {
    load("<a/>");
    const std::string path = "a " + std::string(3000, 'b');
    EXPECT_EQ(count(path), "failed -1");
    EXPECT_EQ(get(path), "failed -1");
    EXPECT_EQ(set(path + " text x"), -1);
    const Lines told = take_lines();
    ASSERT_EQ(told.size(), 3u);
    for (const std::string &line : told)
        EXPECT_EQ(line, error("unable to evaluate xpath expression \"/a/" + std::string(longest - 4, 'b') + "[\""));
    EXPECT_EQ(document(), "<a/>");
}
