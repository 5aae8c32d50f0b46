// The document holder: its settings, its file, new documents and writing.
#include "support/xml-test.h"

#include <filesystem>
#include <fstream>
#include <functional>

#include <sys/stat.h>

#include "vrk.pathname.h"

#include <utility>
using namespace maxhost;

namespace {

class XmlFileTest : public XmlTest {
  protected:
    void trace(unsigned families) {
        FrontEnd front = front_end();
        front.traced = families;
        start_host(front);
    }

    std::string saved(const std::string &name) const { return read_file(path_of(name)); }
    std::string current_file() const { return holder->file_path ? holder->file_path->s_name : "none"; }
    std::string write_file_path() const { return holder->write_path ? holder->write_path->s_name : "none"; }

    void read(const std::string &name) { jxmlfile_read(holder, gensym(name.c_str())); }
    void write(const std::string &path) { jxmlfile_write(holder, gensym(path.c_str())); }
    void newdoc(const std::string &path) { jxmlfile_newdoc(holder, gensym(path.c_str())); }

    // Sets a word or two of the holder; the result of the setter.
    t_max_err set_root(const std::string &words) {
        Atoms atoms = typed(words);
        return jxmlfile_root(holder, nullptr, static_cast<long>(atoms.size()), atoms.data());
    }
    t_max_err set_xmlpath(const std::string &words) {
        Atoms atoms = typed(words);
        return jxmlfile_xmlpath(holder, nullptr, static_cast<long>(atoms.size()), atoms.data());
    }
    std::string xmlpath() const { return std::string(holder->xmlpath[0]->s_name) + " " + holder->xmlpath[1]->s_name; }

    const std::string declaration = "<?xml version=\"1.0\"?>\n";
    const std::string empty_file = declaration + "<resourcefile><resource/></resourcefile>\n";
};

} // namespace

// ---- the holder

TEST_F(XmlFileTest, ANewHolderIsEmptyAndHasItsDefaults) {
    EXPECT_EQ(holder->owner, nullptr);
    EXPECT_EQ(holder->editor, nullptr);
    EXPECT_EQ(holder->doc, nullptr);
    EXPECT_EQ(holder->file_path, nullptr);
    EXPECT_EQ(holder->write_path, nullptr);
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(holder->root, gensym("resourcefile"));
    EXPECT_EQ(xmlpath(), "resource long");
}

TEST_F(XmlFileTest, ErrorsAreTiedToTheOwner) {
    auto *owner = static_cast<t_object *>(object_new(CLASS_NOBOX, gensym("jed"), nullptr, 0));
    t_jxmlfile *owned = jxmlfile_new(owner);
    jxmlfile_filename(owned, gensym("missing.xml"));
    EXPECT_EQ(take_lines(), (Lines{"error: jed: can't find missing.xml"}));
    jxmlfile_free(owned);
    object_free(owner);
}

TEST_F(XmlFileTest, AHolderIsNotMadeWithoutMemory) {
    fail_nth_allocation(1);
    EXPECT_EQ(jxmlfile_new(nullptr), nullptr);
    t_jxmlfile *made = jxmlfile_new(nullptr);
    EXPECT_NE(made, nullptr);
    jxmlfile_free(made);
}

