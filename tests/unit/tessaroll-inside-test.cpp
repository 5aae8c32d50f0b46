// The list box from the inside: its record, the order in which it is registered, made and freed, and what it does when
// messages change it while it is putting its items out.
#include <cstddef>

#include "kernel/attributes.h"
#include "kernel/frontend.h"
#include "support/tessaroll-test.h"
#include "vrk.tessaroll.h"

using namespace maxhost;

namespace {

const t_tessaroll &record_of(const t_object *box) { return *reinterpret_cast<const t_tessaroll *>(box); }

// ---- the setters that an attribute gets while the class is registered

Lines setters;

void note_setter(Attribute *attribute, t_symbol *which, method accessor) {
    (which == gensym("get") ? attribute->getter : attribute->setter) = accessor;
    if (which == gensym("set"))
        setters.push_back(std::string(attribute->name->s_name) +
                          (accessor == (method)jgraphics_attr_setrgba ? " of the host" : ""));
}

// Before main, so that no test has loaded the plug-in.
[[maybe_unused]] const bool setters_are_noted = [] {
    t_object *probe = attr_offset_new("probe", gensym("long"), 0, nullptr, nullptr, 0);
    for (Method &found : const_cast<Class &>(class_of(probe)).methods)
        if (found.name == gensym("setmethod"))
            found.function = (method)note_setter;
    return object_free(probe) == MAX_ERR_NONE;
}();

class TessarollInsideTest : public TessarollTest {
  protected:
    // From now on a function is called for every message that leaves an outlet of the box, before it is delivered.
    using Listener = std::function<void(long outlet, const std::string &selector)>;
    void listen(const Listener &listener) {
        FrontEnd front = front_end();
        const auto note = front.output;
        front.output = [=](const std::string &object, long outlet, t_symbol *selector, std::span<const t_atom> atoms) {
            note(object, outlet, selector, atoms);
            if (object == "obj-1")
                listener(outlet, selector->s_name);
        };
        start_host(front);
    }

    // Sends messages round in a circle until the host ends it.
    void overflow() {
        t_object *circle = make();
        ASSERT_TRUE(connect_boxes(circle, 2, circle));
        send_and_drain(circle, "append bang");
        send(circle, "bang");
    }

    // What the first box put out.
    Lines output_of_the_box() {
        Lines all;
        for (const std::string &line : take_lines())
            if (line.starts_with("obj-1:"))
                all.push_back(line);
        return all;
    }
};

} // namespace

// ---- the record

TEST_F(TessarollInsideTest, TheRecordHasItsFieldsInTheirOrder) {
    const size_t offsets[] = {
        offsetof(t_tessaroll, box),          offsetof(t_tessaroll, jlist),        offsetof(t_tessaroll, xmlfile),
        offsetof(t_tessaroll, read_qelem),   offsetof(t_tessaroll, delete_qelem), offsetof(t_tessaroll, item_outlet),
        offsetof(t_tessaroll, count_outlet), offsetof(t_tessaroll, index_outlet), offsetof(t_tessaroll, read_name),
        offsetof(t_tessaroll, cellh),        offsetof(t_tessaroll, cellv),        offsetof(t_tessaroll, default_size),
        offsetof(t_tessaroll, embed)};
    EXPECT_EQ(offsets[0], 0u);
    EXPECT_EQ(offsets[1], sizeof(t_jbox));
    for (size_t i = 2; i < std::size(offsets); ++i)
        EXPECT_EQ(offsets[i], offsets[i - 1] + 8) << "field " << i << ": every one before the last is one word";
}

TEST_F(TessarollInsideTest, ANewRecordHoldsWhatTheListBoxStartsWith) {
    const t_tessaroll &box = record_of(make());
    EXPECT_EQ(box.default_size, 9.0);
    EXPECT_EQ(box.read_name, nullptr);
    EXPECT_EQ(box.jlist->file_type, 0x54455854);
    EXPECT_EQ(box.jlist->owner, &box.box.b_ob);
    EXPECT_EQ(box.jlist->column_name, gensym("vrk.tessaroll"));
    EXPECT_NE(box.xmlfile, nullptr);
}

// ---- registering, making and freeing

TEST_F(TessarollInsideTest, SelectcolorHasTheHostsSetterUntilItHasItsOwn) {
    EXPECT_EQ(setters, (Lines{"frame", "selectcolor of the host", "selectcolor", "root", "xmlpath"}));
}

TEST_F(TessarollInsideTest, TheBindingIsGivenUpBeforeTheRestoringIsQueued) {
    FrontEnd front = front_end();
    front.traced = trace_queue;
    t_object *bound_then = patcher;
    front.trace = [&](const std::string &text) {
        if (text == "defer_low restoreitems 1")
            bound_then = bound();
    };
    start_host(front);
    make({{"restoreitems", "a"}});
    EXPECT_EQ(bound_then, nullptr);
}

TEST_F(TessarollInsideTest, TheHostBoxGoesFirstThenTheDocumentThenTheList) {
    t_object *box = make_with({"a"});
    write_file("list.xml", "<?xml version=\"1.0\"?><resourcefile/>");
    send_and_drain(box, "read list.xml");
    jxmlfile_open(record_of(box).xmlfile);
    Lines order;
    FrontEnd front = front_end();
    front.traced = trace_view;
    front.box_goes = [&](t_object *) { order.emplace_back("box"); };
    front.editor = [&](t_object *, EditorEvent) { order.emplace_back("document"); };
    front.trace = [&](const std::string &text) { order.push_back(text); };
    start_host(front);
    free_box(box);
    EXPECT_EQ(order, (Lines{"box", "document", "jdataview_clear"}));
}

// ---- output while the list changes

TEST_F(TessarollInsideTest, CountAndNumberAreThoseAfterTheItemWentOut) {
    t_object *box = make_with({"a", "b", "c"});
    listen([&](long outlet, const std::string &) {
        if (outlet == 2)
            send_and_drain(box, "delete 1"); // which makes row 1 current
    });
    send(box, "bang");
    EXPECT_EQ(take_lines(), (Lines{"obj-1:2 c", "obj-1:1 int 2", "obj-1:0 int 1"}));
    EXPECT_TRUE(click_row(box, 2));
    EXPECT_EQ(take_lines(), (Lines{"obj-1:2 c", "obj-1:0 int 1"}));
}

TEST_F(TessarollInsideTest, ADumpEndsWhenAnItemDoesNotComeThrough) {
    t_object *box = make_with({"a", "b", "c"});
    listen([this](long outlet, const std::string &selector) {
        if (outlet == 2 && selector == "b")
            overflow();
    });
    send(box, "dump");
    EXPECT_EQ(output_of_the_box(), (Lines{"obj-1:2 a", "obj-1:0 int 1", "obj-1:2 b"}));
}

TEST_F(TessarollInsideTest, ADumpEndsWhenANumberDoesNotComeThrough) {
    t_object *box = make_with({"a", "b", "c"});
    long numbers = 0;
    listen([&](long outlet, const std::string &) {
        if (outlet == 0 && ++numbers == 2)
            overflow();
    });
    send(box, "dump");
    EXPECT_EQ(output_of_the_box(), (Lines{"obj-1:2 a", "obj-1:0 int 1", "obj-1:2 b", "obj-1:0 int 2"}));
}

TEST_F(TessarollInsideTest, ADumpGoesOnWithItemsThatAreAddedMeanwhile) {
    t_object *box = make_with({"a", "b"});
    listen([&](long, const std::string &selector) {
        if (selector == "b")
            send_and_drain(box, "append c");
    });
    EXPECT_EQ(items(box), (Lines{"a", "b", "c"}));
}
