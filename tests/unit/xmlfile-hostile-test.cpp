// Documents that mean harm, and memory that runs out.
#include "support/xml-test.h"

#include <filesystem>

#include "support/failing-allocations.h"

using namespace maxhost;

namespace {

// An entity that stands for `size` bytes, and one that stands for `references` of it.
std::string doctype(size_t size, int references) {
    std::string text = "<!DOCTYPE a [<!ENTITY b '" + std::string(size, 'x') + "'><!ENTITY c '";
    for (int i = 0; i < references; ++i)
        text += "&b;";
    return text + "'>]>";
}

std::string repeated(int times, const std::string &text) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

class XmlHostileTest : public XmlTest {
  protected:
    void SetUp() override {
        XmlTest::SetUp();
        load("<kept/>", "kept.xml");
    }

    // A file that is refused, with a line for the reason when there is one.
    void expect_refused(const std::string &content, const std::string &reason = "") {
        EXPECT_EQ(load(content, "hostile.xml"), 1);
        EXPECT_EQ(holder->loaded, 0);
        EXPECT_EQ(holder->doc, nullptr);
        Lines expected{error("unable to parse file " + path_of("hostile.xml"))};
        if (!reason.empty())
            expected.insert(expected.begin(), error(reason));
        EXPECT_EQ(take_lines(), expected);
    }
    void expect_bomb(const std::string &content) {
        expect_refused(content, "entities of " + path_of("hostile.xml") + " expand to more than 10000000 bytes");
    }
};

} // namespace

// ---- entities

TEST_F(XmlHostileTest, SmallEntitiesAreReadAsTheirText) {
    ASSERT_EQ(load(doctype(10, 10) + "<a k='&c;'>.&c;.</a>"), 1);
    EXPECT_EQ(text("a"), "." + std::string(100, 'x') + ".");
    EXPECT_EQ(attribute("a k"), std::string(100, 'x'));
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlHostileTest, AReferenceAsFirstChildIsNoText) {
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY b 'x'>]><a>&b;x</a>"), 1);
    EXPECT_EQ(get("a"), "failed -1");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlHostileTest, OneLevelOfManyReferencesIsRefused) {
    expect_bomb(doctype(10000, 1) + "<a>" + repeated(1100, "&b;") + "</a>");
}

TEST_F(XmlHostileTest, TwoLevelsOfManyReferencesAreRefused) {
    const std::string file = doctype(4000, 50) + "<a>" + repeated(60, "&c;") + "</a>";
    EXPECT_LT(file.size(), 7000u);
    expect_bomb(file);
}

TEST_F(XmlHostileTest, ReferencesInAttributesCount) {
    expect_bomb(doctype(10000, 1) + "<a>" + repeated(1100, "<b k='&b;'/>") + "</a>");
    expect_bomb("<!DOCTYPE a [<!ENTITY b '" + std::string(2000, 'x') + "'><!ENTITY c '<x>" +
                repeated(100, "<y k=\"&b;\"/>") + "</x>'>]><a>" + repeated(60, "&c;") + "</a>");
}

TEST_F(XmlHostileTest, SectionsInEntitiesCountAndCommentsDoNot) {
    const std::string size = std::string(10000, 'x'), references = "<a>" + repeated(1100, "&b;") + "</a>";
    expect_bomb("<!DOCTYPE a [<!ENTITY b '<c><![CDATA[" + size + "]]></c>'>]>" + references);
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY b '<!--" + size + "--><?p?><?p " + size + "?>'>]>" + references), 1);
    EXPECT_EQ(count("a"), "1");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlHostileTest, ReferencesThatAreSpreadOverTheDocumentCount) {
    expect_bomb(doctype(4000, 1) + "<a>" + repeated(2600, "<i>&b;</i>") + "</a>");
}

TEST_F(XmlHostileTest, ManyLevelsAreRefused) {
    std::string laughs = "<!DOCTYPE a [<!ENTITY a0 'xxxxxxxxxx'>";
    for (int i = 1; i < 12; ++i)
        laughs += "<!ENTITY a" + std::to_string(i) + " '" + repeated(10, "&a" + std::to_string(i - 1) + ";") + "'>";
    for (const char *element : {"]><a>&a11;</a>", "]><a k='&a11;'/>"}) {
        EXPECT_EQ(load(laughs + element), 1);
        EXPECT_EQ(holder->loaded, 0) << "by libxml2 or by the holder";
        EXPECT_EQ(take_lines().back(), error("unable to parse file " + path_of("test.xml")));
    }
}

