// The records that a plug-in shares with its host have the sizes and places that 64-bit hosts give them: what is
// compiled against host/api has to work in any of them. That this page compiles is the test.
#include <cstddef>
#include <type_traits>

#include "ext.h"
#include "jdataview.h"

static_assert(sizeof(void *) == 8, "the numbers below are those of 64-bit hosts");

// ---- words

static_assert(sizeof(t_atom_long) == 8 && sizeof(t_atom_float) == 8 && sizeof(t_ptr_int) == 8 &&
              sizeof(t_ptr_size) == 8);
static_assert(std::is_same_v<t_max_err, t_atom_long> && std::is_signed_v<t_atom_long> && !std::is_signed_v<t_ptr_size>);
static_assert(sizeof(t_fourcc) == 4 && !std::is_signed_v<t_fourcc>);
static_assert(sizeof(t_filepath) == 2 && std::is_signed_v<t_filepath>);
static_assert(sizeof(t_bool) == 1);
static_assert(std::is_same_v<t_rowref, void *> && std::is_same_v<t_ptr, char *>);

// ---- symbol: text, then what is bound

static_assert(offsetof(t_symbol, s_name) == 0 && offsetof(t_symbol, s_thing) == 8 && sizeof(t_symbol) == 16);

// ---- atom: 16 bits of type, then one word

static_assert(std::is_same_v<decltype(t_atom::a_type), short>);
static_assert(offsetof(t_atom, a_type) == 0 && offsetof(t_atom, a_w) == 8 && sizeof(t_atom) == 16);
static_assert(sizeof(union word) == 8);

// ---- object: four words

static_assert(offsetof(t_object, o_messlist) == 0 && offsetof(t_object, o_magic) == 8);
static_assert(offsetof(t_object, o_inlet) == 16 && offsetof(t_object, o_outlet) == 24 && sizeof(t_object) == 32);

// ---- rectangle and colour: four doubles, passed by value

static_assert(offsetof(t_rect, x) == 0 && offsetof(t_rect, y) == 8 && offsetof(t_rect, width) == 16);
static_assert(offsetof(t_rect, height) == 24 && sizeof(t_rect) == 32);
static_assert(offsetof(t_jrgba, red) == 0 && offsetof(t_jrgba, green) == 8 && offsetof(t_jrgba, blue) == 16);
static_assert(offsetof(t_jrgba, alpha) == 24 && sizeof(t_jrgba) == 32);

// ---- box, up to the one field that is set

static_assert(offsetof(t_jbox, b_ob) == 0 && offsetof(t_jbox, obex) == 32 && offsetof(t_jbox, b_patcher) == 40);
static_assert(offsetof(t_jbox, b_patching_rect) == 48 && offsetof(t_jbox, b_presentation_rect) == 80);
static_assert(offsetof(t_jbox, b_name) == 112 && offsetof(t_jbox, b_id) == 120 && offsetof(t_jbox, b_firstin) == 128);

// ---- class: only its flags are touched

static_assert(std::is_same_v<decltype(t_class::c_flags), long>);

// ---- column: one byte for each flag, in this order; where in the record they begin is the SDK's to know

constexpr size_t column_flags = offsetof(t_jcolumn, c_autosize);
static_assert(column_flags >= sizeof(t_object) && std::is_same_v<decltype(t_jcolumn::c_selectable), char>);
static_assert(offsetof(t_jcolumn, c_alignment) == column_flags + 1 &&
              offsetof(t_jcolumn, c_separator) == column_flags + 2);
static_assert(offsetof(t_jcolumn, c_button) == column_flags + 3 &&
              offsetof(t_jcolumn, c_overridesort) == column_flags + 4);
static_assert(offsetof(t_jcolumn, c_editable) == column_flags + 5 &&
              offsetof(t_jcolumn, c_selectable) == column_flags + 6);
