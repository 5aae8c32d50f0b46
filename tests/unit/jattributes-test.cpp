// The getters and setters for one stored value.
#include <limits>

#include "support/host-test.h"
#include "vrk.jattributes.h"

using namespace maxhost;

namespace {

using AttributesTest = HostTest;

// What a getter gives that is handed no array, as text.
template <typename Getter, typename Value> std::string given(Getter getter, Value value) {
    long count = 0;
    t_atom *atoms = nullptr;
    EXPECT_EQ(getter(value, nullptr, &count, &atoms), 0);
    const std::string text = print_atoms({atoms, static_cast<size_t>(count)});
    sysmem_freeptr(atoms);
    return text;
}

// What becomes of a field that holds `field` before, and the result.
template <typename Field> struct Outcome {
    Field field;
    t_max_err result;

    bool operator==(const Outcome &) const = default;
};

template <typename Field>
Outcome<Field> set(t_max_err (*setter)(Field *, void *, long, t_atom *), Field field, const char *atoms) {
    std::vector<t_atom> list = parse_atoms(atoms);
    const t_max_err result = setter(&field, nullptr, static_cast<long>(list.size()), list.data());
    return {field, result};
}

Outcome<std::string> set_word(const char *word, const char *atoms) {
    const Outcome<t_symbol *> outcome = set(jattributes_sym, gensym(word), atoms);
    return {outcome.field->s_name, outcome.result};
}

// A colour of 0.1 0.2 0.3 0.4, and what the atoms make of it.
Outcome<std::string> set_colour(const char *atoms) {
    std::vector<t_atom> list = parse_atoms(atoms);
    t_jrgba colour = {0.1, 0.2, 0.3, 0.4};
    const t_max_err result = jattributes_jrgba(&colour, nullptr, static_cast<long>(list.size()), list.data());
    return {given(jattributes_getjrgba, &colour), result};
}

template <typename Field> std::ostream &operator<<(std::ostream &out, const Outcome<Field> &outcome) {
    return out << testing::PrintToString(outcome.field) << " with the result " << outcome.result;
}

constexpr long most = std::numeric_limits<long>::max(), least = std::numeric_limits<long>::min();

} // namespace

// ---- getters

TEST_F(AttributesTest, EveryGetterGivesItsOwnTypeOfAtom) {
    EXPECT_EQ(given(jattributes_getlong, 5L), "5");
    EXPECT_EQ(given(jattributes_getlong, least), std::to_string(least));
    EXPECT_EQ(given(jattributes_getfloat, 5.0), "5.") << "a float, though it is whole";
    EXPECT_EQ(given(jattributes_getfloat, -1e300), "-1.e+300");
    EXPECT_EQ(given(jattributes_getsym, gensym("two words")), "\"two words\"");
    EXPECT_EQ(given(jattributes_getsym, gensym("5")), "\"5\"") << "a symbol, though it reads as a number";
    const t_jrgba colour = {0.05, 0.91, 0.91, 0.3};
    EXPECT_EQ(given(jattributes_getjrgba, &colour), "0.05 0.91 0.91 0.3");
    const t_jrgba whole = {1, 0, -2, 300};
    EXPECT_EQ(given(jattributes_getjrgba, &whole), "1. 0. -2. 300.") << "floats, and not clamped";
}

TEST_F(AttributesTest, AFieldOf16BitsIsWidenedByItsCaller) {
    const short field = -2;
    EXPECT_EQ(given(jattributes_getlong, static_cast<long>(field)), "-2");
}

TEST_F(AttributesTest, TheArrayThatAGetterIsHandedIsFilled) {
    t_atom own[6];
    long count = 6;
    t_atom *atoms = own;
    EXPECT_EQ(jattributes_getlong(7, nullptr, &count, &atoms), 0);
    EXPECT_EQ(atoms, own);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(atom_getlong(own), 7);

    const t_jrgba colour = {0.1, 0.2, 0.3, 0.4};
    count = 6;
    EXPECT_EQ(jattributes_getjrgba(&colour, nullptr, &count, &atoms), 0);
    EXPECT_EQ(atoms, own);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(print_atoms({own, 4}), "0.1 0.2 0.3 0.4");
}

