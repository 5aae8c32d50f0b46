// Texts in UTF-8 that are cut to fit: never within a character.
#pragma once

#include <cstring>
#include <string_view>

// How many bytes of a text to take when there is room for `room` of them. Any thread.
inline size_t vrk_whole_characters(std::string_view text, size_t room) {
    if (room >= text.size())
        return text.size();
    while (room > 0 && (text[room] & 0xC0) == 0x80)
        --room;
    return room;
}

// Copies as much of a text as fits a buffer of `size` bytes, 1 at least, with a terminating zero. Any thread.
inline void vrk_copy_whole_characters(char *buffer, size_t size, std::string_view text) {
    const size_t length = vrk_whole_characters(text, size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}
