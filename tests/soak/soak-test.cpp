// A host and its boxes for tests that go on for long.
#include "soak/soak-test.h"

#include <cstdlib>

#include "ext.h"

using namespace maxhost;

void SoakTest::SetUp() {
    HostTest::SetUp();
    stop_host();
    FrontEnd front = front_end();
    front.output = [this](const std::string &, long outlet, t_symbol *, std::span<const t_atom> atoms) {
        if (asking && outlet < 2)
            (outlet == 0 ? current : count) = static_cast<long>(atom_getlong(atoms.data()));
    };
    start_host(front);
    std::string reason;
    ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
    patcher = new_patcher();
}

void SoakTest::TearDown() {
    free_patcher(patcher);
    EXPECT_EQ(take_lines(), Lines()) << "there is nothing to complain about";
    HostTest::TearDown();
}

t_object *SoakTest::new_list() {
    const OwnedDictionary dictionary = empty_dictionary();
    t_atom embed;
    atom_setlong(&embed, 1);
    dictionary_appendatoms(dictionary.get(), gensym("embed"), 1, &embed);
    return new_box(patcher, gensym("vrk.tessaroll"), dictionary.get());
}

void SoakTest::expect_agreement(t_object *box) {
    wait_until_delivered();
    drain_queue();
    count = current = 0;
    asking = true;
    send(box, "bang"); // tells nothing without a current row
    const long told = count;
    send(box, "length");
    asking = false;
    ViewState state{};
    ASSERT_TRUE(data_view_state(box, state));
    ASSERT_EQ(state.rows, count);
    ASSERT_TRUE(told == 0 || (told == count && 1 <= current && current <= count)) << current << " of " << told;
    ASSERT_TRUE(0 <= state.selected && state.selected <= count) << state.selected << " of " << count;
}

long SoakTest::turns_or(long usual) {
    const char *wanted = std::getenv("VRK_SOAK");
    return wanted ? std::atol(wanted) : usual;
}

void send(t_object *box, const std::string &text) { send_message(box, parse_atoms(text)); }
void schedule(t_object *box, const std::string &text) { send_on_scheduler(box, parse_atoms(text)); }

std::string resource_file(const std::vector<std::string> &texts) {
    std::string file = "<?xml version=\"1.0\"?>\n<resourcefile><resource>";
    for (size_t i = 0; i < texts.size(); ++i)
        file += "<string number=\"" + std::to_string(i) + "\">" + texts[i] + "</string>";
    return file + "</resource></resourcefile>\n";
}