TEST_F(XmlFileTest, WithoutAHolderNothingHappens) {
    t_jxmlfile *const none = nullptr;
    t_symbol *name = gensym("test.xml");
    Atoms atoms = typed("a b");
    t_atom *first = atoms.data();
    short count = 1;
    jxmlfile_free(none);
    jxmlfile_filename(none, name);
    jxmlfile_read(none, name);
    jxmlfile_doread(none);
    jxmlfile_newdoc(none, name);
    jxmlfile_write(none, name);
    jxmlfile_writeagain(none);
    jxmlfile_dowrite(none);
    jxmlfile_bang(none);
    EXPECT_EQ(jxmlfile_load(none, "test.xml", 0), 0);
    EXPECT_EQ(jxmlfile_get(none, 2, atoms.data(), name, &count, &first, 1), -2);
    EXPECT_EQ(jxmlfile_getattr(none, 2, atoms.data(), name, &count, &first, 1), -2);
    EXPECT_EQ(jxmlfile_set(none, 2, atoms.data(), 1), -2);
    EXPECT_EQ(jxmlfile_setattr(none, 2, atoms.data(), 1), -2);
    EXPECT_EQ(jxmlfile_delete(none, 2, atoms.data(), 1), -2);
    EXPECT_EQ(jxmlfile_deleteattr(none, 2, atoms.data(), 1), -2);
    EXPECT_EQ(jxmlfile_count(none, 2, atoms.data(), &count, 1), -2);
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, WithoutANameNothingHappens) {
    jxmlfile_filename(holder, nullptr);
    jxmlfile_newdoc(holder, nullptr);
    jxmlfile_write(holder, nullptr);
    jxmlfile_dowrite(holder);
    jxmlfile_doread(holder);
    EXPECT_EQ(jxmlfile_load(holder, nullptr, 0), 0);
    drain_queue();
    EXPECT_EQ(take_lines(), Lines());
    EXPECT_EQ(current_file(), "none");
}

TEST_F(XmlFileTest, AHolderThatIsFreedTakesItsWorkBack) {
    load("<a/>");
    t_jxmlfile *other = jxmlfile_new(nullptr);
    jxmlfile_filename(other, gensym("test.xml"));
    jxmlfile_bang(other);
    jxmlfile_write(other, gensym(path_of("never.xml").c_str()));
    jxmlfile_free(other);
    drain_queue();
    EXPECT_FALSE(std::filesystem::exists(path_of("never.xml")));
}

TEST_F(XmlFileTest, AHolderOutlivesTheOthers) {
    load("<a><b>2.5</b></a>");
    for (int i = 0; i < 3; ++i) {
        t_jxmlfile *other = jxmlfile_new(nullptr);
        jxmlfile_newdoc(other, gensym("other.xml"));
        jxmlfile_free(other);
        EXPECT_EQ(get("a b", 1, "float"), "2.5");
        EXPECT_EQ(count("a b[1]"), "1");
    }
}

// ---- settings

TEST_F(XmlFileTest, RootIsReadAndSet) {
    long count = 0;
    t_atom *value = nullptr;
    EXPECT_EQ(set_root("list"), 0);
    EXPECT_EQ(jxmlfile_getroot(holder, nullptr, &count, &value), 0);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(print_atom(*value), "list");
    sysmem_freeptr(value);
}

TEST_F(XmlFileTest, RootRefusesWhatIsNoSymbol) {
    EXPECT_EQ(set_root("3"), -2);
    EXPECT_EQ(set_root("2.5"), -2);
    EXPECT_EQ(set_root(""), -2);
    EXPECT_EQ(holder->root, gensym("resourcefile"));
    Atoms atoms = typed("list");
    EXPECT_EQ(jxmlfile_root(nullptr, nullptr, 1, atoms.data()), 0) << "without a holder there is nothing to do";
    long count = 0;
    t_atom *value = nullptr;
    EXPECT_EQ(jxmlfile_getroot(nullptr, nullptr, &count, &value), -2);
}

TEST_F(XmlFileTest, XmlpathIsReadIntoNewAtomsOrTheCallers) {
    long count = 0;
    t_atom *values = nullptr;
    EXPECT_EQ(jxmlfile_getxmlpath(holder, nullptr, &count, &values), 0);
    ASSERT_EQ(count, 2);
    EXPECT_EQ(print_atoms(std::span(values, 2)), "resource long");
    sysmem_freeptr(values);
    t_atom own[2];
    count = 2;
    values = own;
    EXPECT_EQ(jxmlfile_getxmlpath(holder, nullptr, &count, &values), 0);
    EXPECT_EQ(values, own);
    EXPECT_EQ(print_atoms(own), "resource long");
    count = 1;
    EXPECT_EQ(jxmlfile_getxmlpath(holder, nullptr, &count, &values), -2) << "one atom is no room for two words";
    EXPECT_EQ(jxmlfile_getxmlpath(nullptr, nullptr, &count, &values), -2);
}

