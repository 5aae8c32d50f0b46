// Symbols: texts interned once and for ever. Bounded text.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "ext_proto.h"
#include "ext_strings.h"
#include "kernel/door.h"
#include "kernel/symbols.h"

namespace {

bool has_text(const t_symbol *symbol, std::string_view text) {
    return std::strncmp(symbol->s_name, text.data(), text.size()) == 0 && symbol->s_name[text.size()] == '\0';
}

// Texts that differ in their last character alone, as those of numbered items do, get neighbouring slots: asking for
// all of them then takes fewer misses of the cache.
size_t hash_of(std::string_view text) {
    if (text.empty())
        return 0;
    constexpr size_t neighbours = 15;
    const size_t hash = std::hash<std::string_view>()(text.substr(0, text.size() - 1));
    return (hash & ~neighbours) + (static_cast<unsigned char>(text.back()) & neighbours);
}

// A hash table with open addressing: finding one of very many symbols costs two misses of the cache, one for its slot
// and one for its text.
class SymbolTable {
  public:
    std::mutex mutex; // held by the caller

    // The slot of a text: the symbol's, or the empty one where it belongs.
    t_symbol *&slot(std::string_view text) {
        const size_t hash = hash_of(text);
        size_t at = hash & (slots_.size() - 1);
        while (slots_[at].symbol && (slots_[at].hash != hash || !has_text(slots_[at].symbol, text)))
            at = (at + 1) & (slots_.size() - 1);
        slots_[at].hash = hash;
        return slots_[at].symbol;
    }

    size_t count() const { return count_; }

    // Makes room for one more symbol. Slots move. Without memory the table fills up beyond three quarters; false when
    // but one slot is left, which ends every search.
    bool grow() {
        if (4 * ++count_ < 3 * slots_.size())
            return true;
        std::vector<Slot> former;
        try {
            former.resize(2 * slots_.size());
        } catch (const std::bad_alloc &) {
            return count_ < slots_.size();
        }
        former.swap(slots_);
        for (const Slot &each : former)
            if (each.symbol)
                put(each);
        return true;
    }

  private:
    struct Slot {
        size_t hash = 0;
        t_symbol *symbol = nullptr;
    };

    // All symbols differ, so that no text has to be looked at.
    void put(const Slot &slot) {
        size_t at = slot.hash & (slots_.size() - 1);
        while (slots_[at].symbol)
            at = (at + 1) & (slots_.size() - 1);
        slots_[at] = slot;
    }

    std::vector<Slot> slots_ = std::vector<Slot>(1024); // a power of two, at most three quarters full
    size_t count_ = 0;
};

SymbolTable &symbol_table() {
    static auto &the_table = *new SymbolTable;
    return the_table;
}

// Memory for the symbols that are needed when memory has run out: gensym cannot fail, callers use what it gives at
// once. A thousand texts of usual length; one that it cannot hold ends the program.
class Reserve {
  public:
    // Called while there is memory.
    void fill() {
        if (left_ >= size / 2)
            return;
        if (char *block = static_cast<char *>(operator new(size, std::nothrow))) {
            next_ = block; // the symbols in the former block stay for ever
            left_ = size;
        }
    }
    char *take(size_t wanted) {
        wanted = (wanted + alignof(t_symbol) - 1) / alignof(t_symbol) * alignof(t_symbol);
        if (wanted > left_)
            return nullptr;
        left_ -= wanted;
        return std::exchange(next_, next_ + wanted);
    }

  private:
    static constexpr size_t size = 65536;
    char *next_ = nullptr;
    size_t left_ = 0;
};

[[noreturn]] void no_memory_for(std::string_view text) {
    std::fprintf(stderr, "maxhost: gensym: out of memory for a text of %zu bytes\n", text.size());
    std::abort();
}

// A symbol with its text behind it in one block: there may be very many of them. The table's mutex is held.
t_symbol *new_symbol(std::string_view text) {
    static Reserve reserve;
    const size_t size = sizeof(t_symbol) + text.size() + 1;
    char *block = static_cast<char *>(operator new(size, std::nothrow));
    if (block)
        reserve.fill();
    else
        block = reserve.take(size);
    if (!block)
        no_memory_for(text);
    char *name = block + sizeof(t_symbol);
    std::memcpy(name, text.data(), text.size());
    name[text.size()] = 0;
    return new (block) t_symbol{name, nullptr};
}

} // namespace

size_t maxhost::symbols_alive() {
    SymbolTable &table = symbol_table();
    std::lock_guard lock(table.mutex);
    return table.count();
}

t_symbol *gensym(const char *s) {
    if (!maxhost::at_door(s, "gensym", "null text"))
        s = "";
    const std::string_view text(s);
    SymbolTable &table = symbol_table();
    std::lock_guard lock(table.mutex);
    if (t_symbol *found = table.slot(text))
        return found;
    if (!table.grow())
        no_memory_for(text);
    return table.slot(text) = new_symbol(text);
}

char *strncpy_zero(char *dst, const char *src, long size) {
    if (!maxhost::at_door(dst && src && size > 0, "strncpy_zero", "no text or no room"))
        return dst;
    const size_t length = strnlen(src, static_cast<size_t>(size) - 1);
    std::memmove(dst, src, length);
    dst[length] = 0;
    return dst;
}
