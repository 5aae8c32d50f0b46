// Symbols: texts interned once and for ever. Bounded text.
#include <cstring>
#include <functional>
#include <mutex>
#include <new>
#include <string_view>
#include <unordered_set>

#include "commonsyms.h"
#include "ext_proto.h"
#include "ext_strings.h"
#include "kernel/door.h"

namespace {

// Symbols are found by their text, without a copy of it.
struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
    size_t operator()(const t_symbol *symbol) const { return (*this)(std::string_view(symbol->s_name)); }
};

struct TextEqual {
    using is_transparent = void;
    static std::string_view text(std::string_view text) { return text; }
    static std::string_view text(const t_symbol *symbol) { return symbol->s_name; }
    bool operator()(const auto &a, const auto &b) const { return text(a) == text(b); }
};

struct SymbolTable {
    std::mutex mutex;
    std::unordered_set<t_symbol *, TextHash, TextEqual> symbols;
};

SymbolTable &symbol_table() {
    static auto &the_table = *new SymbolTable;
    return the_table;
}

// A symbol with its text behind it in one block: there may be very many of them.
t_symbol *new_symbol(std::string_view text) {
    char *block = static_cast<char *>(operator new(sizeof(t_symbol) + text.size() + 1));
    char *name = block + sizeof(t_symbol);
    std::memcpy(name, text.data(), text.size());
    name[text.size()] = 0;
    return new (block) t_symbol{name, nullptr};
}

} // namespace

t_symbol *gensym(const char *s) {
    if (!maxhost::at_door(s, "gensym", "null text"))
        s = "";
    const std::string_view text(s);
    SymbolTable &table = symbol_table();
    std::lock_guard lock(table.mutex);
    if (auto found = table.symbols.find(text); found != table.symbols.end())
        return *found;
    t_symbol *symbol = new_symbol(text);
    table.symbols.insert(symbol);
    return symbol;
}

t_common_symbols_table *_common_symbols = nullptr;

void common_symbols_init(void) {
    static t_common_symbols_table table{gensym("attr_modified"), gensym("fontname"), gensym("fontsize"), gensym("get"),
                                        gensym("getname"),       gensym("gettype"),  gensym(""),         gensym("set"),
                                        gensym("setmethod")};
    _common_symbols = &table;
}

char *strncpy_zero(char *dst, const char *src, long size) {
    if (!maxhost::at_door(dst && src && size > 0, "strncpy_zero", "no text or no room"))
        return dst;
    const size_t length = strnlen(src, static_cast<size_t>(size) - 1);
    std::memmove(dst, src, length);
    dst[length] = 0;
    return dst;
}
