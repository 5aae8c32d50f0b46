// The host's kernel: memory, objects, classes, attributes, outlets, queue, critical region; and its door.
#include <cstddef>

#include "ext.h"
#include "ext_critical.h"
#include "jdataview.h"
#include "support/host-test.h"

using namespace maxhost;

namespace {

// A box class of the tests: it writes down what reaches it through its outlets.
struct Probe {
    t_jbox box;
    void *left;
    void *right;
    long number;
    char flag;
    double color[4];
    t_symbol *words[2];
    long notified;
};

t_class *probe_class;

void probe_report(Probe *x, const char *text) { outlet_anything(x->left, gensym(text), 0, nullptr); }
void probe_bang(Probe *x) { probe_report(x, "bang"); }
void probe_int(Probe *x, t_atom_long n) { outlet_int(x->right, n); }
void probe_pair(Probe *x, t_atom_long n, t_symbol *s) {
    outlet_int(x->right, n);
    outlet_anything(x->left, s, 0, nullptr);
}
void probe_any(Probe *x, t_symbol *s, long argc, t_atom *argv) {
    outlet_anything(x->left, s, static_cast<short>(argc), argv);
}
void probe_private(Probe *x) { probe_report(x, "private"); }
void probe_hold(Probe *) { critical_enter(0); }
void probe_echo(Probe *x, t_symbol *s, short argc, t_atom *argv) { outlet_anything(x->left, s, argc, argv); }
void probe_later(Probe *x, t_symbol *s, long argc, t_atom *argv) {
    defer_low(x, (method)probe_echo, s, static_cast<short>(argc), argv);
}
t_max_err probe_notify(Probe *x, t_symbol *, t_symbol *msg, void *sender, void *data) {
    EXPECT_EQ(msg, gensym("attr_modified"));
    EXPECT_EQ(sender, x);
    EXPECT_NE(object_method(data, gensym("getname")), nullptr);
    ++x->notified;
    return MAX_ERR_NONE;
}

void *probe_new(t_symbol *, long argc, t_atom *argv) {
    auto *x = static_cast<Probe *>(object_alloc(probe_class));
    if (!x)
        return nullptr;
    jbox_new(&x->box, 0, argc, argv);
    x->box.b_firstin = &x->box.b_ob;
    x->right = intout(x);
    x->left = outlet_new(x, nullptr);
    attr_dictionary_process(x, object_dictionaryarg(argc, argv));
    jbox_ready(&x->box);
    return x;
}

void probe_free(Probe *x) { jbox_free(&x->box); }

void register_probe() {
    probe_class = class_new("probe", (method)probe_new, (method)probe_free, sizeof(Probe), nullptr, A_GIMME, 0);
    probe_class->c_flags |= CLASS_FLAG_NEWDICTIONARY;
    jbox_initclass(probe_class, JBOX_FONTATTR);
    class_addmethod(probe_class, (method)probe_bang, "bang", 0);
    class_addmethod(probe_class, (method)probe_int, "int", A_LONG, 0);
    class_addmethod(probe_class, (method)probe_pair, "pair", A_LONG, A_SYM, 0);
    class_addmethod(probe_class, (method)probe_any, "any", A_GIMME, 0);
    class_addmethod(probe_class, (method)probe_later, "later", A_GIMME, 0);
    class_addmethod(probe_class, (method)probe_hold, "hold", 0);
    class_addmethod(probe_class, (method)probe_private, "private", A_CANT, 0);
    class_addmethod(probe_class, (method)probe_notify, "notify", A_CANT, 0);
    class_addattr(probe_class, attr_offset_new("number", gensym("long"), 0, nullptr, nullptr, offsetof(Probe, number)));
    class_addattr(probe_class, attr_offset_new("flag", gensym("char"), 0, nullptr, nullptr, offsetof(Probe, flag)));
    class_addattr(probe_class,
                  attr_offset_array_new("color", gensym("float64"), 4, 0, nullptr, nullptr, 0, offsetof(Probe, color)));
    class_addattr(probe_class,
                  attr_offset_array_new("words", gensym("symbol"), 2, 0, nullptr, nullptr, 0, offsetof(Probe, words)));
    class_attr_addattr_parse(probe_class, "number", "default", gensym("long"), 0, "7");
    class_attr_addattr_parse(probe_class, "number", "save", gensym("long"), 0, "1");
    class_attr_addattr_parse(probe_class, "words", "default", gensym("symbol"), 0, "one 2");
    object_method(class_attr_get(probe_class, gensym("color")), gensym("setmethod"), gensym("set"),
                  jgraphics_attr_setrgba);
    class_register(CLASS_BOX, probe_class);
    alias(const_cast<char *>("other-probe"));
}

class KernelTest : public HostTest {
  protected:
    static void SetUpTestSuite() {
        if (!probe_class)
            register_probe();
    }
    void SetUp() override {
        HostTest::SetUp();
        patcher = new_patcher();
    }
    void TearDown() override {
        free_patcher(patcher);
        HostTest::TearDown();
    }