TEST_F(XmlFileTest, XmlpathIsSetWordByWord) {
    EXPECT_EQ(set_xmlpath("group kind"), 0);
    EXPECT_EQ(xmlpath(), "group kind");
    EXPECT_EQ(set_xmlpath("other"), 0);
    EXPECT_EQ(xmlpath(), "other kind") << "one symbol replaces the first word";
    EXPECT_EQ(set_xmlpath("third 3 never"), 0);
    EXPECT_EQ(xmlpath(), "third kind") << "a number ends the walk";
    EXPECT_EQ(set_xmlpath("one two three"), 0);
    EXPECT_EQ(xmlpath(), "one two") << "at most two are stored";
    EXPECT_EQ(set_xmlpath("7"), 0);
    EXPECT_EQ(set_xmlpath(""), 0);
    EXPECT_EQ(xmlpath(), "one two");
    Atoms atoms = typed("a");
    EXPECT_EQ(jxmlfile_xmlpath(nullptr, nullptr, 1, atoms.data()), -2);
    EXPECT_EQ(jxmlfile_xmlpath(nullptr, nullptr, 0, nullptr), 0);
}

TEST_F(XmlFileTest, SettingsAreNotReadWithoutMemory) {
    long count = 0;
    t_atom *values = nullptr;
    fail_nth_allocation(1);
    EXPECT_NE(jxmlfile_getroot(holder, nullptr, &count, &values), 0);
    fail_nth_allocation(1);
    EXPECT_NE(jxmlfile_getxmlpath(holder, nullptr, &count, &values), 0);
    EXPECT_EQ(values, nullptr);
}

// ---- loading

TEST_F(XmlFileTest, AFileIsLoadedAtOnce) {
    EXPECT_EQ(load("<a>text</a>"), 1);
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(current_file(), path_of("test.xml"));
    EXPECT_EQ(write_file_path(), path_of("test.xml"));
    EXPECT_EQ(document(), "<a>text</a>");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, TheLoadedFileIsNotReadAgain) {
    load("<a>first</a>");
    write_file("test.xml", declaration + "<a>second</a>");
    trace(trace_file);
    EXPECT_EQ(load_file("test.xml"), 1);
    for (const std::string &line : take_lines())
        EXPECT_EQ(line.find("path_opensysfile"), line.npos) << line;
    EXPECT_EQ(document(), "<a>first</a>");
}

TEST_F(XmlFileTest, TheLoadedFileIsNotLookedForEither) {
    load("<a>first</a>");
    std::filesystem::remove(path_of("test.xml"));
    EXPECT_EQ(jxmlfile_load(holder, "test.xml", 0), 1);
    EXPECT_EQ(document(), "<a>first</a>");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, AFileThatCountsAsLoadedIsNotReadAgainForWantOfADocument) {
    load("<a>");
    jxmlfile_filename(holder, gensym("test.xml"));
    take_lines();
    ASSERT_EQ(holder->loaded, 1);
    EXPECT_EQ(holder->doc, nullptr);
    EXPECT_EQ(jxmlfile_load(holder, "test.xml", 0), 1);
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, AnotherFileTakesThePlaceOfTheDocument) {
    load("<a/>", "one.xml");
    EXPECT_EQ(load("<b/>", "two.xml"), 1);
    EXPECT_EQ(document(), "<b/>");
    EXPECT_EQ(current_file(), path_of("two.xml"));
}