TEST_F(XmlHostileTest, EntitiesThatAreNotUsedDoNotCount) {
    std::string entities;
    for (int i = 0; i < 3000; ++i)
        entities += "<!ENTITY e" + std::to_string(i) + " '" + std::string(4000, 'x') + "'>";
    ASSERT_EQ(load("<!DOCTYPE a [" + entities + "]><a>text</a>"), 1);
    EXPECT_EQ(text("a"), "text");
}

TEST_F(XmlHostileTest, EntitiesThatHoldThemselvesDoNotHang) {
    const std::string circle = "<!DOCTYPE a [<!ENTITY b '&c;'><!ENTITY c '&b;'>]>";
    expect_refused(circle + "<a>&b;</a>");
    ASSERT_EQ(load(circle + "<a>text</a>"), 1);
    EXPECT_EQ(text("a"), "text");
}

TEST_F(XmlHostileTest, AnExternalEntityBringsNothingIn) {
    write_file("secret.txt", "secret");
    const std::string file = path_of("secret.txt");
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY e SYSTEM 'secret.txt'>]><a>text&e;</a>"), 1);
    EXPECT_EQ(text("a"), "text");
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY e SYSTEM 'file://" + file + "'>]><a k='x'>text&e;</a>"), 1);
    EXPECT_EQ(text("a"), "text");
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY % e SYSTEM 'secret.txt'> %e;]><a>text</a>"), 1);
    EXPECT_EQ(text("a"), "text");
    ASSERT_EQ(load("<!DOCTYPE a SYSTEM 'secret.txt'><a>text</a>"), 1);
    EXPECT_EQ(text("a"), "text");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlHostileTest, AReferenceThatAnotherFileMayDeclareIsNoText) {
    ASSERT_EQ(load("<!DOCTYPE a SYSTEM 'missing.dtd'><a>text&e;</a>"), 1);
    EXPECT_EQ(text("a"), "text");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlHostileTest, AnExternalEntityThatIsSavedIsStillOnlyAReference) {
    write_file("secret.txt", "secret");
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY e SYSTEM 'secret.txt'>]><a>text&e;</a>"), 1);
    ASSERT_TRUE(reload());
    EXPECT_EQ(read_file(path_of("reload.xml")).find(">secret"), std::string::npos);
    EXPECT_EQ(text("a"), "text");
}

TEST_F(XmlHostileTest, WhatStandsInAnEntityIsReadButNotChanged) {
    load("<!DOCTYPE a [<!ENTITY e '<b q=\"1\"><i>in</i></b>'>]><a><c/>&e;<b q='2'>out</b></a>");
    const std::string before = document(), inside = "a c following::b 1";
    for (const std::string &refused : {inside, inside + " i", std::string("a c following::i 1")}) {
        EXPECT_EQ(set(refused + " text x"), -1) << refused;
        EXPECT_EQ(set(refused + " made deeper text x"), -1) << refused;
        EXPECT_EQ(set(refused + " cdata 1"), -1) << refused;
        EXPECT_EQ(setattr(refused + " q x"), -1) << refused;
        EXPECT_EQ(removeattr(refused + " q"), -1) << refused;
        EXPECT_EQ(remove(refused), -1) << refused;
        EXPECT_EQ(take_lines(), Lines(6, error("node at given path stands in an entity"))) << refused;
    }
    EXPECT_EQ(attribute(inside + " q"), "1");
    EXPECT_EQ(text(inside + " i"), "in");
    EXPECT_EQ(count(inside + " \"*\""), "1");
    EXPECT_EQ(document(), before);
}