    Probe *make(const char *name, const char *class_name = "probe") {
        const OwnedDictionary dictionary = empty_dictionary();
        t_atom varname;
        atom_setsym(&varname, gensym(name));
        dictionary_appendatoms(dictionary.get(), gensym("varname"), 1, &varname);
        return reinterpret_cast<Probe *>(new_box(patcher, gensym(class_name), dictionary.get()));
    }

    static void send(Probe *probe, const char *text) { send_message(&probe->box.b_ob, parse_atoms(text)); }

    t_object *patcher = nullptr;
};

} // namespace

TEST_F(KernelTest, MessagesAreDeliveredByTheirCodes) {
    Probe *a = make("a");
    send(a, "bang");
    send(a, "3");
    send(a, "3.9");
    send(a, "pair 4 four extra");
    send(a, "pair 4.9 four");
    send(a, "any 1 two 3.");
    EXPECT_EQ(take_lines(), (Lines{"a:0 bang", "a:1 int 3", "a:1 int 3", "a:1 int 4", "a:0 four", "a:1 int 4",
                                   "a:0 four", "a:0 any 1 two 3."}));
}

TEST_F(KernelTest, WhatDoesNotFitIsTold) {
    Probe *a = make("a");
    send(a, "pair 4");
    send(a, "pair four 4");
    send(a, "unknown 1");
    send(a, "private");
    send(a, "1 2 3");
    EXPECT_EQ(take_lines(),
              (Lines{"error: a: bad arguments for message \"pair\"", "error: a: bad arguments for message \"pair\"",
                     "error: a: doesn't understand \"unknown\"", "error: a: doesn't understand \"private\"",
                     "error: a: doesn't understand \"list\""}));
}

TEST_F(KernelTest, AnAliasMakesTheSameClass) { EXPECT_NE(make("a", "other-probe"), nullptr); }

TEST_F(KernelTest, ClassesCannotGrowOnceRegistered) {
    class_addmethod(probe_class, (method)probe_bang, "late", 0);
    EXPECT_EQ(take_lines(), (Lines{"misuse: class_addmethod: the class is registered already"}));
}

TEST_F(KernelTest, AttributesKeepTheirValueAndNotify) {
    Probe *a = make("a");
    EXPECT_EQ(a->number, 7) << "the declared default";
    EXPECT_EQ(a->words[1], gensym("2"));
    EXPECT_EQ(a->notified, 0) << "a box that is being made hears nothing";
    send(a, "number 9");
    send(a, "flag 300");
    EXPECT_EQ(a->number, 9);
    EXPECT_EQ(a->flag, 44);
    EXPECT_EQ(a->notified, 2);
    std::vector<t_atom> values;
    EXPECT_EQ(read_attribute(&a->box.b_ob, gensym("words"), values), 0);
    EXPECT_EQ(print_atoms(values), "one \"2\"");
    send(a, "color 0.1 0.2 0.3");
    EXPECT_EQ(take_lines(), (Lines{"a.color refused -1"}));
    send(a, "color 0.1 0.2 0.3 1");
    read_attribute(&a->box.b_ob, gensym("color"), values);
    EXPECT_EQ(print_atoms(values), "0.1 0.2 0.3 1.");
}

TEST_F(KernelTest, SavedBoxesHoldTheAttributesThatAreToBeSaved) {
    Probe *a = make("a");
    send(a, "number 9");
    const OwnedDictionary saved = saved_box(&a->box.b_ob);
    long count = 0;
    t_atom *atoms = nullptr;
    ASSERT_EQ(dictionary_getatoms(saved.get(), gensym("number"), &count, &atoms), 0);
    EXPECT_EQ(atom_getlong(atoms), 9);
    EXPECT_NE(dictionary_getatoms(saved.get(), gensym("flag"), &count, &atoms), 0);
}

TEST_F(KernelTest, SizesThatNoScreenHasAreBounded) {
    Probe *a = make("a");
    send(a, "fontsize 1e300");
    EXPECT_EQ(jbox_get_fontsize(&a->box.b_ob), 1000);
    send(a, "patching_rect 0 0 1e300 -5");
    t_rect rect;
    jbox_get_patching_rect(&a->box.b_ob, &rect);
    EXPECT_EQ(rect.width, 1e6);
    EXPECT_EQ(rect.height, 0);
}

