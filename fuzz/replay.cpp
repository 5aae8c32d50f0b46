// Gives a fuzz target every file of the folders and files that are named, without a fuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

static long replay(const fs::path &path) {
    long count = 0;
    if (fs::is_directory(path)) {
        for (const fs::directory_entry &entry : fs::directory_iterator(path))
            count += replay(entry.path());
        return count;
    }
    std::ifstream file(path, std::ios::binary);
    const std::string input(std::istreambuf_iterator<char>(file), {});
    std::fprintf(stderr, "%s\n", path.c_str()); // what is on the way when it ends early
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
    return 1;
}

int main(int argc, char **argv) {
    long count = 0;
    for (int i = 1; i < argc; ++i)
        count += replay(fs::absolute(argv[i]));
    std::printf("%ld inputs\n", count);
    return count > 0 ? 0 : 1;
}
