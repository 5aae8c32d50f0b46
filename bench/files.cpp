// Resource files of generated items.
#include "files.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

// A PNG picture of two by one pixels in hexadecimal.
std::string picture_digits() {
    std::ifstream file(VRK_PICTURE, std::ios::binary);
    std::string digits;
    for (char byte; file.get(byte);) {
        static constexpr char hex[] = "0123456789ABCDEF";
        digits += hex[static_cast<unsigned char>(byte) >> 4];
        digits += hex[static_cast<unsigned char>(byte) & 15];
    }
    return digits;
}

std::string resource(ResourceFile::Kind kind, long number, const std::string &picture) {
    const std::string start = " number=\"" + std::to_string(number) + "\">";
    return kind == ResourceFile::Kind::text ? "<string" + start + "Item number " + std::to_string(number) + "</string>"
                                            : "<image" + start + "<![CDATA[" + picture + "]]></image>";
}

} // namespace

ResourceFile::ResourceFile(Kind kind, long count)
    : path_((std::filesystem::temp_directory_path() / "vrk-bench-XXXXXX").string()) {
    mkdtemp(path_.data());
    path_ += "/items.xml";
    const std::string picture = picture_digits();
    std::ofstream file(path_, std::ios::binary);
    file << "<?xml version=\"1.0\"?>\n<resourcefile><resource>";
    for (long i = 0; i < count; ++i)
        file << resource(kind, i, picture);
    file << "</resource></resourcefile>\n";
}

ResourceFile::~ResourceFile() { std::filesystem::remove_all(std::filesystem::path(path_).parent_path()); }
