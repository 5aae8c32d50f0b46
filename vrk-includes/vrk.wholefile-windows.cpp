// Files that are read or replaced as a whole, on Windows.
#include "vrk.wholefile.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

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

// Where the content goes.
struct target {
    std::wstring path; // without links
    bool exists = false;
    bool is_replaceable = true; // by another file that is renamed
};

// A new file beside another, which is removed again unless it was put in place. While it is written nobody else can
// open or remove it.
struct beside_file {
    std::wstring path; // empty once it is in place
    open_file file;

    ~beside_file() {
        file.reset();
        if (!path.empty())
            DeleteFileW(path.c_str());
    }
};

} // namespace

static std::wstring wide(const char *utf8) {
    const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, nullptr, 0);
    std::wstring text(length > 0 ? static_cast<size_t>(length) : 1, L'\0');
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, text.data(), length);
    text.pop_back(); // the terminating zero
    return text;
}

static open_file open_handle(const std::wstring &path, DWORD access, DWORD sharing, DWORD creation,
                             DWORD attributes = FILE_ATTRIBUTE_NORMAL) {
    HANDLE file = CreateFileW(path.c_str(), access, sharing, nullptr, creation, attributes, nullptr);
    return open_file(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

static open_file open_to_read(const std::wstring &path) {
    return open_handle(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
}

static open_file open_to_write(const std::wstring &path) { return open_handle(path, GENERIC_WRITE, 0, OPEN_EXISTING); }

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

// ---- writing. Functions that give an int give 0, or the error number of what failed.

static int error_of(DWORD code) {
    const std::error_condition condition = std::system_category().default_error_condition(static_cast<int>(code));
    return condition.category() == std::generic_category() && condition.value() ? condition.value() : EIO;
}

static int last_error() { return error_of(GetLastError()); }

static int find_target(const std::wstring &path, target &place) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_DIRECTORY)
        return EISDIR;
    const open_file file = open_to_write(path);
    place.path = path;
    place.exists = file != nullptr;
    if (!file)
        return GetLastError() == ERROR_FILE_NOT_FOUND ? 0 : last_error();
    BY_HANDLE_FILE_INFORMATION about = {};
    if (GetFileType(file.get()) != FILE_TYPE_DISK) // a console or a device would be waited for, or lose the text
        return ENOTSUP;
    if (!GetFileInformationByHandle(file.get(), &about))
        return last_error();
    place.is_replaceable = about.nNumberOfLinks == 1;
    const std::wstring final = final_path(file.get());
    if (!final.empty())
        place.path = final;
    return 0;
}

static int write_bytes(HANDLE file, std::string_view bytes) {
    while (!bytes.empty()) {
        constexpr size_t piece = 1 << 24; // bytes
        DWORD now = 0;
        if (!WriteFile(file, bytes.data(), static_cast<DWORD>(std::min(bytes.size(), piece)), &now, nullptr))
            return last_error();
        bytes.remove_prefix(now);
    }
    return 0;
}

static int force_to_disk(HANDLE file) { return FlushFileBuffers(file) ? 0 : last_error(); }

static int go_to(HANDLE file, LONGLONG place) {
    LARGE_INTEGER there = {};
    there.QuadPart = place;
    return SetFilePointerEx(file, there, nullptr, FILE_BEGIN) ? 0 : last_error();
}

static int cut(HANDLE file, LONGLONG size) {
    const int error = go_to(file, size);
    return !error && !SetEndOfFile(file) ? last_error() : error;
}

static int write_bytes_at(HANDLE file, std::string_view bytes, LONGLONG place) {
    const int error = go_to(file, place);
    return error ? error : write_bytes(file, bytes);
}

// What is longer than before is written first, and taken away again when there is no room for it.
static int write_in_place(const target &place, std::string_view bytes) {
    const open_file file = open_to_write(place.path);
    LARGE_INTEGER before = {};
    if (!file || !GetFileSizeEx(file.get(), &before))
        return last_error();
    const size_t kept = std::min(static_cast<size_t>(before.QuadPart), bytes.size());
    int error = write_bytes_at(file.get(), bytes.substr(kept), before.QuadPart);
    if (!error)
        error = force_to_disk(file.get());
    if (error) {
        cut(file.get(), before.QuadPart);
        return error;
    }
    error = write_bytes_at(file.get(), bytes.substr(0, kept), 0);
    if (!error)
        error = cut(file.get(), static_cast<LONGLONG>(bytes.size()));
    return error ? error : force_to_disk(file.get());
}

// What the paths of files beside another begin with. Long names are cut.
static std::wstring stem_beside(const std::wstring &path) {
    constexpr size_t longest = 64;
    const size_t name = path.find_last_of(L"\\/") + 1;
    return path.substr(0, name) + L"." + path.substr(name, longest) + L".vrk-";
}

// Removes what writers that are gone have left behind: what somebody writes cannot be removed.
static void remove_strays(const std::wstring &stem) {
    const std::wstring folder = stem.substr(0, stem.find_last_of(L"\\/") + 1);
    WIN32_FIND_DATAW found = {};
    HANDLE search = FindFirstFileW((stem + L"*-*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return;
    do {
        DeleteFileW((folder + found.cFileName).c_str());
    } while (FindNextFileW(search, &found));
    FindClose(search);
}

// Makes a hidden file under a name that nobody has.
static int make_beside(const std::wstring &stem, beside_file &beside) {
    for (int number = 0; number < 100; ++number) {
        std::wstring path = stem + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(number);
        beside.file = open_handle(path, GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_HIDDEN);
        if (!beside.file && GetLastError() != ERROR_FILE_EXISTS)
            return last_error();
        if (beside.file) {
            beside.path = std::move(path);
            return 0;
        }
    }
    return EEXIST;
}

static bool move_to(const std::wstring &from, const std::wstring &to) {
    SetFileAttributesW(from.c_str(), FILE_ATTRIBUTE_NORMAL); // no longer hidden
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH);
}

// The system keeps the attributes, the access list and the streams of the file that is replaced.
static int put_in_place(const target &place, beside_file &beside) {
    beside.file.reset();
    bool is_there = false;
    if (place.exists)
        is_there = ReplaceFileW(place.path.c_str(), beside.path.c_str(), nullptr, 0, nullptr, nullptr);
    DWORD code = GetLastError();
    // It may fail after the old file is gone: then nothing but the new one is left.
    if (!is_there && GetFileAttributesW(place.path.c_str()) == INVALID_FILE_ATTRIBUTES) {
        is_there = move_to(beside.path, place.path);
        code = GetLastError();
    }
    if (!is_there)
        return error_of(code);
    beside.path.clear();
    return 0;
}

static int replace_by_rename(const target &place, std::string_view bytes) {
    const std::wstring stem = stem_beside(place.path);
    remove_strays(stem);
    beside_file beside;
    int error = make_beside(stem, beside);
    if (!error)
        error = write_bytes(beside.file.get(), bytes);
    if (!error)
        error = force_to_disk(beside.file.get());
    return error ? error : put_in_place(place, beside);
}

static int replace_file(const char *path, std::string_view bytes) {
    target place;
    if (const int error = find_target(wide(path), place))
        return error;
    if (!place.is_replaceable)
        return write_in_place(place, bytes);
    const int error = replace_by_rename(place, bytes);
    return place.exists && error == EACCES ? write_in_place(place, bytes) : error; // nothing may be made there
}

int vrk_replace_file(const char *native_path, const char *bytes, std::size_t size) {
    try {
        return -replace_file(native_path, {bytes, size});
    } catch (const std::exception &) { // no memory for a path
        return -ENOMEM;
    }
}

void vrk_remove_empty_file(const char *native_path) {
    try {
        const std::wstring path = wide(native_path);
        LARGE_INTEGER size = {};
        open_file file = open_to_write(path);
        const bool is_empty = file && GetFileSizeEx(file.get(), &size) && size.QuadPart == 0;
        file.reset();
        if (is_empty)
            DeleteFileW(path.c_str());
    } catch (const std::exception &) { // no memory for the path: the file stays
    }
}
