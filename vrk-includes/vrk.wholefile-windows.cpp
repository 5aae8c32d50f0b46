// Files that are read or replaced as a whole, on Windows.
#include "vrk.wholefile.h"

#include <climits>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

struct handle_closer {
    void operator()(void *handle) const { CloseHandle(handle); }
};
using open_file = std::unique_ptr<void, handle_closer>; // null when it could not be opened

// Where the text goes.
struct target {
    std::wstring path; // without links; empty when there is nothing that can be replaced
    bool exists;
};

} // namespace

static std::wstring wide(const char *utf8) {
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, nullptr, 0);
    std::wstring text(length > 0 ? static_cast<size_t>(length) : 1, L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, text.data(), length);
    text.pop_back(); // the terminating zero
    return text;
}

static open_file open_handle(const std::wstring &path, DWORD access, DWORD sharing, DWORD creation) {
    HANDLE file = CreateFileW(path.c_str(), access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    return open_file(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

static open_file open_to_read(const std::wstring &path) {
    return open_handle(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
}

static open_file open_to_write(const std::wstring &path, DWORD creation) {
    return open_handle(path, GENERIC_WRITE, 0, creation);
}

bool vrk_file_exists(const char *native_path) {
    try {
        return GetFileAttributesW(wide(native_path).c_str()) != INVALID_FILE_ATTRIBUTES;
    } catch (const std::exception &) { // no memory for the path
        return true;
    }
}

static char *read_file(const char *native_path, std::size_t *size) {
    const open_file file = open_to_read(wide(native_path)); // a folder cannot be opened
    LARGE_INTEGER length = {};
    if (!file || GetFileType(file.get()) != FILE_TYPE_DISK || !GetFileSizeEx(file.get(), &length) ||
        length.QuadPart > INT_MAX)
        return nullptr;
    *size = static_cast<std::size_t>(length.QuadPart);
    std::unique_ptr<char, void (*)(void *)> bytes(static_cast<char *>(std::malloc(*size + 1)), std::free);
    DWORD taken = 0;
    const bool is_whole =
        bytes && ReadFile(file.get(), bytes.get(), static_cast<DWORD>(*size), &taken, nullptr) && taken == *size;
    return is_whole ? bytes.release() : nullptr;
}

char *vrk_read_file(const char *native_path, std::size_t *size) {
    try {
        return read_file(native_path, size);
    } catch (const std::exception &) { // no memory for the path
        return nullptr;
    }
}

// The path of an open file, with its links followed; empty when it cannot be had.
static std::wstring final_path(HANDLE file) {
    const DWORD size = GetFinalPathNameByHandleW(file, nullptr, 0, FILE_NAME_NORMALIZED);
    std::wstring path(size, L'\0');
    path.resize(size ? GetFinalPathNameByHandleW(file, path.data(), size, FILE_NAME_NORMALIZED) : 0);
    return path;
}

// A console or a device would be waited for, or lose the text.
static target find_target(const std::wstring &path) {
    const open_file file = open_to_write(path, OPEN_EXISTING);
    if (!file)
        return {GetLastError() == ERROR_FILE_NOT_FOUND ? path : L"", false};
    return {GetFileType(file.get()) == FILE_TYPE_DISK ? final_path(file.get()) : L"", true};
}

// A new empty file beside another, under a name that nobody has and that is put into `name`. Null when none can be
// made.
static std::FILE *new_file_beside(const std::wstring &path, std::wstring &name) {
    const std::wstring stem = path + L".vrk-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = stem + std::to_wstring(attempt);
        if (open_to_write(name, CREATE_NEW))
            return _wfopen(name.c_str(), L"wb");
        if (GetLastError() != ERROR_FILE_EXISTS)
            break;
    }
    return nullptr;
}

static bool put_in_place(const std::wstring &beside, const target &place) {
    if (place.exists)
        return ReplaceFileW(place.path.c_str(), beside.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                            nullptr);
    return MoveFileExW(beside.c_str(), place.path.c_str(), 0);
}

static int replace_file(const char *native_path, whole_file_writer write, void *what) {
    const target place = find_target(wide(native_path));
    std::wstring beside;
    std::FILE *file = place.path.empty() ? nullptr : new_file_beside(place.path, beside);
    if (!file)
        return -1;
    const int size = write(file, what);
    if (size >= 0 && put_in_place(beside, place))
        return size;
    DeleteFileW(beside.c_str());
    return -1;
}

int vrk_replace_file(const char *native_path, whole_file_writer write, void *what) {
    try {
        return replace_file(native_path, write, what);
    } catch (const std::exception &) { // no memory for a path
        return -1;
    }
}