TEST_F(KernelTest, CordsLeadOnAndEndWithTheirBox) {
    Probe *a = make("a");
    Probe *b = make("b");
    EXPECT_TRUE(connect_boxes(&a->box.b_ob, 1, &b->box.b_ob));
    EXPECT_FALSE(connect_boxes(&a->box.b_ob, 2, &b->box.b_ob));
    send(a, "5");
    EXPECT_EQ(take_lines(), (Lines{"a:1 int 5", "b:1 int 5"}));
    free_box(&b->box.b_ob);
    send(a, "5");
    EXPECT_EQ(take_lines(), (Lines{"a:1 int 5"}));
}

TEST_F(KernelTest, ACircleOfCordsEndsWithOneError) {
    Probe *a = make("a");
    connect_boxes(&a->box.b_ob, 1, &a->box.b_ob);
    connect_boxes(&a->box.b_ob, 1, &a->box.b_ob);
    send(a, "5");
    long errors = 0;
    for (const std::string &line : take_lines())
        errors += line == "error: a: stack overflow: messages go round in a circle";
    EXPECT_EQ(errors, 1);
    send(a, "bang");
    EXPECT_EQ(take_lines(), (Lines{"a:0 bang"})) << "the next event is unharmed";
}

TEST_F(KernelTest, TheQueueKeepsOrderAndCopiesAtoms) {
    Probe *a = make("a");
    send(a, "later 1 one");
    send(a, "later 2 two");
    EXPECT_EQ(take_lines(), Lines());
    drain_queue();
    EXPECT_EQ(take_lines(), (Lines{"a:0 later 1 one", "a:0 later 2 two"}));
}

TEST_F(KernelTest, TheQueueCanBeDrainedPieceByPiece) {
    Probe *a = make("a");
    send(a, "later 1");
    send(a, "later 2");
    EXPECT_FALSE(drain_queue_for(0)) << "no time, one task";
    EXPECT_EQ(take_lines(), (Lines{"a:0 later 1"}));
    EXPECT_TRUE(drain_queue_for(0));
    EXPECT_EQ(take_lines(), (Lines{"a:0 later 2"}));
    EXPECT_TRUE(drain_queue_for(0)) << "nothing to do";
}

TEST_F(KernelTest, WorkWithoutEndInPiecesIsToldOnce) {
    struct Endless {
        void *element = qelem_new(this, (method)run);
        long runs = 0;
        bool goes_on = true;
        static void run(Endless *work) {
            ++work->runs;
            if (work->goes_on)
                qelem_set(work->element);
        }
    } work;
    qelem_set(work.element);
    EXPECT_FALSE(drain_queue_for(0));
    tell_of_endless_queue();
    EXPECT_EQ(take_lines(), Lines()) << "an end may come";
    while (work.runs < 10'000'000)
        drain_queue_for(1);
    tell_of_endless_queue();
    tell_of_endless_queue();
    EXPECT_EQ(take_lines(), Lines{"error: -: the queue does not become empty: something queues itself for ever"});
    work.goes_on = false;
    EXPECT_TRUE(drain_queue_for(0));
    tell_of_endless_queue();
    EXPECT_EQ(take_lines(), Lines());
    qelem_free(work.element);
}

TEST_F(KernelTest, WhatIsQueuedForABoxGoesWithIt) {
    Probe *a = make("a");
    send(a, "later 1");
    free_box(&a->box.b_ob);
    drain_queue();
    EXPECT_EQ(take_lines(), Lines());
}

TEST_F(KernelTest, AQueueElementIsQueuedOnce) {
    long runs = 0;
    void *element = qelem_new(
        &runs, (method) + [](long *count) { ++*count; });
    qelem_set(element);
    qelem_set(element);
    drain_queue();
    EXPECT_EQ(runs, 1);
    qelem_set(element);
    qelem_free(element);
    drain_queue();
    EXPECT_EQ(runs, 1) << "freeing takes it back";
    qelem_set(element);
    EXPECT_EQ(take_lines(), (Lines{"misuse: qelem_set: not a living queue element"}));
}

TEST_F(KernelTest, TheSchedulerThreadDeliversInOrder) {
    Probe *a = make("a");
    for (long i = 0; i < 3; ++i)
        send_on_scheduler(&a->box.b_ob, parse_atoms(std::to_string(i)));
    wait_until_delivered();
    EXPECT_EQ(take_lines(), (Lines{"a:1 int 0", "a:1 int 1", "a:1 int 2"}));
}

TEST_F(KernelTest, ARegionThatIsNotLeftIsTold) {
    Probe *a = make("a");
    send(a, "hold");
    EXPECT_EQ(take_lines(),
              (Lines{"misuse: critical_enter: the critical region is still held at the end of a message"}));
    critical_exit(0);
    EXPECT_EQ(take_lines(), (Lines{"misuse: critical_exit: the critical region is not held"}));
}

