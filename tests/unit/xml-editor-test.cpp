// The text editor on a document, and the document printed to the console.
#include "support/xml-test.h"

#include <filesystem>
#include <limits>
#include <utility>

#include "vrk.pathname.h"

using namespace maxhost;

namespace {

// An object that owns a holder and hands on what it hears from its editor.
struct EditingOwner {
    t_object object;
    t_jxmlfile *holder;
};

long owner_edsave(EditingOwner *x, char **text, long size, const char *filename, t_ptr_int path_id) {
    return jxmlfile_edsave(x->holder, text, size, filename, static_cast<short>(path_id));
}
void owner_edclose(EditingOwner *x, char **text, long size) { jxmlfile_edclose(x->holder, text, size); }

t_class *owner_class;
void *owner_new() { return object_alloc(owner_class); }
void owner_free(EditingOwner *x) { jxmlfile_free(x->holder); }

void register_owner() {
    owner_class =
        class_new("editing-owner", (method)owner_new, (method)owner_free, sizeof(EditingOwner), nullptr, A_GIMME, 0);
    class_addmethod(owner_class, (method)owner_edsave, "edsave", A_CANT, 0);
    class_addmethod(owner_class, (method)owner_edclose, "edclose", A_CANT, 0);
    class_register(CLASS_NOBOX, owner_class);
}

const char *name_of(EditorEvent event) {
    switch (event) {
    case EditorEvent::open:
        return "open";
    case EditorEvent::text:
        return "text";
    case EditorEvent::file:
        return "file";
    case EditorEvent::title:
        return "title";
    case EditorEvent::visible:
        return "visible";
    case EditorEvent::close:
        return "close";
    }
    return "";
}

class XmlEditorTest : public XmlTest {
  protected:
    static void SetUpTestSuite() {
        if (!owner_class)
            register_owner();
    }
    void SetUp() override {
        XmlTest::SetUp();
        owner = static_cast<EditingOwner *>(object_new(CLASS_NOBOX, gensym("editing-owner")));
        owner->holder = holder;
        holder->owner = &owner->object;
        FrontEnd front = front_end();
        front.editor = [this](t_object *, EditorEvent event) { events.push_back(name_of(event)); };
        start_host(front);
    }
    void TearDown() override {
        holder = nullptr; // the owner frees it
        if (owner)
            object_free(owner);
        XmlTest::TearDown();
    }

    Lines take_events() { return std::exchange(events, {}); }
    EditorState shown() const { return editor_state(holder->editor); }
    std::string saved(const std::string &name) const { return read_file(path_of(name)); }

    // What a person does.
    bool save(const std::string &text) { return save_editor_text(holder->editor, text); }
    void close() { close_editor_window(holder->editor); }

    // What an owner of its own making would send.
    long edsave(const std::string &text, long size, const char *name, short folder) {
        std::string copy = text;
        char *bytes = copy.data();
        return jxmlfile_edsave(holder, &bytes, size, name, folder);
    }
    long edsave(const std::string &text, const char *name, short folder) {
        return edsave(text, static_cast<long>(text.size()), name, folder);
    }

    static std::string owners_error(const std::string &text) { return "error: editing-owner: " + text; }

    // The console lines of a printed document.
    Lines printed(const std::string &content) {
        load(content);
        jxmlfile_print(holder);
        return take_lines();
    }

    EditingOwner *owner = nullptr;
    Lines events;
    const std::string declaration = "<?xml version=\"1.0\"?>\n";
};

} // namespace

// ---- opening

TEST_F(XmlEditorTest, AnEditorOpensOnTheDocument) {
    load("<a><b>text</b><c/></a>");
    jxmlfile_open(holder);
    ASSERT_NE(holder->editor, nullptr);
    EXPECT_EQ(shown().text, declaration + "<a>\n  <b>text</b>\n  <c/>\n</a>\n");
    EXPECT_EQ(shown().file, "test.xml");
    EXPECT_EQ(shown().title, "test.xml");
    EXPECT_EQ(take_events(), (Lines{"open", "file", "title", "text"})) << "a new editor is not sent \"visible\"";
}

TEST_F(XmlEditorTest, OpeningAgainBringsTheWindowToView) {
    load("<a/>");
    jxmlfile_open(holder);
    t_object *editor = holder->editor;
    take_events();
    set("a text changed");
    jxmlfile_open(holder);
    jxmlfile_openeditor(holder);
    EXPECT_EQ(holder->editor, editor);
    EXPECT_EQ(take_events(), (Lines{"visible", "visible"}));
    EXPECT_TRUE(shown().visible);
    EXPECT_EQ(shown().text, declaration + "<a/>\n") << "its text is not refreshed";
}

