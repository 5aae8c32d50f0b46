// What the host promises of flags, inlets, outlets and notifications.
#include "ext.h"
#include "support/patch-test.h"

using namespace maxhost;

namespace {

// A box that says what it hears, with an outlet of each kind and attributes of which one is painted.
struct Teller {
    t_jbox box;
    long plain, painted;
    void *any, *number, *bang;
    t_max_err result; // of the last notification
};

t_class *teller_class;

void *teller_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = static_cast<Teller *>(object_alloc(teller_class));
    jbox_new(&x->box, JBOX_DRAWFIRSTIN | JBOX_GROWBOTH, argc, argv);
    x->box.b_firstin = &x->box.b_ob;
    x->bang = outlet_new(x, "bang");
    x->number = intout(x);
    x->any = outlet_new(x, nullptr);
    attr_dictionary_process(x, object_dictionaryarg(argc, argv));
    jbox_ready(&x->box);
    return x;
}

void teller_hello(Teller *x, t_symbol *, long, t_atom *) { object_post(&x->box.b_ob, "hello"); }

t_max_err teller_notify(Teller *x, t_symbol *name, t_symbol *message, void *sender, void *data) {
    return x->result = jbox_notify(&x->box, name, message, sender, data);
}

void add_attribute(const char *name, size_t offset) {
    class_addattr(teller_class, attr_offset_new(name, gensym("long"), 0, nullptr, nullptr, static_cast<long>(offset)));
}

void register_teller() {
    teller_class = class_new("teller", (method)teller_new, (method)jbox_free, sizeof(Teller), nullptr, A_GIMME, 0);
    teller_class->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(teller_class, JBOX_COLOR | JBOX_FIXWIDTH);
    class_addmethod(teller_class, (method)teller_hello, "hello", A_GIMME, 0);
    class_addmethod(teller_class, (method)teller_notify, "notify", A_CANT, 0);
    add_attribute("plain", offsetof(Teller, plain));
    add_attribute("painted", offsetof(Teller, painted));
    class_attr_addattr_parse(teller_class, "painted", "paint", gensym("long"), 0, "1");
    class_attr_addattr_parse(teller_class, "painted", "default", gensym("long"), 0, "3");
    class_register(CLASS_BOX, teller_class);
}

class BoxPromisesTest : public PatchTest {
  protected:
    static void SetUpTestSuite() {
        if (!teller_class)
            register_teller();
    }
    void SetUp() override {
        PatchTest::SetUp();
        teller = reinterpret_cast<Teller *>(box("t", "teller"));
    }

    // A class that nobody registers.
    static t_class *unknown_class() {
        static t_class *const cls = class_new("unknown", nullptr, nullptr, sizeof(t_jbox), nullptr, A_GIMME, 0);
        return cls;
    }

    Teller *teller = nullptr;
};

} // namespace

// ---- inlets

TEST_F(BoxPromisesTest, MessagesToTheFirstInletReachWhatIsThere) {
    box("m", "print there");
    EXPECT_EQ(sent("t", "hello"), (Lines{"post: t: hello"}));
    teller->box.b_firstin = named("m");
    EXPECT_EQ(sent("t", "hello"), (Lines{"post: m: there: hello"}));
    box("b", "button");
    cord("b", 0, "t");
    EXPECT_EQ(sent("b", "bang"), (Lines{"b:0 bang", "post: m: there: bang"}));
}

TEST_F(BoxPromisesTest, AFirstInletThatLeadsNowhereIsTold) {
    for (t_object *nobody : {static_cast<t_object *>(nullptr), reinterpret_cast<t_object *>(1)}) {
        teller->box.b_firstin = nobody;
        EXPECT_EQ(sent("t", "hello"), (Lines{"error: t: its first inlet leads to no object that is alive"}));
    }
}

// ---- outlets

TEST_F(BoxPromisesTest, AnOutletSendsItsOwnKindOfMessageAlone) {
    EXPECT_NE(outlet_int(teller->number, 5), nullptr);
    EXPECT_NE(outlet_anything(teller->bang, gensym("bang"), 0, nullptr), nullptr);
    EXPECT_NE(outlet_anything(teller->any, gensym("word"), 0, nullptr), nullptr);
    EXPECT_EQ(take_lines(), (Lines{"t:1 int 5", "t:2 bang", "t:0 word"}));
    EXPECT_EQ(outlet_anything(teller->number, gensym("word"), 0, nullptr), nullptr);
    EXPECT_EQ(outlet_int(teller->bang, 5), nullptr);
    EXPECT_EQ(take_lines(), (Lines{"error: t: outlet 1 sends only \"int\", not \"word\"",
                                   "error: t: outlet 2 sends only \"bang\", not \"int\""}));
}

TEST_F(BoxPromisesTest, TheKindsOfOutletsAreSaved) {
    EXPECT_EQ(saved_member("obj-1", "outlettype"), (Json{"", "int", "bang"}));
}