TEST_F(AttributesTest, AColourNeverOverrunsAnArrayThatIsTooSmall) {
    t_atom own[3];
    long count = 3;
    t_atom *atoms = own;
    const t_jrgba colour = {0.1, 0.2, 0.3, 0.4};
    EXPECT_EQ(jattributes_getjrgba(&colour, nullptr, &count, &atoms), 0);
    EXPECT_NE(atoms, own);
    EXPECT_EQ(print_atoms({atoms, static_cast<size_t>(count)}), "0.1 0.2 0.3 0.4");
    sysmem_freeptr(atoms);
}

TEST_F(AttributesTest, AGetterWithoutMemoryGivesNothing) {
    const auto expect_nothing = [](auto getter, auto value) {
        long count = 0;
        t_atom *atoms = nullptr;
        fail_nth_allocation(1);
        EXPECT_EQ(getter(value, nullptr, &count, &atoms), MAX_ERR_OUT_OF_MEM);
        EXPECT_EQ(atoms, nullptr);
        EXPECT_EQ(count, 0);
    };
    const t_jrgba colour = {};
    expect_nothing(jattributes_getlong, 5L);
    expect_nothing(jattributes_getfloat, 5.0);
    expect_nothing(jattributes_getsym, gensym("five"));
    expect_nothing(jattributes_getjrgba, &colour);
}

// ---- setters of one value

TEST_F(AttributesTest, IntegersAreStoredWhole) {
    const struct {
        const char *atoms;
        Outcome<long> outcome;
    } cases[] = {
        {"5", {5, 0}},
        {"-5", {-5, 0}},
        {"9223372036854775807", {most, 0}},
        {"-9223372036854775808", {least, 0}},
        {"5 six 7.", {5, 0}}, // what comes after the first is ignored
        {"", {33, -2}},       // from here on the field stays
        {"2.5", {33, -2}},
        {"2.", {33, -2}},
        {"five", {33, -2}},
        {"\"5\"", {33, -2}}, // a symbol is no number, whatever it reads as
        {"five 5", {33, -2}},
    };
    for (const auto &[atoms, outcome] : cases)
        EXPECT_EQ(set(jattributes_long, 33L, atoms), outcome) << atoms;
}

TEST_F(AttributesTest, SixteenBitsAreCutAndNotClamped) {
    const struct {
        const char *atoms;
        Outcome<short> outcome;
    } cases[] = {
        {"5", {5, 0}},
        {"-1", {-1, 0}},
        {"32767", {32767, 0}},
        {"32768", {-32768, 0}},
        {"65537", {1, 0}},
        {"70000", {4464, 0}},
        {"9223372036854775807", {-1, 0}},
        {"5 six", {5, 0}},
        {"", {33, -2}},
        {"2.5", {33, -2}},
        {"five", {33, -2}},
    };
    for (const auto &[atoms, outcome] : cases)
        EXPECT_EQ(set<short>(jattributes_short, 33, atoms), outcome) << atoms;
}

TEST_F(AttributesTest, EightBitsAreCutAndNotClamped) {
    const struct {
        const char *atoms;
        Outcome<int> outcome;
    } cases[] = {
        {"1", {1, 0}},     {"-1", {-1, 0}}, {"256", {0, 0}},  {"300", {44, 0}}, {"-9223372036854775808", {0, 0}},
        {"1 two", {1, 0}}, {"", {33, -2}},  {"1.", {33, -2}}, {"on", {33, -2}},
    };
    for (const auto &[atoms, outcome] : cases) {
        const Outcome<char> set_to = set<char>(jattributes_char, 33, atoms);
        EXPECT_EQ((Outcome<int>{static_cast<signed char>(set_to.field), set_to.result}), outcome) << atoms;
    }
}

