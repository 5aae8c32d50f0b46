// What the list box hands to the host and gets back: flags, first inlet, kinds of outlets, notifications.
#include "ext.h"
#include "jpatcher_api.h"
#include "kernel/classes.h"
#include "support/tessaroll-test.h"

using namespace maxhost;

TEST_F(TessarollTest, TheBoxAsksForWhatItIsDrawnAndChangedWith) {
    const BoxFlags flags = flags_of_box(make());
    EXPECT_EQ(flags.of_class, 0xc2000) << "a colour, a font and a fixed width";
    EXPECT_EQ(flags.of_box, 71) << "no frame, the first inlet drawn after the list, width and height of their own";
}

TEST_F(TessarollTest, TheClassTakesADictionary) { EXPECT_EQ(class_of(make()).c_flags, 4); }

TEST_F(TessarollTest, TheFirstInletIsTheBox) {
    t_object *box = make();
    EXPECT_EQ(reinterpret_cast<t_jbox *>(box)->b_firstin, box);
}

TEST_F(TessarollTest, TwoOutletsAreForIntegersAndOneForAnything) {
    make();
    std::string reason;
    const std::string file = folder() + "/saved.maxpat";
    ASSERT_TRUE(save_patcher(patcher, file, reason)) << reason;
    EXPECT_NE(read_file(file).find("\"outlettype\": [ \"int\", \"int\", \"\" ]"), std::string::npos) << read_file(file);
}

TEST_F(TessarollTest, NotificationsAreHandedOnAndTheirResultBack) {
    t_object *box = make();
    trace_calls(trace_notify);
    set(box, "cellh", "5");
    EXPECT_EQ(take_lines(), (Lines{"trace: jbox_notify obj-1 attr_modified -> 0"}));
    const auto notify = [&](const char *message, void *data) {
        return static_cast<long>(
            reinterpret_cast<t_ptr_int>(object_method(box, gensym("notify"), gensym("x"), gensym(message), box, data)));
    };
    EXPECT_EQ(notify("something", nullptr), MAX_ERR_GENERIC);
    EXPECT_EQ(take_lines(), (Lines{"trace: jbox_notify x something -> -1"}));
}

TEST_F(TessarollTest, AFontOfTheSchedulerThreadReachesTheViewOnTheMainThread) {
    t_object *box = make();
    const double before = view(box).font_size;
    send_on_scheduler(box, parse_atoms("fontsize 33."));
    wait_until_delivered();
    EXPECT_EQ(view(box).font_size, before);
    drain_queue();
    EXPECT_EQ(view(box).font_size, 33);
}
