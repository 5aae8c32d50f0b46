// vrk-xml on files that others have made: nothing changes but what was edited, and the blanks between elements.
#include "xml-tool/xml-tool-test.h"

#include <algorithm>
#include <cctype>
#include <memory>

#include <libxml/parser.h>
#include <libxml/tree.h>

namespace {

struct RealFile {
    const char *file;
    const char *element; // of which the first that there is gets edited
    size_t elements;     // at least so many are there
};

// Packages shared-mime-info and iso-codes.
const RealFile files[] = {
    {"/usr/share/mime/packages/freedesktop.org.xml", "* * 3", 1},
    {"/usr/share/xml/iso-codes/iso_3166-1.xml", "iso_3166_entries iso_3166_entry", 200},
    {"/usr/share/xml/iso-codes/iso_639-3.xml", "iso_639_3_entries iso_639_3_entry", 5000},
};

// The file as it is written without the blanks between its elements.
std::string without_blanks(const std::string &file) {
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(
        xmlReadFile(file.c_str(), nullptr, XML_PARSE_NOBLANKS | XML_PARSE_NONET), xmlFreeDoc);
    xmlChar *text = nullptr;
    int size = 0;
    xmlDocDumpMemory(doc.get(), &text, &size);
    const std::unique_ptr<xmlChar, void (*)(xmlChar *)> owned(text, [](xmlChar *dumped) { xmlFree(dumped); });
    return {reinterpret_cast<const char *>(text), static_cast<size_t>(size)};
}

// What stands in one text in the place of something in the other, and that. What only came, or only went, could as
// well be said to begin a little earlier; it is made to begin with "<" or a blank.
struct Difference {
    std::string gone, come;
};

Difference difference(const std::string &before, const std::string &after) {
    size_t start = 0, end = 0;
    const size_t shorter = std::min(before.size(), after.size());
    while (start < shorter && before[start] == after[start])
        ++start;
    while (end < shorter - start && before[before.size() - 1 - end] == after[after.size() - 1 - end])
        ++end;
    Difference found{before.substr(start, before.size() - start - end),
                     after.substr(start, after.size() - start - end)};
    std::string &piece = found.gone.empty() ? found.come : found.gone;
    for (; start > 0 && !piece.empty() && piece[0] != '<' && piece[0] != ' ' && piece.back() == before[start - 1];
         --start)
        std::rotate(piece.begin(), piece.end() - 1, piece.end());
    return found;
}

std::string name_of(const testing::TestParamInfo<RealFile> &tested) {
    std::string name = std::filesystem::path(tested.param.file).stem().string();
    std::replace_if(
        name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

class RealXmlFile : public XmlToolTest, public testing::WithParamInterface<RealFile> {
  protected:
    void SetUp() override {
        if (!std::filesystem::exists(GetParam().file))
            GTEST_SKIP() << GetParam().file << " is not installed";
        std::filesystem::copy_file(GetParam().file, path_of("f.xml"));
        original = without_blanks(GetParam().file);
    }
    Words on_element(const std::string &operation, const Words &more = {}) {
        return words("f.xml " + operation + " " + GetParam().element, more);
    }
    Difference changed() const { return difference(original, file_text(path_of("f.xml"))); }

    void expect_original() const { EXPECT_TRUE(file_text(path_of("f.xml")) == original); } // too long to be shown

    std::string original;
};

} // namespace

TEST_P(RealXmlFile, IsReadWithoutAChange) {
    const std::string before = file_text(path_of("f.xml"));
    EXPECT_GE(std::stoul(output(on_element("count"))), GetParam().elements);
    EXPECT_GT(output("f.xml print").size(), 10000u);
    EXPECT_TRUE(file_text(path_of("f.xml")) == before);
}

TEST_P(RealXmlFile, LosesTheBlanksBetweenItsElementsWhenItIsChanged) {
    const std::string before = file_text(path_of("f.xml"));
    output(on_element("setattr", {"vrk-test", "1"}));
    output(on_element("deleteattr", {"vrk-test"}));
    EXPECT_LT(file_text(path_of("f.xml")).size(), before.size());
    expect_original();
}

TEST_P(RealXmlFile, GetsAnAttributeAndNoElementChanges) {
    output(on_element("setattr", {"vrk-test", "\"quoted\" & more"}));
    EXPECT_EQ(changed().gone, "");
    EXPECT_EQ(changed().come, " vrk-test=\"&quot;quoted&quot; &amp; more\"");
    EXPECT_EQ(output(on_element("getattr", {"vrk-test"})), "\"quoted\" & more\n");
    output(on_element("deleteattr", {"vrk-test"}));
    expect_original();
}

TEST_P(RealXmlFile, GetsAnElementAndNoOtherChanges) {
    output(words("f.xml set * vrk-test text", {"new text"}));
    EXPECT_EQ(changed().gone, "");
    EXPECT_EQ(changed().come, "<vrk-test>new text</vrk-test>");
    EXPECT_EQ(output("f.xml get * *[last()]"), "new text\n") << "it is in the namespace of its parent";
    output("f.xml delete * *[last()]");
    expect_original();
}

TEST_P(RealXmlFile, LosesAnElementAndNoOther) {
    const unsigned long before = std::stoul(output("f.xml count * *"));
    output(on_element("delete"));
    EXPECT_EQ(changed().come, "");
    EXPECT_FALSE(changed().gone.empty());
    EXPECT_EQ(std::stoul(output("f.xml count * *")), before - 1);
}

TEST_P(RealXmlFile, IsEditedInABatch) {
    const std::string element(GetParam().element);
    output(words("f.xml batch"), "setattr " + element + " vrk-test 1\n" + "set * vrk-test text made\n" + "deleteattr " +
                                     element + " vrk-test\n" + "delete * *[last()]\n");
    expect_original();
}

INSTANTIATE_TEST_SUITE_P(Packages, RealXmlFile, testing::ValuesIn(files), name_of);
