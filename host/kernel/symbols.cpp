// Symbols: texts interned once and for ever. Bounded text.
#include <cstring>
#include <mutex>
#include <string_view>
#include <unordered_map>

#include "commonsyms.h"
#include "ext_proto.h"
#include "ext_strings.h"
#include "kernel/door.h"

namespace {

struct SymbolTable {
    std::mutex mutex;
    std::unordered_map<std::string_view, t_symbol *> symbols;
};

SymbolTable &symbol_table() {
    static auto &the_table = *new SymbolTable;
    return the_table;
}

t_symbol *new_symbol(std::string_view text) {
    char *name = new char[text.size() + 1];
    std::memcpy(name, text.data(), text.size());
    name[text.size()] = 0;
    return new t_symbol{name, nullptr};
}

} // namespace

t_symbol *gensym(const char *s) {
    if (!maxhost::at_door(s, "gensym", "null text"))
        s = "";
    const std::string_view text(s);
    SymbolTable &table = symbol_table();
    std::lock_guard lock(table.mutex);
    if (auto found = table.symbols.find(text); found != table.symbols.end())
        return found->second;
    t_symbol *symbol = new_symbol(text);
    table.symbols.emplace(std::string_view(symbol->s_name, text.size()), symbol);
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