TEST_F(XmlFileTest, AFileThatDoesNotBeginAsXmlIsRefusedWithoutAWord) {
    load("<a/>", "good.xml");
    const std::string whole = declaration + "<b/>";
    for (const std::string &content : {"\xEF\xBB\xBF" + whole, " " + whole, "\n" + whole, std::string("<b/>"),
                                       std::string("<?XML version='1.0'?><b/>"), std::string("<?xm"), std::string("<"),
                                       std::string(), std::string("\xFF\xFE<\0?\0x\0m\0l\0", 12)}) {
        write_file("other.xml", content);
        EXPECT_EQ(load_file("other.xml"), 0) << content;
        EXPECT_EQ(holder->loaded, 1);
        EXPECT_EQ(current_file(), path_of("good.xml"));
        EXPECT_EQ(document(), "<a/>");
    }
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, AFileThatCannotBeOpenedIsTold) {
    load("<a/>");
    EXPECT_EQ(jxmlfile_load(holder, "missing.xml", folder_id(folder())), 0);
    const short not_found = [this] {
        t_filehandle file = nullptr;
        return path_opensysfile("missing.xml", folder_id(folder()), &file, PATH_READ_PERM);
    }();
    EXPECT_EQ(take_lines(), (Lines{post("err " + std::to_string(not_found) + " opening missing.xml")}));
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(document(), "<a/>");
}

TEST_F(XmlFileTest, AMalformedFileCountsAsLoadedButIsNot) {
    load("<a/>", "good.xml");
    for (const char *content : {"<a><b></a>", "<a>", "<a/><b/>", "text", ""}) {
        EXPECT_EQ(load(content, "bad.xml"), 1) << content;
        EXPECT_EQ(holder->loaded, 0);
        EXPECT_EQ(holder->doc, nullptr);
        EXPECT_EQ(current_file(), path_of("bad.xml"));
        EXPECT_EQ(take_lines(), (Lines{error("unable to parse file " + path_of("bad.xml"))}));
    }
}

TEST_F(XmlFileTest, AFileIsReadAgainAfterItCouldNotBeParsed) {
    load("<a>", "test.xml");
    write_file("test.xml", declaration + "<a>mended</a>");
    EXPECT_EQ(load_file("test.xml"), 1);
    EXPECT_EQ(text("a"), "mended");
    take_lines();
}

TEST_F(XmlFileTest, WhatIsNoRegularFileIsNotRead) {
    load("<a/>");
    const std::string path = path_of("test.xml");
    for (const auto &take_its_place : std::initializer_list<std::function<void()>>{
             [&] { std::filesystem::create_directory(path); },
             [&] { ASSERT_EQ(mkfifo(path.c_str(), 0600), 0); }, // reading it would never end
         }) {
        std::filesystem::remove(path);
        take_its_place();
        jxmlfile_doread(holder);
        EXPECT_EQ(holder->loaded, 0);
        EXPECT_EQ(take_lines(), (Lines{error("unable to parse file " + path)}));
    }
}