TEST_F(XmlHostileTest, WhatStandsBesideAnEntityIsChanged) {
    load("<!DOCTYPE a [<!ENTITY e '<b>in</b>'>]><a><c/>&e;<b q='1'>out</b></a>");
    const std::string beside = "a c following-sibling::b";
    EXPECT_EQ(set(beside + " text changed"), 0);
    EXPECT_EQ(setattr(beside + " q 2"), 0);
    EXPECT_EQ(set(beside + " i text made"), 0);
    ASSERT_TRUE(reload());
    EXPECT_EQ(document().substr(document().find("<a>")), "<a><c/>&e;<b q=\"2\">changed<i>made</i></b></a>");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlHostileTest, ContentBehindAReferenceIsTreatedWithCare) {
    ASSERT_EQ(load("<!DOCTYPE a [<!ENTITY e '<in>x<k/></in><in/>'>]><a>&e;&e;</a>"), 1);
    EXPECT_EQ(count("a in"), "0") << "children of an entity reference are not found";
    for (const char *path : {"a \"node()\" \"node()\"", "a \"descendant::in\"", "\"\" in"})
        if (const std::string found = count(path); found != "0") {
            remove(path, 0);
            set(std::string(path) + " text x", {}, 0);
        }
    take_lines();
    EXPECT_EQ(set("a text x"), 0);
    EXPECT_EQ(text("a"), "x");
}

// ---- broken, deep and large files

TEST_F(XmlHostileTest, BrokenFilesAreRefused) {
    for (const std::string &content :
         {std::string(), std::string("<a"), std::string("<a>"), std::string("<a>&undefined;</a>"),
          std::string("<a k='1' k='2'/>"), std::string("<a>\xFF</a>"), std::string("<a>\xC3</a>"),
          std::string("<a>\x01</a>"), std::string("<a>\0</a>", 8), std::string("<a><![CDATA[never closed</a>"),
          std::string("<a>]]></a>"), std::string(3000, '<'), std::string("<!DOCTYPE a [<!ENTITY")}) {
        SCOPED_TRACE(content);
        expect_refused(content);
    }
}

TEST_F(XmlHostileTest, EveryTruncationIsRefused) {
    const std::string whole = "<!DOCTYPE a [<!ENTITY e 'x'>]><a k='1'>&e;<b><![CDATA[FF]]></b><!-- c --></a>";
    for (size_t length = 0; length < whole.size(); ++length)
        expect_refused(whole.substr(0, length));
    EXPECT_EQ(load(whole), 1);
    EXPECT_EQ(holder->loaded, 1);
}

TEST_F(XmlHostileTest, DeepNestingIsRefused) {
    expect_refused(repeated(100000, "<a>") + repeated(100000, "</a>"));
    expect_refused(repeated(100000, "<a>"));
}

TEST_F(XmlHostileTest, TheDeepestDocumentThatLibxmlReadsCanBeWorkedOn) {
    ASSERT_EQ(load(repeated(255, "<a>") + repeated(255, "</a>")), 1);
    ASSERT_EQ(holder->loaded, 1);
    const std::string path = repeated(255, "a ");
    EXPECT_EQ(count(path), "1");
    EXPECT_EQ(set(path + "text x"), 0);
    EXPECT_EQ(text(path), "x");
    jxmlfile_print(holder);
    EXPECT_EQ(take_lines().size(), 2u * 255);
    EXPECT_EQ(remove("a a"), 0);
}

