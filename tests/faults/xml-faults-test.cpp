// The XML layer while memory runs out: an operation that has not failed has done all of its work, and one that has
// failed leaves the document as it was, or as far as it came.
#include "faults/faults-test.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "support/document-text.h"
#include "vrk.pathname.h"

using namespace maxhost;

namespace {

using Atoms = std::vector<t_atom>;
using Documents = std::vector<std::string>; // that a failure may leave

const std::string content = "<resourcefile><resource><long number=\"0\">7</long><string number=\"1\"> one </string>"
                            "<data number=\"0\"><![CDATA[00FF0A]]></data>"
                            "<menu number=\"1\"><menu-title>File</menu-title><menu-item number=\"1\">Open</menu-item>"
                            "<menu-command number=\"1\">O</menu-command></menu></resource></resourcefile>";

std::string with(const std::string &what, const std::string &place) {
    std::string changed = content;
    return changed.insert(changed.find(place), what);
}

std::string without(const std::string &what) {
    std::string changed = content;
    return changed.erase(changed.find(what), what.size());
}

std::string changed(const std::string &what, const std::string &to) {
    std::string text = content;
    return text.replace(text.find(what), what.size(), to);
}

class XmlFaults : public FaultsTest {
  protected:
    void prepare() {
        std::filesystem::remove("new.xml");
        write_file("test.xml", "<?xml version=\"1.0\"?>\n" + content + "\n");
        holder = jxmlfile_new(nullptr);
        jxmlfile_filename(holder, gensym((folder() + "/test.xml").c_str()));
        jxmlfile_doread(holder);
        ASSERT_EQ(document(), content);
        short count = 0; // so that there is an index
        Atoms path = parse_atoms("resourcefile resource string attr number 1");
        jxmlfile_count(holder, static_cast<long>(path.size()), path.data(), &count, 0);
    }

    std::string document() const { return document_text(holder->doc); }

    // An operation that takes a path: its result is 0 once nothing fails, and the document is then `after`. When it
    // fails the document is as before, or as one of those in between.
    template <typename Operation>
    void sweep_path(const std::string &path, Operation operation, const std::string &after,
                    const Documents &between = {}) {
        long result = 0;
        Atoms atoms;
        sweep(
            path,
            [&] {
                prepare();
                atoms = parse_atoms(path);
                result = -99;
            },
            [&] { result = operation(static_cast<long>(atoms.size()), atoms.data()); },
            [&](bool failed) {
                const std::string now = document();
                EXPECT_TRUE(failed || result == 0) << result;
                EXPECT_TRUE(now == after || result != 0) << now;
                EXPECT_TRUE(now == after || now == content || std::count(between.begin(), between.end(), now)) << now;
            },
            [this] { jxmlfile_free(holder); });
    }

    auto set() {
        return [this](long argc, t_atom *argv) { return jxmlfile_set(holder, argc, argv, 1); };
    }

