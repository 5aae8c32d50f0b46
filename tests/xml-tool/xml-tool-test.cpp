// A test that runs vrk-xml as a person does.
#include "xml-tool/xml-tool-test.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const std::string declaration = "<?xml version=\"1.0\"?>\n";

std::map<std::string, std::string> contents_of(const fs::path &folder) {
    std::map<std::string, std::string> contents;
    for (const auto &entry : fs::directory_iterator(folder))
        contents[entry.path().filename().string()] = entry.is_regular_file() ? file_text(entry.path()) : "";
    return contents;
}

} // namespace

Words words(const std::string &line, const Words &more) {
    std::istringstream stream(line);
    Words all;
    for (std::string word; stream >> word;)
        all.push_back(word);
    all.insert(all.end(), more.begin(), more.end());
    return all;
}

ScriptResult XmlToolTest::run(const Words &command, const std::string &input) {
    return script_run({VRK_XML_PROGRAM, command, input, folder.path()});
}

std::string XmlToolTest::output(const Words &command, const std::string &input) {
    const ScriptResult result = run(command, input);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(command);
    EXPECT_EQ(result.complaints, "") << testing::PrintToString(command);
    return result.transcript;
}

void XmlToolTest::expect_refused(const Words &command, const std::string &complaint) {
    SCOPED_TRACE(testing::PrintToString(command));
    const auto before = contents_of(folder.path());
    const ScriptResult result = run(command);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.transcript, "");
    EXPECT_EQ(result.complaints, complaint + "\n");
    EXPECT_EQ(contents_of(folder.path()), before);
}

void XmlToolTest::expect_wrong_usage(const Words &command, const std::string &complaint) {
    SCOPED_TRACE(testing::PrintToString(command));
    const auto before = contents_of(folder.path());
    const ScriptResult result = run(command);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.transcript, "");
    EXPECT_EQ(result.complaints.substr(0, complaint.size()), complaint);
    EXPECT_EQ(contents_of(folder.path()), before);
}

void XmlToolTest::write(const std::string &content, const std::string &name) {
    write_file(path_of(name), declaration + content);
}

std::string XmlToolTest::content(const std::string &name) const {
    std::string text = file_text(path_of(name));
    EXPECT_TRUE(text.starts_with(declaration)) << text;
    text.erase(0, declaration.size());
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::vector<std::string> XmlToolTest::files() const {
    std::vector<std::string> names;
    for (const auto &[name, text] : contents_of(folder.path()))
        names.push_back(name);
    return names;
}
