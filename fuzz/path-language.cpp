// Paths: the index answers what XPath answers, whatever was changed in between.
#include "fuzz.h"

using namespace maxhost;

static void expect_agreement(t_jxmlfile *holder, const std::string &path) {
    const XmlSelection expected = selected_by_xpath(holder, parse_atoms(path));
    fuzz::expect(selected_by_holder(holder, parse_atoms(path)) == expected, "XPath gives something else: " + path);
}

FUZZ_TARGET(input) {
    fuzz::Host host;
    fuzz::Bytes bytes(input);
    XmlGenerator generator([&bytes] { return bytes.number(); });
    fuzz::write_file("given.xml", "<?xml version='1.0'?>" + generator.document());
    const std::unique_ptr<t_jxmlfile, Releaser<jxmlfile_free>> holder(jxmlfile_new(nullptr));
    jxmlfile_load(holder.get(), "given.xml", 0);
    while (!bytes.is_over()) {
        const std::string path = generator.path(), typed = bytes.text(24);
        change_nodes(holder.get(), generator, path);
        for (const char *asked : {path.c_str(), typed.c_str(), "r a b attr n 5", "r b attr n 5 a attr m 5"})
            expect_agreement(holder.get(), asked);
    }
}