    t_jxmlfile *holder = nullptr;
};

// Expressions that only XPath answers.
const std::string by_position = "resourcefile resource string 1";

TEST_F(XmlFaults, Counting) {
    for (const std::string &path : {std::string("resourcefile resource string"),
                                    std::string("resourcefile resource data attr number 0"), by_position}) {
        short count = -9;
        sweep_path(
            path,
            [&](long argc, t_atom *argv) {
                count = -9;
                const long result = jxmlfile_count(holder, argc, argv, &count, 1);
                EXPECT_EQ(count, result ? -9 : 1);
                return result;
            },
            content);
    }
}

TEST_F(XmlFaults, Getting) {
    for (const std::string &path : {std::string("resourcefile resource string attr number 1"),
                                    std::string("resourcefile resource data attr number 0"), by_position})
        sweep_path(
            path,
            [&](long argc, t_atom *argv) {
                t_atom value;
                atom_setlong(&value, 0);
                t_atom *first = &value;
                short count = 1;
                const long result = jxmlfile_get(holder, argc, argv, gensym("text"), &count, &first, 1);
                if (atom_gettype(&value) == A_OBJ)
                    sysmem_freeptr(atom_getobj(&value));
                else if (result == 0) {
                    EXPECT_STREQ(atom_getsym(&value)->s_name, "one");
                }
                return result;
            },
            content);
    sweep_path(
        "resourcefile resource string number",
        [&](long argc, t_atom *argv) {
            t_atom value;
            atom_setlong(&value, 0);
            t_atom *first = &value;
            const long result = jxmlfile_getattr(holder, argc, argv, gensym("int"), nullptr, &first, 1);
            EXPECT_EQ(atom_getlong(&value), result ? 0 : 1);
            return result;
        },
        content);
}

TEST_F(XmlFaults, SettingTexts) {
    sweep_path("resourcefile resource string attr number 1 text new", set(), changed(" one ", "new"),
               {changed(" one ", "")});
    for (const size_t length : {63, 64}) { // the room for them grows with the blank behind them, or before
        const std::string two = std::string(length, 'x') + " " + std::string(length, 'y');
        sweep_path("resourcefile resource string attr number 1 text " + two, set(), changed(" one ", two),
                   {changed(" one ", "")});
    }
    sweep_path("resourcefile resource string attr number 2 text a 1 2.5", set(),
               with("<string number=\"2\">a 1 2.500000</string>", "</resource>"),
               {with("<string number=\"2\"/>", "</resource>")});
    sweep_path("resourcefile new deep text x", set(), with("<new><deep>x</deep></new>", "</resourcefile>"),
               {with("<new/>", "</resourcefile>"), with("<new><deep/></new>", "</resourcefile>")});
}

TEST_F(XmlFaults, SettingThroughXPath) {
    const std::string item = "<menu-item number=\"2\">Close</menu-item>";
    sweep_path("resourcefile resource menu attr number 1 menu-item attr number 2 text Close", set(),
               with(item, "</menu>"), {with("<menu-item number=\"2\"/>", "</menu>")});
    sweep_path("resourcefile resource string 1 text new", set(), changed(" one ", "new"), {changed(" one ", "")});
}

TEST_F(XmlFaults, SettingBytes) {
    sweep_path("resourcefile resource data attr number 0 cdata A 1", set(), changed("00FF0A", "4101"));
    sweep_path(
        "resourcefile resource data attr number 0 cdata A 1",
        [this](long argc, t_atom *argv) {
            t_ptr block = sysmem_newptr(3);
            if (!block)
                return -1L;
            std::memcpy(block, "abc", 3);
            atom_setobj(argv + argc - 1, block);
            return jxmlfile_set(holder, argc, argv, 1);
        },
        changed("00FF0A", "616263"));
}

TEST_F(XmlFaults, AttributesAndDeleting) {
    const auto setattr = [this](long argc, t_atom *argv) { return jxmlfile_setattr(holder, argc, argv, 1); };
    sweep_path("resourcefile resource string number 5", setattr,
               changed("<string number=\"1\">", "<string number=\"5\">"),
               {changed("<string number=\"1\">", "<string number=\"\">")});
    sweep_path("resourcefile resource string other x", setattr,
               changed("<string number=\"1\">", "<string number=\"1\" other=\"x\">"),
               {changed("<string number=\"1\">", "<string number=\"1\" other=\"\">")});
    sweep_path(
        "resourcefile resource string number",
        [this](long argc, t_atom *argv) { return jxmlfile_deleteattr(holder, argc, argv, 1); },
        changed("<string number=\"1\">", "<string>"));
    sweep_path(
        "resourcefile resource string attr number 1",
        [this](long argc, t_atom *argv) { return jxmlfile_delete(holder, argc, argv, 1); },
        without("<string number=\"1\"> one </string>"));
}

TEST_F(XmlFaults, Resources) {
    long counted = 0;
    sweep_path(
        "count", [&](long, t_atom *) { return jxmlresfile_count_resource(holder, gensym("string"), &counted, 1); },
        content);
    sweep_path("set",
               [&](long, t_atom *) {
                   t_atom value;
                   atom_setsym(&value, gensym("text"));
                   return jxmlresfile_set_resource(holder, gensym("string"), 2, &value, 0, 1);
               },
               with("<string number=\"2\">text</string>", "</resource>"),
               {with("<string number=\"2\"/>", "</resource>")});
    sweep_path(
        "set bytes",
        [&](long, t_atom *) {
            t_atom value;
            t_ptr block = sysmem_newptr(1);
            if (!block)
                return -1L;
            *block = 'A';
            atom_setobj(&value, block);
            return jxmlresfile_set_resource(holder, gensym("data"), 0, &value, 1, 1);
        },
        changed("00FF0A", "41"));
    const auto read = [this](auto reader) {
        return [this, reader](long, t_atom *) {
            t_atom value;
            atom_setlong(&value, 0);
            t_atom *first = &value;
            short count = 1;
            const long result = reader(&count, &first);
            if (atom_gettype(&value) == A_OBJ)
                sysmem_freeptr(atom_getobj(&value));
            return result;
        };
    };
    t_symbol *text = gensym("text");
    sweep_path("get", read([&](short *count, t_atom **first) {
                   return jxmlresfile_get_resource(holder, gensym("data"), 0, text, count, first, 1);
               }),
               content);
    sweep_path("title", read([&](short *count, t_atom **first) {
                   return jxmlresfile_get_menutitle(holder, 1, text, count, first, 1);
               }),
               content);
    sweep_path("item", read([&](short *count, t_atom **first) {
                   return jxmlresfile_get_menuitem(holder, 1, 1, text, count, first, 1, 1);
               }),
               content);
    sweep_path(
        "items", [&](long, t_atom *) { return jxmlresfile_count_menuitems(holder, 1, &counted, 1); }, content);
}

TEST_F(XmlFaults, ReadingAndMakingFiles) {
    const std::string path = folder() + "/test.xml";
    sweep_path("read again",
               [&](long, t_atom *) {
                   jxmlfile_doread(holder);
                   return holder->loaded ? 0L : -1L;
               },
               content, {"none"});
    sweep_path("read",
               [&](long, t_atom *) {
                   jxmlfile_read(holder, gensym(path.c_str()));
                   drain_queue();
                   return holder->loaded ? 0L : -1L;
               },
               content, {"none"});
    sweep_path("load",
               [&](long, t_atom *) {
                   holder->file_path = nullptr;
                   return jxmlfile_load(holder, "test.xml", 0) && holder->loaded ? 0L : -1L;
               },
               content, {"none"});
    const std::string empty = "<resourcefile><resource/></resourcefile>";
    sweep_path("read resources",
               [&](long, t_atom *) {
                   holder->file_path = nullptr;
                   jxmlresfile_read(holder, gensym("test.xml"));
                   return document() == content ? 0L : -1L;
               },
               content, {"none"});
    EXPECT_EQ(read_file(path), "<?xml version=\"1.0\"?>\n" + content + "\n") << "a file is lost";
    sweep_path(
        "make",
        [&](long, t_atom *) {
            jxmlresfile_read(holder, gensym("new.xml"));
            return document() == empty ? 0L : -1L;
        },
        empty);
}

TEST_F(XmlFaults, ReadingEntities) {
    const std::string other = "<!DOCTYPE resourcefile [\n<!ENTITY e 'text <b k=\"1\"/>'>\n]>\n"
                              "<resourcefile k=\"1\"><resource>&e;</resource></resourcefile>";
    const std::string path = write_file("other.xml", "<?xml version=\"1.0\"?>\n" + other);
    sweep_path("read entities",
               [&](long, t_atom *) {
                   holder->file_path = gensym(path.c_str());
                   jxmlfile_doread(holder);
                   return holder->loaded ? 0L : -1L;
               },
               other, {"none"});
}

TEST_F(XmlFaults, Writing) {
    sweep_path(
        "write",
        [&](long, t_atom *) {
            jxmlfile_write(holder, gensym((folder() + "/out.xml").c_str()));
            drain_queue();
            return 0L;
        },
        content);
    EXPECT_EQ(read_file(folder() + "/out.xml"), "<?xml version=\"1.0\"?>\n" + content + "\n");
}

std::string utf16(const std::string &ascii) {
    std::string wide = "\xFF\xFE";
    for (const char c : ascii)
        wide += {c, '\0'};
    return wide;
}

// A long text in an encoding for which libxml2 makes an encoder.
const std::string long_and_encoded =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-15\"?>\n<a>" + std::string(20000, 'x') + "\xA4</a>\n";

TEST_F(XmlFaults, ReadingOtherEncodings) {
    const std::string typed = "<!DOCTYPE a [\n<!-- comment --><?target instruction?>\n<!ENTITY % p ' '>%p;\n"
                              "<!ATTLIST a i ID #IMPLIED>\n]>\n<a i='one'>text</a>";
    for (const std::string &text : {long_and_encoded, "<?xml version='1.0' encoding='ISO-8859-1'?>" + typed,
                                    utf16("<?xml version='1.0' encoding='UTF-16'?>" + typed)}) {
        const std::string path = write_file("encoded.xml", text);
        std::string whole;
        const auto prepare = [&] {
            holder = jxmlfile_new(nullptr);
            jxmlfile_filename(holder, gensym(path.c_str()));
        };
        const auto clean = [this] { jxmlfile_free(holder); };
        prepare();
        jxmlfile_doread(holder);
        whole = document();
        EXPECT_NE(whole, "none");
        clean();
        sweep(
            "read", prepare, [&] { jxmlfile_doread(holder); },
            [&](bool failed) {
                EXPECT_TRUE(holder->loaded || failed);
                EXPECT_EQ(document(), holder->loaded ? whole : "none");
            },
            clean);
    }
}

TEST_F(XmlFaults, WritingALongTextInAnotherEncoding) {
    const std::string &whole = long_and_encoded;
    const std::string before = "what was there";
    write_file("long.xml", whole);
    const std::string path = folder() + "/out.xml";
    sweep(
        "write",
        [&] {
            write_file("out.xml", before);
            holder = jxmlfile_new(nullptr);
            jxmlfile_filename(holder, gensym((folder() + "/long.xml").c_str()));
            jxmlfile_doread(holder);
        },
        [&] { vrk_save_document(gensym(path.c_str()), holder->doc); },
        [&](bool failed) {
            const std::string now = read_file(path);
            EXPECT_TRUE(now == whole || (failed && now == before)) << now.size() << " bytes";
        },
        [this] { jxmlfile_free(holder); });
}

TEST_F(XmlFaults, EditorAndPrinting) {
    sweep_path(
        "open",
        [&](long, t_atom *) {
            jxmlresfile_open(holder);
            jxmlfile_open(holder);
            return holder->editor ? 0L : -1L;
        },
        content);
    std::string text = "<?xml version=\"1.0\"?><other/>";
    sweep_path(
        "save",
        [&](long, t_atom *) {
            char *bytes = text.data();
            jxmlfile_edsave(holder, &bytes, static_cast<long>(text.size()), "edited.xml", 0);
            drain_queue();
            return document() == "<other/>" ? 0L : -1L;
        },
        "<other/>");
    sweep_path(
        "print",
        [&](long, t_atom *) {
            jxmlfile_print(holder);
            return 0L;
        },
        content);
}

} // namespace
