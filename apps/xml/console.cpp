// The modules' console, on a terminal.
#include "console.h"

#include <iostream>

namespace {

long complained = 0;

void show_line(maxhost::ConsoleLine kind, const std::string &, const std::string &text) {
    if (kind == maxhost::ConsoleLine::post) {
        // Tags are posted with a line feed in front, for a console that does not break lines by itself.
        std::cout << (text.starts_with('\n') ? text.substr(1) : text) << '\n';
    } else {
        ++complained;
        std::cerr << text << '\n';
    }
}

} // namespace

maxhost::FrontEnd terminal_console() {
    maxhost::FrontEnd front;
    front.console = show_line;
    return front;
}

long complaints() { return complained; }