TEST_F(XmlEditorTest, ChangesThatAreNotWrittenAreShown) {
    load("<a/>");
    set("a b text unsaved");
    jxmlfile_open(holder);
    EXPECT_EQ(shown().text, declaration + "<a>\n  <b>unsaved</b>\n</a>\n");
}

TEST_F(XmlEditorTest, WithoutADocumentTheEditorIsEmpty) {
    jxmlfile_open(holder);
    EXPECT_EQ(take_events(), (Lines{"open"}));
    EXPECT_EQ(shown().text, "");
    EXPECT_EQ(shown().file, "");
}

TEST_F(XmlEditorTest, TheTextIsUtf8WhateverTheFileIs) {
    write_file("latin.xml", "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE9</a>");
    load_file("latin.xml");
    jxmlfile_open(holder);
    EXPECT_EQ(shown().text, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>é</a>\n");
}

TEST_F(XmlEditorTest, WithoutMemoryThereIsNoEditor) {
    load("<a/>");
    fail_nth_allocation(1);
    jxmlfile_open(holder);
    fail_nth_allocation(0);
    EXPECT_EQ(holder->editor != nullptr, take_events() != Lines());
    jxmlfile_open(nullptr);
    jxmlfile_openeditor(nullptr);
}

// ---- saving

TEST_F(XmlEditorTest, SavedTextBecomesTheDocumentAndIsWritten) {
    load("<a/>");
    jxmlfile_open(holder);
    EXPECT_TRUE(save("<?xml version=\"1.0\"?><a><b>edited</b></a>"));
    EXPECT_EQ(text("a b"), "edited");
    EXPECT_EQ(saved("test.xml"), declaration + "<a/>") << "the writing is deferred";
    take_events();
    drain_queue();
    EXPECT_EQ(saved("test.xml"), declaration + "<a><b>edited</b></a>\n");
    EXPECT_EQ(take_events(), (Lines{"file", "title"})) << "the window follows the file";
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlEditorTest, TextThatDoesNotParseChangesNothingWithoutAWord) {
    load("<a>kept</a>");
    jxmlfile_open(holder);
    for (const char *text : {"<a><b></a>", "", "no xml", "<a>&undefined;</a>", "<a>\x01</a>"}) {
        EXPECT_FALSE(save(text));
        EXPECT_EQ(edsave(text, "test.xml", folder_id(folder())), -1);
        EXPECT_NE(xmlGetLastError(), nullptr) << "where libxml2 has given up";
        EXPECT_EQ(take_lines(), Lines());
    }
    drain_queue();
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(document(), "<a>kept</a>");
    EXPECT_EQ(saved("test.xml"), declaration + "<a>kept</a>");
    EXPECT_EQ(shown().text, "<a>\x01</a>") << "the person's text stays in the window";
}

TEST_F(XmlEditorTest, AnEntityBombIsRefusedInTheEditorToo) {
    load("<a>kept</a>");
    jxmlfile_open(holder);
    std::string bomb = "<!DOCTYPE a [<!ENTITY b '" + std::string(10000, 'x') + "'>]><a>";
    for (int i = 0; i < 1100; ++i)
        bomb += "&b;";
    EXPECT_FALSE(save(bomb + "</a>"));
    EXPECT_EQ(take_lines(), Lines{owners_error("entities of test.xml expand to more than 10000000 bytes")});
    EXPECT_EQ(document(), "<a>kept</a>");
}

TEST_F(XmlEditorTest, BlanksBetweenElementsAreDroppedAsInFiles) {
    load("<a/>");
    jxmlfile_open(holder);
    save("<a>\n  <b/>\n</a>\n");
    EXPECT_EQ(document(), "<a><b/></a>");
}

TEST_F(XmlEditorTest, TextEndsAtItsSizeOrAZero) {
    load("<a/>");
    const std::string text = "<a>1</a>";
    const short here = folder_id(folder());
    EXPECT_EQ(edsave(text + "rubbish", static_cast<long>(text.size()), "test.xml", here), 1);
    EXPECT_EQ(document(), text);
    EXPECT_EQ(edsave("<a>2</a>" + std::string("\0rubbish", 8), "test.xml", here), 1);
    EXPECT_EQ(document(), "<a>2</a>");
    EXPECT_EQ(edsave("<a>3</a>", std::numeric_limits<long>::max(), "test.xml", here), 1);
    EXPECT_EQ(document(), "<a>3</a>");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlEditorTest, NoTextIsRefused) {
    load("<a/>");
    char *none = nullptr;
    EXPECT_EQ(jxmlfile_edsave(holder, &none, 8, "test.xml", 0), -1);
    EXPECT_EQ(jxmlfile_edsave(holder, nullptr, 8, "test.xml", 0), -1);
    EXPECT_EQ(edsave("<a>1</a>", -8, "test.xml", 0), -1);
    EXPECT_EQ(take_lines(), Lines());
    EXPECT_EQ(document(), "<a/>");
    EXPECT_EQ(jxmlfile_edsave(nullptr, &none, 8, "test.xml", 0), 1);
    jxmlfile_edclose(nullptr, nullptr, 0);
}

TEST_F(XmlEditorTest, TextCanBeSavedAsAnotherFile) {
    load("<a/>");
    jxmlfile_open(holder);
    std::filesystem::create_directory(path_of("chosen"));
    EXPECT_EQ(edsave("<a>1</a>", "other.xml", folder_id(path_of("chosen"))), 1);
    drain_queue();
    EXPECT_EQ(saved("chosen/other.xml"), declaration + "<a>1</a>\n");
    EXPECT_EQ(saved("test.xml"), declaration + "<a/>");
    EXPECT_EQ(shown().file, "other.xml");
    EXPECT_EQ(shown().title, "other.xml");
    EXPECT_EQ(std::string(holder->file_path->s_name), path_of("chosen/other.xml"));
}

TEST_F(XmlEditorTest, WithoutANameTheCurrentFileIsWritten) {
    load("<a/>");
    for (const char *name : {static_cast<const char *>(nullptr), ""}) {
        EXPECT_EQ(edsave("<a>1</a>", name, 0), 1);
        drain_queue();
        EXPECT_EQ(saved("test.xml"), declaration + "<a>1</a>\n");
        write_file("test.xml", "");
    }
}

TEST_F(XmlEditorTest, WithoutANameAndAFileNothingIsWritten) {
    EXPECT_EQ(edsave("<a>1</a>", nullptr, 0), 1);
    drain_queue();
    EXPECT_EQ(document(), "<a>1</a>");
    EXPECT_EQ(holder->loaded, 0) << "saving does not load";
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlEditorTest, ANameThatTheHostRefusesIsTold) {
    load("<a/>");
    const std::string name(3000, 'x');
    EXPECT_EQ(edsave("<a>1</a>", name.c_str(), folder_id(folder())), 1);
    EXPECT_EQ(take_lines(), (Lines{owners_error("can't find " + name)}));
}

// ---- closing

TEST_F(XmlEditorTest, AfterClosingAFreshEditorOpensOnTheCurrentDocument) {
    load("<a>one</a>");
    jxmlfile_open(holder);
    close();
    EXPECT_EQ(holder->editor, nullptr);
    set("a text two");
    take_events();
    jxmlfile_open(holder);
    EXPECT_EQ(shown().text, declaration + "<a>two</a>\n");
    EXPECT_EQ(take_events(), (Lines{"open", "file", "title", "text"}));
}

TEST_F(XmlEditorTest, FreeingTheHolderClosesItsEditor) {
    load("<a/>");
    jxmlfile_open(holder);
    take_events();
    object_free(std::exchange(owner, nullptr));
    EXPECT_EQ(take_events(), (Lines{"close"}));
}

// ---- following the file

TEST_F(XmlEditorTest, TheEditorHearsOfAnotherFile) {
    load("<a/>");
    jxmlfile_open(holder);
    take_events();
    write_file("other.xml", declaration + "<b/>");
    jxmlfile_filename(holder, gensym("other.xml"));
    EXPECT_EQ(shown().file, "other.xml");
    EXPECT_EQ(take_events(), (Lines{"file"}));
    jxmlfile_filename(holder, gensym("missing.xml"));
    EXPECT_EQ(take_events(), Lines());
    take_lines();
}

TEST_F(XmlEditorTest, TheEditorFollowsEveryWrite) {
    load("<a/>");
    jxmlfile_open(holder);
    take_events();
    jxmlfile_write(holder, gensym(path_of("written.xml").c_str()));
    EXPECT_EQ(take_events(), Lines());
    drain_queue();
    EXPECT_EQ(take_events(), (Lines{"file", "title"}));
    EXPECT_EQ(shown().title, "written.xml");
    jxmlfile_newdoc(holder, gensym(path_of("new.xml").c_str()));
    EXPECT_EQ(shown().title, "new.xml");
}

TEST_F(XmlEditorTest, APathThatCannotBeSplitLeavesTheEditorUntouched) {
    load("<a/>");
    jxmlfile_open(holder);
    take_events();
    for (const char *path : {"/no/such/folder/a.xml", "bare.xml", "", "/"})
        vrk_set_editorfile_from_pathname(holder->editor, gensym(path));
    vrk_set_editorfile_from_pathname(holder->editor, nullptr);
    EXPECT_EQ(take_events(), Lines());
    EXPECT_EQ(shown().file, "test.xml");
}

TEST_F(XmlEditorTest, WithoutAnEditorNothingIsAllocated) {
    const size_t blocks = memory_in_use().blocks;
    fail_nth_allocation(1);
    vrk_set_editorfile_from_pathname(nullptr, gensym(path_of("test.xml").c_str()));
    t_ptr next = sysmem_newptr(1);
    EXPECT_EQ(next, nullptr) << "the failing allocation is still to come";
    EXPECT_EQ(memory_in_use().blocks, blocks);
}

// ---- printing

TEST_F(XmlEditorTest, ElementsArePostedOneTagALine) {
    EXPECT_EQ(printed("<resourcefile><resource>text</resource></resourcefile>"),
              (Lines{post("<resourcefile>"), post("\n<resource>"), post("\n</resource>"), post("\n<resourcefile>")}))
        << "the root's last line has no slash";
}

TEST_F(XmlEditorTest, AttributesArePostedInDocumentOrder) {
    EXPECT_EQ(printed("<a z='root'><b number='1' a='x &amp; y' empty=''/></a>"),
              (Lines{post("<a>"), post("\n<b number=\"1\" a=\"x & y\" empty=\"\">"), post("\n</b>"), post("\n<a>")}));
}

TEST_F(XmlEditorTest, OnlyElementsArePosted) {
    EXPECT_EQ(printed("<!DOCTYPE a [<!ENTITY e '<in q=\"1\"/>'>]>"
                      "<a>text<!-- c --><b>&e;<![CDATA[FF]]><c/>more<d/></b><?pi d?></a>"),
              (Lines{post("<a>"), post("\n<b>"), post("\n<c>"), post("\n</c>"), post("\n<d>"), post("\n</d>"),
                     post("\n</b>"), post("\n<a>")}));
}

TEST_F(XmlEditorTest, AnEmptyRootIsTwoLines) { EXPECT_EQ(printed("<a/>"), (Lines{post("<a>"), post("\n<a>")})); }

TEST_F(XmlEditorTest, WithoutADocumentNothingIsPosted) {
    jxmlfile_print(holder);
    jxmlfile_print(nullptr);
    jxmlfile_print_element_names(nullptr);
    EXPECT_EQ(printed("<a>"), (Lines{owners_error("unable to parse file " + path_of("test.xml"))}));
}

TEST_F(XmlEditorTest, ALongLineIsCutInWholeCharacters) {
    std::string value;
    for (int i = 0; i < 600; ++i)
        value += "é";
    for (const char *name : {"a", "ab"}) {
        const Lines posts = printed("<r><b " + std::string(name) + "='" + value + "'/></r>");
        ASSERT_EQ(posts.size(), 4u);
        const std::string line = posts[1].substr(post("").size());
        EXPECT_TRUE(line.ends_with("é>")) << line;
        EXPECT_LE(line.size(), 1024u);
        EXPECT_GE(line.size(), 1022u);
    }
}

TEST_F(XmlEditorTest, ALineIsTheBeginningOfItsTagWhereverItIsCut) {
    for (size_t length = 1005; length < 1025; ++length) {
        const std::string value(length, 'v');
        const Lines posts = printed("<r><b k='" + value + "' é='€'/></r>");
        ASSERT_EQ(posts.size(), 4u);
        const std::string whole = "\n<b k=\"" + value + "\" é=\"€\"";
        const size_t size = posts[1].size() - post("").size() - 1;
        EXPECT_EQ(posts[1], post(whole.substr(0, size) + ">"));
        EXPECT_LT(size, 1024u);
        EXPECT_TRUE(size == whole.size() || (size > 1020 && (whole[size] & 0xC0) != 0x80)) << "cut in a character";
    }
}

TEST_F(XmlEditorTest, ManyAttributesAreCutAsWell) {
    std::string attributes;
    for (int i = 0; i < 1000; ++i)
        attributes += " k" + std::to_string(i) + "='%s%n'";
    const Lines posts = printed("<r><b" + attributes + "/></r>");
    ASSERT_EQ(posts.size(), 4u);
    EXPECT_EQ(posts[1].size(), post("").size() + 1024);
}