TEST_F(KernelTest, ReceiversAreAskedWhetherTheyAreAlive) {
    Probe *a = make("a");
    gensym("there")->s_thing = &a->box.b_ob;
    EXPECT_TRUE(send_to_receiver(gensym("there"), parse_atoms("bang")));
    free_box(&a->box.b_ob);
    EXPECT_FALSE(send_to_receiver(gensym("there"), parse_atoms("bang")));
    gensym("there")->s_thing = nullptr;
    EXPECT_FALSE(send_to_receiver(gensym("there"), parse_atoms("bang")));
}

TEST_F(KernelTest, FreedObjectsAreRefused) {
    Probe *a = make("a");
    free_box(&a->box.b_ob);
    jbox_redraw(&a->box);
    object_method(a, gensym("bang"));
    object_free(a);
    jdataview_clear(patcher);
    jpatcher_set_dirty(nullptr, 1);
    EXPECT_EQ(take_lines(),
              (Lines{"misuse: jbox_redraw: not a living box", "misuse: object_method: not a living object",
                     "misuse: object_free: not a living object", "misuse: jdataview_clear: not a living data view",
                     "misuse: jpatcher_set_dirty: not a living patcher"}));
}

TEST_F(KernelTest, PresetsBringBackTheLastNumber) {
    Probe *a = make("a");
    EXPECT_FALSE(recall_preset(&a->box.b_ob));
    preset_int(&a->box.b_ob, 4);
    EXPECT_TRUE(recall_preset(&a->box.b_ob));
    EXPECT_EQ(take_lines(), (Lines{"a:1 int 4"}));
}

TEST_F(KernelTest, ATracedFamilyShowsItsCalls) {
    FrontEnd front = front_end();
    front.traced = trace_queue | trace_lock;
    start_host(front);
    Probe *a = make("a");
    send(a, "later 1 2 3");
    critical_enter(0);
    critical_exit(0);
    EXPECT_EQ(take_lines(), (Lines{"trace: defer_low later 3", "trace: critical_enter 0", "trace: critical_exit 0"}));
}

using MemoryTest = HostTest;

TEST_F(MemoryTest, BlocksKnowTheirExactSize) {
    for (t_ptr_size size : {0u, 1u, 7u, 4097u}) {
        t_ptr block = sysmem_newptrclear(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(sysmem_ptrsize(block), size);
        EXPECT_EQ(memory_in_use().blocks, 1u);
        sysmem_freeptr(block);
    }
    sysmem_freeptr(nullptr);
}

TEST_F(MemoryTest, TheNthAllocationFailsOnce) {
    fail_nth_allocation(2);
    t_ptr first = sysmem_newptr(1);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(sysmem_newptr(1), nullptr);
    t_ptr third = sysmem_newptr(1);
    EXPECT_NE(third, nullptr);
    sysmem_freeptr(first);
    sysmem_freeptr(third);
}

TEST_F(MemoryTest, BlocksAreReleasedOnce) {
    t_ptr block = sysmem_newptr(1);
    sysmem_freeptr(block);
    sysmem_freeptr(block);
    EXPECT_EQ(sysmem_ptrsize(block), 0u);
    EXPECT_EQ(take_lines(), (Lines{"misuse: sysmem_freeptr: not a block of this allocator, or released before",
                                   "misuse: sysmem_ptrsize: not a block of this allocator"}));
}

TEST_F(MemoryTest, AtomArraysComeFromTheAllocator) {
    long count = 0;
    t_atom *atoms = nullptr;
    char allocated = 0;
    ASSERT_EQ(atom_alloc_array(4, &count, &atoms, &allocated), 0);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(allocated, 1);
    t_atom *mine = atoms;
    EXPECT_EQ(atom_alloc(&count, &atoms, &allocated), 0);
    EXPECT_EQ(atoms, mine) << "an array that is handed in is used";
    EXPECT_EQ(allocated, 0);
    EXPECT_EQ(count, 1);
    sysmem_freeptr(atoms);
}

using TextTest = HostTest;

TEST_F(TextTest, CopiesAreBounded) {
    char to[4];
    EXPECT_STREQ(strncpy_zero(to, "abcdef", sizeof to), "abc");
    EXPECT_STREQ(strncpy_zero(to, "ab", sizeof to), "ab");
    EXPECT_STREQ(strncpy_zero(to, "ab", 1), "");
}

TEST_F(TextTest, ConsoleLinesAreCutNotFatal) {
    const std::string text(40000, 'x');
    object_post(nullptr, "%s", text.c_str());
    object_error(nullptr, "cannot count %ls", L"12");
    EXPECT_EQ(take_lines(), (Lines{"post: -: " + text.substr(0, 32767), "error: -: cannot count 12"}));
}
