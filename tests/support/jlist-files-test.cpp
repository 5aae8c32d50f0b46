// A test of a list that is read from files and written to them.
#include "support/jlist-files-test.h"

#include <algorithm>
#include <cstring>

using namespace maxhost;

void JlistFilesTest::SetUp() {
    ListTest::SetUp();
    use_holder("string");
}

void JlistFilesTest::TearDown() {
    jxmlfile_free(holder);
    ListTest::TearDown();
}

void JlistFilesTest::use_holder(const char *type) {
    jxmlfile_free(holder);
    holder = jxmlfile_new(owner);
    holder->xmlpath[1] = gensym(type);
}

short JlistFilesTest::load(const std::string &name) { return jlist_load_from_xml(list, holder, gensym(name.c_str())); }

short JlistFilesTest::load_content(const std::string &content) {
    write_file("content.xml", content);
    use_holder(holder->xmlpath[1]->s_name);
    return load("content.xml");
}

void JlistFilesTest::give_up() {
    EXPECT_EQ(load_resources("<string number=\"0\">a</string><string number=\"1\">b</string>"
                             "<string number=\"3\">d</string>"),
              0);
    take_lines();
}

std::string JlistFilesTest::file_of(const std::string &elements) {
    return "<?xml version=\"1.0\"?>\n<resourcefile><resource>" + elements + "</resource></resourcefile>\n";
}

void JlistFilesTest::write(const std::string &arguments) {
    std::vector<t_atom> atoms = parse_atoms(arguments);
    jlist_write(list, gensym("write"), static_cast<short>(atoms.size()), atoms.data());
}

std::string JlistFilesTest::written(const std::string &name) {
    write(name);
    return read_file(name);
}

std::string JlistFilesTest::unwritten() const {
    int error = 0;
    const t_symbol *name = jlist_unwritten(list, &error);
    return name ? std::string(name->s_name) + ": " + std::strerror(error) : "";
}

void JlistFilesTest::answer_save_dialog(const std::string &answer) {
    FrontEnd front = front_end();
    front.save_dialog = [this, answer](const std::string &prompt, const std::string &proposal) {
        asked.push_back(prompt + " " + proposal);
        return answer;
    };
    start_host(front);
}

bool has_error(const Lines &lines) {
    return std::any_of(lines.begin(), lines.end(), [](auto &line) { return line.starts_with("error: "); });
}