TEST_F(XmlFileTest, AFileOfMoreThanTwoGigabytesIsNotRead) {
    load("<a/>");
    std::filesystem::resize_file(path_of("test.xml"), 3'000'000'000); // takes no room on the disk
    jxmlfile_doread(holder);
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(take_lines(), (Lines{error("unable to parse file " + path_of("test.xml"))}));
}

TEST_F(XmlFileTest, LibxmlPrintsNothingOfItsOwn) {
    testing::internal::CaptureStderr();
    load("<a><b></a>", "bad.xml");
    load("<p:a/>", "prefix.xml");
    std::filesystem::remove(path_of("prefix.xml"));
    jxmlfile_doread(holder);
    write("/no/such/folder/a.xml");
    drain_queue();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    take_lines();
}

TEST_F(XmlFileTest, BlanksBetweenElementsAreDropped) {
    load("<a>\n  <b> text </b>\n  <c/>\n</a>\n");
    EXPECT_EQ(document(), "<a><b> text </b><c/></a>");
}

TEST_F(XmlFileTest, TheParseHoldsTheCriticalRegion) {
    write_file("test.xml", declaration + "<a/>");
    jxmlfile_filename(holder, gensym("test.xml"));
    trace(trace_lock);
    jxmlfile_doread(holder);
    const Lines told = take_lines();
    ASSERT_GE(told.size(), 2u);
    for (size_t i = 0; i < told.size(); ++i)
        EXPECT_EQ(told[i], i % 2 ? "trace: critical_exit 0" : "trace: critical_enter 0");
    // What the parse itself reports comes while the region is held.
    write_file(
        "test.xml", declaration + "<!DOCTYPE a [<!ENTITY % e '<!-- -->'>" + [] {
            std::string references;
            for (int i = 0; i < 10'000; ++i)
                references += "%e;";
            return references;
        }() + "]><a/>");
    jxmlfile_doread(holder);
    const Lines refused = take_lines();
    ASSERT_GE(refused.size(), 4u);
    EXPECT_EQ(refused[0], "trace: critical_enter 0");
    EXPECT_EQ(refused[1], error("parameter entities of " + path_of("test.xml") + " expand to more than 10000 words"));
    EXPECT_EQ(refused[2], "trace: critical_exit 0");
    EXPECT_EQ(refused[3], error("unable to parse file " + path_of("test.xml")));
}

TEST_F(XmlFileTest, WhatLibxmlKeepsForAllGoesWithTheLastHolder) {
    xmlAddEncodingAlias("UTF-8", "an-alias");
    jxmlfile_free(jxmlfile_new(nullptr));
    load("<a/>");
    jxmlfile_newdoc(holder, gensym(path_of("new.xml").c_str()));
    EXPECT_STREQ(xmlGetEncodingAlias("an-alias"), "UTF-8") << "this holder may have a document";
    jxmlfile_free(std::exchange(holder, nullptr));
    EXPECT_EQ(xmlGetEncodingAlias("an-alias"), nullptr);
}

// ---- naming a file

TEST_F(XmlFileTest, NamingAnotherFileUnloadsTheDocument) {
    load("<a/>", "one.xml");
    write_file("two.xml", declaration + "<b/>");
    jxmlfile_filename(holder, gensym("two.xml"));
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(current_file(), path_of("two.xml"));
    EXPECT_EQ(write_file_path(), path_of("two.xml"));
    EXPECT_EQ(count("a"), "failed -1");
    jxmlfile_doread(holder);
    EXPECT_EQ(count("b"), "1");
}

TEST_F(XmlFileTest, NamingTheCurrentFileCountsAsHavingIt) {
    load("<a>", "test.xml");
    EXPECT_EQ(holder->loaded, 0);
    jxmlfile_filename(holder, gensym("test.xml"));
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(count("a"), "failed -1") << "there is no document all the same";
    take_lines();
}

TEST_F(XmlFileTest, NamingAFileThatIsNotThereChangesNothing) {
    load("<a/>");
    const std::string longest(3000, 'x');
    for (const std::string &name :
         {std::string("missing.xml"), std::string("no/such/folder.xml"), longest, std::string()}) {
        jxmlfile_filename(holder, gensym(name.c_str()));
        EXPECT_EQ(take_lines(), (Lines{error("can't find " + name)}));
        EXPECT_EQ(holder->loaded, 1);
        EXPECT_EQ(current_file(), path_of("test.xml"));
    }
}

TEST_F(XmlFileTest, TheSearchPathIsSearched) {
    std::filesystem::create_directory(path_of("searched"));
    write_file("searched/a.xml", declaration + "<a/>");
    set_search_folders({"searched"});
    read("a.xml");
    drain_queue();
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(current_file(), path_of("searched/a.xml"));
}

TEST_F(XmlFileTest, AFileWhosePathIsTooLongForTheHostIsNotFound) {
    load("<a/>");
    std::string deep = path_of("deep");
    while (deep.size() < MAX_PATH_CHARS)
        deep += "/" + std::string(200, 'd');
    std::filesystem::create_directories(deep);
    std::ofstream(deep + "/far.xml") << declaration << "<b/>";
    set_search_folders({deep});
    read("far.xml");
    EXPECT_EQ(take_lines(), (Lines{error("can't find far.xml")}));
    EXPECT_EQ(current_file(), path_of("test.xml"));
}

// ---- reading from the queue

TEST_F(XmlFileTest, ReadingIsDeferred) {
    write_file("test.xml", declaration + "<a/>");
    read("test.xml");
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(current_file(), path_of("test.xml"));
    drain_queue();
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(document(), "<a/>");
}

TEST_F(XmlFileTest, ReadingAnUnknownNameReadsTheCurrentFileAgain) {
    load("<a>first</a>");
    write_file("test.xml", declaration + "<a>second</a>");
    read("missing.xml");
    EXPECT_EQ(take_lines(), (Lines{error("can't find missing.xml")}));
    EXPECT_EQ(text("a"), "first");
    drain_queue();
    EXPECT_EQ(text("a"), "second");
}

TEST_F(XmlFileTest, ReadingAnUnknownNameAtFirstDoesNothing) {
    read("missing.xml");
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{error("can't find missing.xml")}));
    EXPECT_EQ(holder->loaded, 0);
}