TEST_F(XmlHostileTest, HugeAttributesAndNamesDoNoHarm) {
    ASSERT_EQ(load("<a k='" + std::string(9'000'000, 'v') + "'/>"), 1);
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(attribute("a k").size(), 9'000'000u);
    const std::string name(40'000, 'n');
    ASSERT_EQ(load("<a><" + name + " " + name + "='1'/></a>"), 1);
    EXPECT_EQ(count("a *"), "1");
    jxmlfile_print(holder);
    EXPECT_EQ(take_lines().size(), 4u);
    expect_refused("<a k='" + std::string(11'000'000, 'v') + "'/>");
    expect_refused("<a><" + std::string(60'000, 'n') + "/></a>");
}

// ---- memory

TEST_F(XmlHostileTest, ReadingBytesWithoutMemoryLeavesTheDocument) {
    load("<a><![CDATA[01]]></a>");
    fail_nth_allocation(1);
    EXPECT_EQ(get("a"), "failed -1");
    EXPECT_EQ(get("a"), "block 01");
}

TEST_F(XmlHostileTest, OperationsWithoutTheHostsMemoryLeaveTheDocument) {
    load("<a><b n='1'>text</b><c><![CDATA[01]]></c></a>");
    with_each_allocation_failing(
        [this] {
            get("a c");
            get("a b");
            getattr("a b n");
            count("a b");
            set("a b attr n 1 text text");
            setattr("a b n 1");
            removeattr("a b never");
            jxmlfile_print(holder);
        },
        [this](bool) { EXPECT_EQ(document(), "<a><b n=\"1\">text</b><c><![CDATA[01]]></c></a>"); });
}

TEST_F(XmlHostileTest, FilesWithoutTheHostsMemoryLeaveADocumentOrNone) {
    write_file("other.xml", "<?xml version=\"1.0\"?>\n<other/>");
    with_each_allocation_failing(
        [this] {
            load("<a/>");
            jxmlfile_read(holder, gensym("other.xml"));
            drain_queue();
            jxmlfile_open(holder);
            jxmlfile_writeagain(holder);
            drain_queue();
            jxmlresfile_read(holder, gensym("other.xml"));
            jxmlfile_newdoc(holder, gensym(path_of("new.xml").c_str()));
            if (holder->editor)
                close_editor_window(holder->editor);
            jxmlfile_edclose(holder, nullptr, 0);
        },
        [this](bool) {
            EXPECT_EQ(document(), "<resourcefile><resource/></resourcefile>");
            EXPECT_EQ(read_file(path_of("other.xml")).substr(22), "<other/>\n");
        });
}

// ---- libxml2's memory

namespace {

// Makes one allocation of libxml2 fail while it lives; of those that make a block larger, when no others are to count.
class FailingLibxml {
  public:
    explicit FailingLibxml(long n, bool only_growing = false) {
        until_failure = n;
        counts_all = !only_growing;
        xmlMemGet(&former_free, &former_malloc, &former_realloc, &former_strdup);
        xmlMemSetup(former_free, counting_malloc, counting_realloc, counting_strdup);
    }
    ~FailingLibxml() { xmlMemSetup(former_free, former_malloc, former_realloc, former_strdup); }
    FailingLibxml(const FailingLibxml &) = delete;
    FailingLibxml &operator=(const FailingLibxml &) = delete;
    static bool has_failed() { return until_failure <= 0; }

  private:
    static bool fails() { return --until_failure == 0; }
    static void *counting_malloc(size_t size) { return counts_all && fails() ? nullptr : former_malloc(size); }
    static void *counting_realloc(void *block, size_t size) { return fails() ? nullptr : former_realloc(block, size); }
    static char *counting_strdup(const char *text) { return counts_all && fails() ? nullptr : former_strdup(text); }

    static inline long until_failure;
    static inline bool counts_all;
    static inline xmlFreeFunc former_free;
    static inline xmlMallocFunc former_malloc;
    static inline xmlReallocFunc former_realloc;
    static inline xmlStrdupFunc former_strdup;
};

// Runs an operation with the first, the second … allocation of libxml2 failing, each time on a fresh document, and
// gives the console lines that came up.
class XmlMemoryTest : public XmlTest {
  protected:
    template <typename Operation> Lines with_failures(const std::string &content, const Operation &operation) {
        Lines told;
        bool failed = true;
        for (long n = 1; failed; ++n) {
            load(content);
            {
                const quiet_libxml quiet; // it tells of every failure on standard error
                const FailingLibxml failing(n);
                operation();
                failed = FailingLibxml::has_failed();
            }
            for (const std::string &line : take_lines())
                if (std::find(told.begin(), told.end(), line) == told.end())
                    told.push_back(line);
        }
        return told;
    }
    static bool holds(const Lines &lines, const std::string &line) {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    }
};

} // namespace

TEST_F(XmlMemoryTest, AnEvaluationNeedsAContext) {
    load("<a/>");
    for (const char *path : {"a *", "a b[1]"}) {
        const FailingLibxml failing(1);
        EXPECT_EQ(count(path), "failed -4");
    }
    {
        const FailingLibxml failing(1);
        EXPECT_EQ(set("a * text x"), -4);
    }
    {
        Atoms path = typed("a");
        t_atom *atoms = path.data();
        long length = 1;
        xmlXPathObjectPtr found = nullptr;
        const FailingLibxml failing(1);
        EXPECT_EQ(jxmlfile_get_nodeset(holder, &length, &atoms, &found), -4);
    }
    EXPECT_EQ(take_lines(), Lines(4, error("unable to create new xpath context")));
    EXPECT_EQ(document(), "<a/>");
}

TEST_F(XmlMemoryTest, SomeOfTheNodesAreNotTakenForAll) {
    load("<a>" + repeated(50, "<b/>") + "</a>");
    long failures = 0;
    for (bool failed = true; failed; failures += failed) {
        const FailingLibxml failing(failures + 1, true);
        const std::string counted = count("a *");
        failed = FailingLibxml::has_failed();
        EXPECT_EQ(counted, failed ? "failed -1" : "50");
    }
    EXPECT_GT(failures, 0) << "the set of the nodes has to grow";
    EXPECT_EQ(take_lines(), Lines(static_cast<size_t>(failures), unable("evaluate", "/a/*")));
}

TEST_F(XmlMemoryTest, ATextThatCannotBeStoredIsTold) {
    const Lines told = with_failures("<a>before</a>", [this] {
        if (set("a text new", {}, 1) != 0) {
            EXPECT_EQ(document(), "<a>before</a>");
        }
    });
    EXPECT_TRUE(holds(told, error("unable to create text data new (err -1)")));
}

TEST_F(XmlMemoryTest, BytesThatCannotBeStoredAreTold) {
    const Lines told = with_failures("<a>before</a>", [this] {
        if (set("a cdata AB", {}, 1) != 0) {
            EXPECT_EQ(document(), "<a>before</a>");
        }
    });
    EXPECT_TRUE(holds(told, error("unable to create cdata 4142 (err -1)")));
}

TEST_F(XmlMemoryTest, AnAttributeThatCannotBeSetIsTold) {
    const Lines told = with_failures("<a/>", [this] { setattr("a k v"); });
    EXPECT_TRUE(holds(told, warning("unable to set attribute k to v")));
    EXPECT_EQ(with_failures("<a/>", [this] { setattr("a k v", {}, 0); }), Lines());
}

TEST_F(XmlMemoryTest, AnAttributeThatHasLostItsValueIsEmpty) {
    const Lines told = with_failures("<a><b/></a>", [this] {
        setattr("a b k v", {}, 0);
        setattr("a b l w", {}, 0);
        jxmlfile_print(holder);
    });
    EXPECT_TRUE(holds(told, post("\n<b k=\"\" l=\"w\">")));
    EXPECT_TRUE(holds(told, post("\n<b k=\"v\" l=\"w\">")));
}

TEST_F(XmlMemoryTest, ElementsThatCannotBeMadeAreTold) {
    const Lines told = with_failures("<a/>", [this] { set("a b attr n 1 text x"); });
    EXPECT_TRUE(holds(told, error("unable to create node at xpath expression \"/a/b[@n=1]\"")));
    EXPECT_TRUE(holds(told, error("unable to create attribute at xpath expression \"/a/b[@n=1]\"")));
}

TEST_F(XmlMemoryTest, NewDocumentsAndEditorsThatCannotBeMadeDoNoHarm) {
    const Lines told = with_failures("<a><b n='1'>x</b></a>", [this] {
        jxmlfile_newdoc(holder, gensym("new.xml"));
        jxmlfile_open(holder);
        drain_queue();
        close_editor_window(holder->editor);
        jxmlfile_edclose(holder, nullptr, 0);
    });
    EXPECT_TRUE(holds(told, error("out of memory")));
}

namespace {

std::string said;
void note(void *, const char *text, ...) { said += text; }

} // namespace

TEST(QuietLibxml, WhatLibxmlPrintsStaysUnsaidUntilTheScopeEnds) {
    said.clear();
    xmlSetGenericErrorFunc(nullptr, note);
    {
        const quiet_libxml quiet;
        xmlGenericError(xmlGenericErrorContext, "within");
    }
    xmlGenericError(xmlGenericErrorContext, "behind");
    xmlSetGenericErrorFunc(nullptr, nullptr);
    EXPECT_EQ(said, "behind");
}
