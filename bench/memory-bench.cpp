// Peak memory.
#include "memory-bench.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

#include "files.h"
#include "lists.h"

namespace {

constexpr long most_items = 32767;

// Most memory that this process has had resident, in kilobytes. (What wait4 tells of a child counts its parent's too.)
long own_peak() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stol(line.substr(std::strlen("VmHWM:")));
    return 0;
}

long peak_of(const std::string &program, const std::string &part, const std::string &file) {
    long kilobytes = 0;
    if (std::FILE *output = popen((program + " --peak " + part + " " + file).c_str(), "r")) {
        if (std::fscanf(output, "%ld", &kilobytes) != 1)
            kilobytes = 0;
        pclose(output);
    }
    return kilobytes;
}

void read_file(const char *path) {
    BareList list;
    Holder holder("string");
    jlist_load_from_xml(list.get(), holder.get(), gensym(path));
}

} // namespace

bool run_memory_part(int argc, char **argv) {
    if (argc != 4 || std::strcmp(argv[1], "--peak") != 0)
        return false;
    const std::string part = argv[2];
    if (part == "parse")
        xml_doc(xmlReadFile(argv[3], nullptr, XML_PARSE_NOBLANKS));
    if (part == "read")
        read_file(argv[3]);
    std::printf("%ld\n", own_peak());
    return true;
}

void print_memory_ratio(const char *program) {
    const ResourceFile file(ResourceFile::Kind::text, most_items);
    const long nothing = peak_of(program, "nothing", file.path());
    const long read = peak_of(program, "read", file.path()) - nothing;
    const long parse = peak_of(program, "parse", file.path()) - nothing;
    std::printf("\nPeak memory of reading %ld items: %ld kB, of the document alone: %ld kB, ratio %.2f.\n", most_items,
                read, parse, static_cast<double>(read) / static_cast<double>(parse));
}