TEST_F(XmlFileTest, ReadsBeforeTheQueueRunsBecomeOne) {
    write_file("one.xml", declaration + "<a>");
    write_file("two.xml", declaration + "<b>");
    read("one.xml");
    read("two.xml");
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{error("unable to parse file " + path_of("two.xml"))}));
}

TEST_F(XmlFileTest, ABangReadsTheCurrentFileAgain) {
    load("<a>first</a>");
    write_file("test.xml", declaration + "<a>second</a>");
    jxmlfile_bang(holder);
    EXPECT_EQ(text("a"), "first");
    drain_queue();
    EXPECT_EQ(text("a"), "second");
    std::filesystem::remove(path_of("test.xml"));
    jxmlfile_bang(holder);
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{error("unable to parse file " + path_of("test.xml"))}));
    EXPECT_EQ(holder->loaded, 0);
}

// ---- new documents

TEST_F(XmlFileTest, ANewDocumentIsWrittenAtOnceAndIsNotLoaded) {
    newdoc("new.xml");
    EXPECT_EQ(saved("new.xml"), empty_file);
    EXPECT_EQ(holder->loaded, 0);
    EXPECT_EQ(current_file(), path_of("new.xml"));
    EXPECT_EQ(count("resourcefile"), "failed -1");
    EXPECT_EQ(load_file("new.xml"), 1);
    EXPECT_EQ(count("resourcefile resource"), "1");
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, ANewDocumentInALoadedHolderStaysLoaded) {
    load("<a/>");
    newdoc(path_of("new.xml"));
    EXPECT_EQ(holder->loaded, 1);
    EXPECT_EQ(count("resourcefile resource"), "1");
    EXPECT_EQ(count("a"), "0");
}

TEST_F(XmlFileTest, ANewDocumentHasTheHoldersNames) {
    set_root("list");
    set_xmlpath("group");
    newdoc("new.xml");
    EXPECT_EQ(saved("new.xml"), declaration + "<list><group/></list>\n");
}

TEST_F(XmlFileTest, ANewDocumentWithANameThatIsNoneIsRefused) {
    load("<a/>");
    for (const char *name : {"two words", "", "1st", "a&b", "<", "a:b:c", ":a", "-a"}) {
        holder->root = gensym(name);
        newdoc("never.xml");
        EXPECT_EQ(take_lines(), (Lines{error("\"" + std::string(name) + "\" cannot name an element")}));
    }
    holder->root = gensym("a");
    holder->xmlpath[0] = gensym("b c");
    newdoc("never.xml");
    EXPECT_EQ(take_lines(), (Lines{error("\"b c\" cannot name an element")}));
    EXPECT_FALSE(std::filesystem::exists(path_of("never.xml")));
    EXPECT_EQ(document(), "<a/>");
}

// ---- writing