// ---- flags

TEST_F(BoxPromisesTest, FlagsOfABoxAreHandedOn) {
    EXPECT_EQ(flags_of_box(&teller->box.b_ob).of_class, JBOX_COLOR | JBOX_FIXWIDTH);
    EXPECT_EQ(flags_of_box(&teller->box.b_ob).of_box, JBOX_DRAWFIRSTIN | JBOX_GROWBOTH);
    EXPECT_EQ(flags_of_box(patcher).of_box, 0) << "no box";
}

TEST_F(BoxPromisesTest, FlagsThatAreNotKnownAreRefused) {
    take_lines();
    t_class *cls = unknown_class();
    jbox_initclass(cls, JBOX_COLOR | 1);
    cls->c_flags = CLASS_FLAG_NEWDICTIONARY | 1;
    EXPECT_EQ(class_register(CLASS_BOX, cls), MAX_ERR_GENERIC);
    EXPECT_EQ(attr_offset_new("a", gensym("long"), 1, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(attr_offset_array_new("a", gensym("long"), 2, 1, nullptr, nullptr, 0, 0), nullptr);
    EXPECT_EQ(class_attr_addattr_parse(teller_class, "plain", "save", gensym("long"), 1, "1"), MAX_ERR_GENERIC);
    const char *const reason = ": flags that this host does not have";
    EXPECT_EQ(
        take_lines(),
        (Lines{std::string("misuse: jbox_initclass") + reason, std::string("misuse: class_register") + reason,
               std::string("misuse: attr_offset_new") + reason, std::string("misuse: attr_offset_array_new") + reason,
               std::string("misuse: class_attr_addattr_parse") + reason}));
}

TEST_F(BoxPromisesTest, ABoxWithFlagsThatAreNotKnownIsNotBuilt) {
    auto *x = static_cast<Teller *>(object_alloc(teller_class));
    EXPECT_EQ(jbox_new(&x->box, 8, 0, nullptr), MAX_ERR_GENERIC);
    EXPECT_EQ(take_lines(), (Lines{"misuse: jbox_new: flags that this host does not have"}));
    EXPECT_EQ(jbox_new(&x->box, 0, 0, nullptr), MAX_ERR_NONE);
    object_free(x);
}

TEST_F(BoxPromisesTest, ADictionaryAndDefaultsAreForClassesThatAskForThem) {
    EXPECT_EQ(teller->painted, 3);
    teller_class->c_flags = 0;
    t_object *made = box("u", "teller @plain 5");
    teller_class->c_flags = CLASS_FLAG_NEWDICTIONARY;
    EXPECT_EQ(reinterpret_cast<Teller *>(made)->plain, 0);
    EXPECT_EQ(reinterpret_cast<Teller *>(made)->painted, 0);
    EXPECT_EQ(named("u"), made) << "the name is the host's, for every class";
}

// ---- notifications

TEST_F(BoxPromisesTest, AChangeOfAPaintedAttributePaintsTheBox) {
    FrontEnd front = front_end();
    long painted = 0;
    front.repaint = [&](t_object *) { ++painted; };
    start_host(front);
    sent("t", "plain 5");
    EXPECT_EQ(painted, 0);
    sent("t", "painted 5");
    EXPECT_EQ(painted, 1);
}

TEST_F(BoxPromisesTest, NotificationsAreTracedWithTheirResult) {
    trace_calls(trace_notify);
    sent("t", "plain 5");
    EXPECT_EQ(teller->result, MAX_ERR_NONE);
    EXPECT_EQ(jbox_notify(&teller->box, gensym("t"), gensym("something"), teller, nullptr), MAX_ERR_GENERIC);
    EXPECT_EQ(jbox_notify(nullptr, gensym("t"), gensym("attr_modified"), teller, nullptr), MAX_ERR_INVALID_PTR);
    EXPECT_EQ(take_lines(), (Lines{"trace: jbox_notify t something -> -1", "misuse: jbox_notify: not a living box",
                                   "trace: jbox_notify t attr_modified -> -2"}));
    EXPECT_EQ(sent("t", "plain 6"), (Lines{"trace: jbox_notify t attr_modified -> 0"}));
}

TEST_F(BoxPromisesTest, NotificationsOfTheSchedulerThreadComeOnTheMainThread) {
    trace_calls(trace_notify | trace_queue);
    send_on_scheduler(&teller->box.b_ob, parse_atoms("plain 5"));
    wait_until_delivered();
    EXPECT_EQ(teller->plain, 5);
    EXPECT_EQ(take_lines(), no_lines);
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{"trace: jbox_notify t attr_modified -> 0"}));
    send_on_scheduler(&teller->box.b_ob, parse_atoms("plain 6"));
    wait_until_delivered();
    free_box(&teller->box.b_ob);
    drain_queue();
    EXPECT_EQ(take_lines(), no_lines);
}
