// Resource files through the box's "read": what was read and written is read again as it was.
#include <algorithm>

#include "fuzz.h"
#include "vrk.jxml-bounds.h"

static std::vector<std::string> items(fuzz::Host &host, t_object *list) {
    host.take_lines();
    host.send(list, "length, dump");
    return host.take_lines();
}

// Whether the list was written to a file and read again, as far as its items can be held by a file.
static bool write_and_read(fuzz::Host &host, t_object *list, const std::string &file) {
    host.take_lines();
    host.send(list, "write " + file);
    host.send(list, "read " + file);
    const std::vector<std::string> lines = host.take_lines();
    return std::none_of(lines.begin(), lines.end(), [](const std::string &line) { return line.starts_with("error"); });
}

static bool is_well_formed(std::string_view text) {
    return xml_doc(xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NONET)) !=
           nullptr;
}

// What is cut off before libxml2 sees it belongs to no document. Quoted names of files may hold tags, but do not.
static void expect_nothing_is_cut(std::string_view input) {
    const quiet_libxml quiet;
    std::string_view seen = input;
    if (!jxml_bounds_check(&seen).refusal.format && input.find("SYSTEM") == input.npos && input.find("PUBLIC") == input.npos)
        fuzz::expect(is_well_formed(seen) == is_well_formed(input), "a document is cut");
}

FUZZ_TARGET(input) {
    expect_nothing_is_cut(input);
    fuzz::Host host;
    fuzz::write_file("given.xml", input);
    t_object *patcher = maxhost::new_patcher();
    t_object *list = host.box(patcher, "vrk.tessaroll");
    host.send(list, "append kept");
    host.send(list, "read given.xml");
    maxhost::ViewState view{};
    maxhost::data_view_state(list, view);
    host.take_lines();
    host.send(list, "length");
    fuzz::expect(host.take_lines().back() == "vrk.tessaroll:1 " + std::to_string(view.rows) || view.rows == 0,
                 "the view has another number of rows");
    if (write_and_read(host, list, "first.xml")) { // bytes have become texts, and texts are trimmed
        const std::vector<std::string> before = items(host, list);
        if (write_and_read(host, list, "second.xml"))
            fuzz::expect(items(host, list) == before, "the items are others when they are read again");
    }
    maxhost::free_patcher(patcher);
}