TEST_F(AttributesTest, FloatsAreStoredWhole) {
    const struct {
        const char *atoms;
        Outcome<double> outcome;
    } cases[] = {
        {"2.5", {2.5, 0}},     {"-1e300", {-1e300, 0}}, {"1e999", {std::numeric_limits<double>::infinity(), 0}},
        {"2.5 3.5", {2.5, 0}}, {"", {33, -2}},          {"2", {33, -2}}, // an integer is no float
        {"two", {33, -2}},     {"\"2.5\"", {33, -2}},
    };
    for (const auto &[atoms, outcome] : cases)
        EXPECT_EQ(set(jattributes_float, 33.0, atoms), outcome) << atoms;
}

TEST_F(AttributesTest, SymbolsAreStored) {
    const struct {
        const char *atoms;
        Outcome<std::string> outcome;
    } cases[] = {
        {"word", {"word", 0}},   {"\"two words\"", {"two words", 0}},
        {"\"5\"", {"5", 0}},     {"\"\"", {"", 0}},
        {"one two", {"one", 0}}, {"", {"before", -2}},
        {"5", {"before", -2}},   {"5. word", {"before", -2}},
    };
    for (const auto &[atoms, outcome] : cases)
        EXPECT_EQ(set_word("before", atoms), outcome) << atoms;
}

TEST_F(AttributesTest, AnObjectIsNoValue) {
    t_atom object;
    atom_setobj(&object, this);
    long whole = 1;
    short sixteen = 2;
    char eight = 3;
    double real = 4;
    t_symbol *word = gensym("five");
    EXPECT_EQ(jattributes_long(&whole, nullptr, 1, &object), -2);
    EXPECT_EQ(jattributes_short(&sixteen, nullptr, 1, &object), -2);
    EXPECT_EQ(jattributes_char(&eight, nullptr, 1, &object), -2);
    EXPECT_EQ(jattributes_float(&real, nullptr, 1, &object), -2);
    EXPECT_EQ(jattributes_sym(&word, nullptr, 1, &object), -2);
    EXPECT_EQ(whole, 1);
    EXPECT_EQ(sixteen, 2);
    EXPECT_EQ(eight, 3);
    EXPECT_EQ(real, 4);
    EXPECT_EQ(word, gensym("five"));
}

TEST_F(AttributesTest, NoAtomsNeedNoArray) {
    long whole = 1;
    t_jrgba colour = {0.1, 0.2, 0.3, 0.4};
    EXPECT_EQ(jattributes_long(&whole, nullptr, 0, nullptr), -2);
    EXPECT_EQ(jattributes_jrgba(&colour, nullptr, 0, nullptr), -2);
    EXPECT_EQ(whole, 1);
    EXPECT_EQ(colour.red, 0.1);
}

// ---- the setter of a colour

TEST_F(AttributesTest, AColourIsTakenOverAsFarAsItIsFloats) {
    const struct {
        const char *atoms;
        Outcome<std::string> outcome;
    } cases[] = {
        {"1. 0.5 0. 0.25", {"1. 0.5 0. 0.25", 0}},
        {"-1. 2. 1e300 0.", {"-1. 2. 1.e+300 0.", 0}}, // not clamped
        {"0. 0. 0. 0. 9 nine", {"0. 0. 0. 0.", 0}},    // what comes after the fourth is ignored
        {"", {"0.1 0.2 0.3 0.4", -2}},
        {"0.5", {"0.5 0.2 0.3 0.4", -2}},
        {"0.5 0.5", {"0.5 0.5 0.3 0.4", -2}},
        {"0.5 0.5 0.5", {"0.5 0.5 0.5 0.4", -2}},
        {"1 0 0 1", {"0.1 0.2 0.3 0.4", -2}}, // integers are no components
        {"0.5 1 0.5 0.5", {"0.5 0.2 0.3 0.4", -2}},
        {"0.5 0.5 red 0.5", {"0.5 0.5 0.3 0.4", -2}},
        {"0.5 0.5 0.5 1", {"0.5 0.5 0.5 0.4", -2}},
    };
    for (const auto &[atoms, outcome] : cases)
        EXPECT_EQ(set_colour(atoms), outcome) << atoms;
}
