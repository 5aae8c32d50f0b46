// The lines of a script.
#include "scriptlines.h"

#include <cerrno>
#include <filesystem>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

ScriptLines::~ScriptLines() {
    if (descriptor_ > STDIN_FILENO)
        close(descriptor_);
}

bool ScriptLines::open(const std::string &file) {
    if (file == "-")
        descriptor_ = STDIN_FILENO;
    else if (std::error_code ignored; !std::filesystem::is_directory(file, ignored))
        descriptor_ = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    return descriptor_ >= 0;
}

void ScriptLines::read() {
    char piece[4096];
    const ssize_t count = ::read(descriptor_, piece, sizeof piece);
    if (count > 0)
        text_.append(piece, static_cast<size_t>(count));
    else
        is_read_ = count == 0 || errno != EINTR;
}

std::optional<std::string> ScriptLines::take() {
    const size_t end = text_.find('\n');
    if (end == text_.npos)
        return is_read_ && !text_.empty() ? std::optional(std::exchange(text_, {})) : std::nullopt;
    std::string line = text_.substr(0, end);
    text_.erase(0, end + 1);
    return line;
}