TEST_F(XmlFileTest, WritingIsDeferred) {
    load("<a/>");
    set("a text changed");
    write(path_of("out.xml"));
    EXPECT_FALSE(std::filesystem::exists(path_of("out.xml")));
    EXPECT_EQ(current_file(), path_of("test.xml"));
    drain_queue();
    EXPECT_EQ(saved("out.xml"), declaration + "<a>changed</a>\n");
    EXPECT_EQ(current_file(), path_of("out.xml"));
    EXPECT_EQ(saved("test.xml"), declaration + "<a/>");
}

TEST_F(XmlFileTest, WritingAgainGoesToTheSameFile) {
    load("<a/>");
    set("a text one");
    jxmlfile_writeagain(holder);
    drain_queue();
    EXPECT_EQ(saved("test.xml"), declaration + "<a>one</a>\n");
    set("a text two");
    jxmlfile_writeagain(holder);
    drain_queue();
    EXPECT_EQ(saved("test.xml"), declaration + "<a>two</a>\n");
}

TEST_F(XmlFileTest, ChangesStayInMemoryUntilTheyAreWritten) {
    load("<a/>");
    set("a text changed");
    drain_queue();
    EXPECT_EQ(saved("test.xml"), declaration + "<a/>");
}

TEST_F(XmlFileTest, AFailedWriteIsNotReportedAndMovesTheFileAllTheSame) {
    load("<a/>");
    write("/no/such/folder/out.xml");
    drain_queue();
    EXPECT_EQ(take_lines(), Lines());
    EXPECT_EQ(current_file(), "/no/such/folder/out.xml");
    EXPECT_EQ(document(), "<a/>");
}

TEST_F(XmlFileTest, AnEmptyHolderWritesNothing) {
    write(path_of("out.xml"));
    drain_queue();
    EXPECT_FALSE(std::filesystem::exists(path_of("out.xml")));
    EXPECT_EQ(current_file(), path_of("out.xml"));
}

TEST_F(XmlFileTest, APathThatTheHostCannotConvertIsReportedAndNothingIsWritten) {
    load("<a/>");
    const std::string longest(3000, 'x');
    for (const std::string &path : {longest, std::string()}) {
        write(path);
        EXPECT_EQ(take_lines(), (Lines{error("can't find " + path)}));
        drain_queue();
        newdoc(path);
        EXPECT_EQ(take_lines(), (Lines{error("can't find " + path)}));
    }
    EXPECT_EQ(current_file(), path_of("test.xml"));
    EXPECT_EQ(saved("test.xml"), declaration + "<a/>");
}

TEST_F(XmlFileTest, NamesAreTakenAsTheyStand) {
    load("<a/>");
    for (const char *name : {"100%41.xml", "a b.xml", "%s%n.xml", "été.xml", "q?x=1#y.xml"}) {
        write(path_of(name));
        drain_queue();
        EXPECT_EQ(saved(name), declaration + "<a/>\n") << name;
        jxmlfile_bang(holder);
        drain_queue();
        EXPECT_EQ(holder->loaded, 1) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(path_of("100A.xml")));
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(XmlFileTest, WhatIsWrittenIsWhatLibxmlSaves) {
    for (const std::string &content : {declaration + "<a>\xC3\xA9<b x='&#10;'/><!-- c --><?pi d?></a>",
                                       std::string("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<a>\xE9</a>"),
                                       std::string("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
                                                   "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;\xC3\xA9</a>"),
                                       std::string("<?xml version='1.1'?><a/>")}) {
        write_file("test.xml", content);
        holder->file_path = nullptr;
        ASSERT_EQ(load_file("test.xml"), 1);
        ASSERT_NE(holder->doc, nullptr) << content;
        write(path_of("ours.xml"));
        drain_queue();
        ASSERT_GT(xmlSaveFile(path_of("theirs.xml").c_str(), holder->doc), 0);
        EXPECT_EQ(saved("ours.xml"), saved("theirs.xml"));
    }
}
