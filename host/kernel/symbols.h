// The symbol table's books. Symbols themselves are asked for with gensym, and stay for ever.
#pragma once

#include <cstddef>

namespace maxhost {

// How many symbols there are. Any thread.
size_t symbols_alive();

} // namespace maxhost
