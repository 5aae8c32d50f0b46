// Atoms as text: what is typed, and what prints.
#include <gtest/gtest.h>

#include <cmath>

#include "embed/host.h"
#include "ext_proto.h"

using namespace maxhost;

namespace {

// The messages of a text, printed: "RECEIVER<- ATOMS | ATOMS".
std::string messages(const char *text) {
    std::string out;
    for (const TypedMessage &message : parse_messages(text)) {
        out += out.empty() ? "" : " | ";
        if (message.receiver)
            out += std::string(message.receiver->s_name) + "<- ";
        out += print_atoms(message.atoms);
    }
    return out;
}

// The type of the one atom that the word reads as, and its printed form.
std::string one_word(const char *text) {
    const std::vector<t_atom> atoms = parse_atoms(text);
    if (atoms.size() != 1)
        return std::to_string(atoms.size()) + " atoms";
    const long type = atom_gettype(atoms.data());
    return (type == A_LONG ? "int " : type == A_FLOAT ? "float " : "symbol ") + print_atom(atoms[0]);
}

} // namespace

TEST(AtomText, ReadsIntegers) {
    EXPECT_EQ(one_word("12"), "int 12");
    EXPECT_EQ(one_word("-12"), "int -12");
    EXPECT_EQ(one_word("+5"), "int 5");
    EXPECT_EQ(one_word("9223372036854775807"), "int 9223372036854775807");
    EXPECT_EQ(one_word("-9223372036854775808"), "int -9223372036854775808");
}

TEST(AtomText, ReadsFloats) {
    EXPECT_EQ(one_word("1."), "float 1.");
    EXPECT_EQ(one_word(".5"), "float 0.5");
    EXPECT_EQ(one_word("1e5"), "float 100000.");
    EXPECT_EQ(one_word("-0.05"), "float -0.05");
    EXPECT_EQ(one_word("9223372036854775808"), "float 9.223372036854776e+18") << "an integer that does not fit";
}

TEST(AtomText, NumbersBeyondEveryFloatAreInfiniteAndPrintedAsSuch) {
    EXPECT_EQ(one_word("1e999"), "float 1.e999");
    EXPECT_EQ(one_word("-1e999"), "float -1.e999");
    EXPECT_EQ(one_word("1.e999"), "float 1.e999");
}

TEST(AtomText, ReadsAnythingElseAsSymbols) {
    for (const char *text : {"-", "+", ".", "1.2.3", "0x10", "12a", "1e", "e5", "nan", "inf", "--1", "'a'"})
        EXPECT_EQ(one_word(text), std::string("symbol ") + text);
}

TEST(AtomText, QuotesAndBackslashesMakeSymbols) {
    EXPECT_EQ(one_word("\"12\""), "symbol \"12\"");
    EXPECT_EQ(one_word("\\12"), "symbol \"12\"");
    EXPECT_EQ(one_word("\"\""), "symbol \"\"");
    EXPECT_EQ(one_word("\"First line\""), "symbol \"First line\"");
    EXPECT_EQ(one_word("First\\ line"), "symbol \"First line\"");
    EXPECT_EQ(one_word("\"a\\\"b\\\\c\""), "symbol \"a\\\"b\\\\c\"");
    EXPECT_EQ(one_word("\"open"), "symbol open");
    EXPECT_EQ(one_word("\"hello\""), "symbol hello");
}

TEST(AtomText, CommasAndSemicolonsSeparate) {
    EXPECT_EQ(messages("append a, bang"), "append a | bang");
    EXPECT_EQ(messages("append a,,bang,"), "append a | bang");
    EXPECT_EQ(messages("append a\\, b"), "append \"a,\" b");
    EXPECT_EQ(messages("append \"a, b\""), "append \"a, b\"");
    EXPECT_EQ(messages("1 2; there bang; here 3, 4"), "1 2 | there<- bang | here<- 3 | here<- 4");
    EXPECT_EQ(messages(";\r12 bang"), "12<- bang");
    EXPECT_EQ(messages(" \t\n"), "");
}

TEST(AtomText, PrintsControlCharacters) {
    EXPECT_EQ(print_text("a\nb\tc\rd\x01\x7f"), "a\\nb\\tc\\rd\\x01\\x7F");
    EXPECT_EQ(print_text("h\xC3\xA4"), "h\xC3\xA4") << "other bytes stay as they are";
}

TEST(AtomText, FloatsPrintShortWithAPoint) {
    EXPECT_EQ(print_float(1), "1.");
    EXPECT_EQ(print_float(0.05), "0.05");
    EXPECT_EQ(print_float(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(print_float(1e15), "1000000000000000.");
    EXPECT_EQ(print_float(1e300), "1.e+300");
    EXPECT_EQ(print_float(1e-7), "1.e-07");
    EXPECT_EQ(print_float(-0.0), "-0.");
}

TEST(AtomText, WhatPrintsReadsBack) {
    for (const char *text :
         {"a", "", "12", "1.5", "a b", "a,b", "a;b", "a\"b", "a\\b", "+5", "@embed", "\xE2\x82\xAC"}) {
        t_atom symbol;
        atom_setsym(&symbol, gensym(text));
        const std::vector<TypedMessage> read = parse_messages(print_atom(symbol));
        ASSERT_EQ(read.size(), 1u) << text;
        ASSERT_EQ(read[0].atoms.size(), 1u) << text;
        EXPECT_EQ(atom_getsym(read[0].atoms.data()), gensym(text)) << text;
    }
    for (double value : {0.0, -1.5, 1e5, 1e-300, 123456789.0, 0.1}) {
        t_atom number;
        atom_setfloat(&number, value);
        const std::vector<t_atom> read = parse_atoms(print_atom(number));
        ASSERT_EQ(read.size(), 1u);
        EXPECT_EQ(atom_gettype(read.data()), A_FLOAT);
        EXPECT_EQ(atom_getfloat(read.data()), value);
    }
}

TEST(Atoms, CoerceToNumbers) {
    t_atom atom;
    atom_setfloat(&atom, 2.9);
    EXPECT_EQ(atom_getlong(&atom), 2);
    atom_setfloat(&atom, -2.9);
    EXPECT_EQ(atom_getlong(&atom), -2);
    atom_setfloat(&atom, 1e300);
    EXPECT_EQ(atom_getlong(&atom), INTPTR_MAX);
    atom_setfloat(&atom, std::nan(""));
    EXPECT_EQ(atom_getlong(&atom), 0);
    atom_setsym(&atom, gensym("12"));
    EXPECT_EQ(atom_getlong(&atom), 12);
    EXPECT_EQ(atom_getfloat(&atom), 12.0);
    EXPECT_EQ(atom_getobj(&atom), nullptr);
    atom_setlong(&atom, 3);
    EXPECT_EQ(atom_getsym(&atom), gensym(""));
}
