// vrk-xml as a program: its command line, its exit status, batches, and the files that it reads and writes.
#include "xml-tool/xml-tool-test.h"

#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

using XmlProgram = XmlToolTest;

const char *const operations[] = {"path",    "new",          "get",        "getattr", "count",     "set",
                                  "setattr", "delete",       "deleteattr", "print",   "resources", "resource",
                                  "list",    "set-resource", "menu",       "batch"};

} // namespace

// ---- the command line

TEST_F(XmlProgram, HelpNamesEverything) {
    const std::string help = output("--help");
    for (const char *part : {"Usage: vrk-xml [OPTIONS] FILE OPERATION", "--save-to", "--root", "--xmlpath",
                             "Examples:", "Exit status: 0", "batch"})
        EXPECT_NE(help.find(part), help.npos) << part;
    for (const char *operation : operations)
        EXPECT_NE(help.find("\n  " + std::string(operation) + " "), help.npos) << operation;
}

TEST_F(XmlProgram, EveryOperationHasHelp) {
    for (const char *operation : operations) {
        const std::string help = output(Words{operation, "--help"});
        const bool has_file = std::string(operation) != "path" && std::string(operation) != "new";
        EXPECT_NE(help.find(std::string("Usage: vrk-xml ") + (has_file ? "FILE " : "") + operation), help.npos) << help;
    }
    EXPECT_NE(output("get --help").find("get PATH [OPTIONS]"), std::string::npos);
    EXPECT_NE(output("set --help").find("--data-file"), std::string::npos);
}

TEST_F(XmlProgram, TheExamplesOfTheHelpWork) {
    write_file(path_of("picture.png"), "picture");
    const std::string help = output("--help");
    size_t examples = 0;
    for (size_t at = help.find("\n  vrk-xml "); at != help.npos; at = help.find("\n  vrk-xml ", at + 1), ++examples)
        output(words(help.substr(at + 11, help.find('\n', at + 1) - at - 11)));
    EXPECT_EQ(examples, 8u);
    EXPECT_EQ(content("other.xml"), "<resourcefile><resource><string number=\"0\">First line</string>"
                                    "<image number=\"0\"><![CDATA[70696374757265]]></image>"
                                    "<string number=\"1\">Second line</string></resource></resourcefile>");
}

TEST_F(XmlProgram, WrongCommandLinesHaveAStatusOfTheirOwn) {
    write("<a/>");
    expect_wrong_usage("", "an operation is required");
    expect_wrong_usage("f.xml", "an operation is required");
    expect_wrong_usage("f.xml frobnicate", "frobnicate: no such operation");
    expect_wrong_usage("f.xml frobnicate a b", "frobnicate: no such operation");
    expect_wrong_usage("f.xml --frobnicate get a", "The following argument was not expected: --frobnicate");
    expect_wrong_usage("get a", "FILE: required in front of the operation");
    expect_wrong_usage("f.xml path a", "FILE: not for this operation");
    expect_wrong_usage("f.xml new g.xml", "FILE: not for this operation");
    expect_wrong_usage("new", "new: takes one FILE");
    expect_wrong_usage("new a b", "new: takes one FILE");
    expect_wrong_usage("f.xml print a", "The following argument was not expected: a");
    expect_wrong_usage("f.xml print -- a", "The following argument was not expected: a");
    expect_wrong_usage("f.xml get a --as number", "--as: ");
    expect_wrong_usage("f.xml get a --bytes 0", "--bytes: ");
    expect_wrong_usage("f.xml get a --bytes 32768", "--bytes: ");
    expect_wrong_usage("f.xml get a --bytes", "--bytes: 1 required");
    expect_wrong_usage("f.xml count a --as int", "--as: no such option");
    expect_wrong_usage("f.xml set a text -x", "-x: no such option");
    expect_wrong_usage("f.xml set a text ++", "++: no such option");
    expect_wrong_usage("f.xml resources a --xmlpath b", "--xmlpath: ");
    expect_wrong_usage(words("f.xml set a text x -o", {""}), "--save-to: a name is missing");
}

TEST_F(XmlProgram, WhatCannotBePrintedIsTold) {
    if (!fs::exists("/dev/full"))
        GTEST_SKIP() << "there is no /dev/full";
    write("<a>text</a>");
    const ScriptResult result =
        script_run({"/bin/sh", {"-c", "exec \"$0\" f.xml get a > /dev/full", VRK_XML_PROGRAM}, "", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.complaints, "unable to write to standard output\n");
}

// ---- files that are read

TEST_F(XmlProgram, AFileThatCannotBeReadIsTold) {
    fs::create_directory(path_of("folder.xml"));
    ASSERT_EQ(mkfifo(path_of("pipe.xml").c_str(), 0600), 0);
    const std::string longest(300, 'x');
    expect_refused("missing.xml print", "can't find missing.xml");
    expect_refused("no/such/folder.xml print", "can't find no/such/folder.xml");
    expect_refused("folder.xml print", "folder.xml is no file");
    expect_refused("pipe.xml print", "pipe.xml is no file");
    expect_refused(longest + " print", "can't read " + longest + ": File name too long");
}

TEST_F(XmlProgram, AFileThatMayNotBeReadIsTold) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    write("<a/>");
    chmod(path_of("f.xml").c_str(), 0);
    const ScriptResult result = run(words("f.xml print"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.complaints, "can't read f.xml: Permission denied\n");
}

TEST_F(XmlProgram, AFileThatIsNoXmlIsTold) {
    for (const char *text : {"", "text", "<a/>", "\xEF\xBB\xBF<?xml version=\"1.0\"?><a/>"}) {
        write_file(path_of("f.xml"), text);
        expect_refused("f.xml print", "f.xml does not begin with \"<?xml\"");
    }
}

TEST_F(XmlProgram, AFileThatIsBrokenIsToldWithItsLine) {
    write("<a>\n<b>\n</a>");
    const ScriptResult result = run(words("f.xml print"));
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.complaints.starts_with("unable to parse file " + path_of("f.xml").string() + "\nf.xml:"))
        << result.complaints;
    EXPECT_TRUE(result.complaints.ends_with("\n"));
}

TEST_F(XmlProgram, AnEntityBombIsTold) {
    std::string bomb = "<!DOCTYPE a [<!ENTITY b '" + std::string(10000, 'x') + "'>]><a>";
    for (int i = 0; i < 1100; ++i)
        bomb += "&b;";
    write(bomb + "</a>");
    const std::string path = path_of("f.xml").string();
    expect_refused("f.xml get a",
                   "entities of " + path + " expand to more than 10000000 bytes\nunable to parse file " + path);
}

TEST_F(XmlProgram, FilesAreFoundAsTheSystemFindsThem) {
    fs::create_directories(path_of("one/inner"));
    fs::create_directory_symlink("one/inner", path_of("link"));
    write("<a>wrong</a>", "f.xml");
    write("<a>right</a>", "one/f.xml");
    EXPECT_EQ(output("link/../f.xml get a"), "right\n");
    EXPECT_EQ(output(Words{path_of("f.xml").string(), "get", "a"}), "wrong\n");
}

// ---- files that are written

TEST_F(XmlProgram, ChangesGoToAnotherFileWhenOneIsNamed) {
    write("<a/>");
    output("f.xml set a text one -o one.xml");
    output("-o two.xml f.xml set a text two");
    output("f.xml set --save-to three.xml a text three");
    output("--save-to ignored.xml f.xml set a text four -o four.xml");
    EXPECT_EQ(content(), "<a/>");
    EXPECT_EQ(content("one.xml"), "<a>one</a>");
    EXPECT_EQ(content("two.xml"), "<a>two</a>");
    EXPECT_EQ(content("three.xml"), "<a>three</a>");
    EXPECT_EQ(content("four.xml"), "<a>four</a>");
}

TEST_F(XmlProgram, NamesAreTakenAsTheyStand) {
    for (const std::string name : {"100%41.xml", "%s%n.xml", "a b.xml", "[x].xml", "q?x=1#y.xml", "été.xml", ".xml"}) {
        output(Words{"new", name});
        output(Words{name, "set", "resourcefile", "text", name});
        EXPECT_EQ(content(name),
                  "<resourcefile>" + (name == "été.xml" ? "&#xE9;t&#xE9;.xml" : name) + "</resourcefile>");
        output(Words{name, "set", "resourcefile", "text", "copy", "-o", "copy " + name});
        EXPECT_EQ(content("copy " + name), "<resourcefile>copy</resourcefile>");
    }
    EXPECT_FALSE(fs::exists(path_of("100A.xml")));
}

TEST_F(XmlProgram, ALinkStaysALinkAndPermissionsAreKept) {
    write("<a/>", "real.xml");
    chmod(path_of("real.xml").c_str(), 0640);
    fs::create_symlink("real.xml", path_of("link.xml"));
    output("link.xml set a text new");
    EXPECT_TRUE(fs::is_symlink(path_of("link.xml")));
    EXPECT_EQ(content("real.xml"), "<a>new</a>");
    EXPECT_EQ(fs::status(path_of("real.xml")).permissions(), fs::perms(0640));
    EXPECT_EQ(files(), (std::vector<std::string>{"link.xml", "real.xml"}));
}

TEST_F(XmlProgram, ANewFileHasThePermissionsOfNewFiles) {
    write("<a/>");
    const ScriptResult result =
        script_run({"/bin/sh",
                    {"-c", "umask 027; exec \"$0\" f.xml set a text x -o new.xml", VRK_XML_PROGRAM},
                    "",
                    folder.path()});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(fs::status(path_of("new.xml")).permissions(), fs::perms(0640));
}

TEST_F(XmlProgram, AFailedSaveLeavesTheFile) {
    write("<a><b>" + std::string(200000, 'x') + "</b></a>");
    const std::string before = file_text(path_of("f.xml"));
    const ScriptResult result = script_run(
        {"/bin/sh", {"-c", "ulimit -f 8; exec \"$0\" f.xml set a c text y", VRK_XML_PROGRAM}, "", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.complaints, "unable to write f.xml (File too large)\n");
    EXPECT_EQ(file_text(path_of("f.xml")), before);
    EXPECT_EQ(files(), (std::vector<std::string>{"f.xml"})) << "nothing is left beside it";
}

TEST_F(XmlProgram, ANameMayBeAsLongAsNamesCanBe) {
    const std::string longest = std::string(251, 'x') + ".xml";
    write("<a/>", longest);
    output(words(longest + " set a text new"));
    EXPECT_EQ(content(longest), "<a>new</a>");
}

// ---- batches

TEST_F(XmlProgram, ABatchCarriesOutLineByLine) {
    write("<a/>");
    EXPECT_EQ(
        output(words("f.xml batch"), "set a b attr n 1 text one two\n"
                                     "\n"
                                     "   get   a b attr n 1\r\n"
                                     "set a b attr n 2 text \"2.5\" \"two words\" 2.5\n"
                                     "get a b attr n 2\n"
                                     "count a b\n"
                                     "get --as int a b attr n 2\n"
                                     "set a c cdata 1 2 255\n"
                                     "get --bytes 2 a c\n"
                                     "print\n"
                                     "setattr a b k \"x y\"\n"
                                     "getattr a b k\n"
                                     "deleteattr a b k\n"
                                     "delete a c"),
        "one two\n2.5 two words 2.500000\n2\n2\n1 2\n<a>\n<b n=\"1\">\n</b>\n<b n=\"2\">\n</b>\n<c>\n</c>\n<a>\nx y\n");
    EXPECT_EQ(content(), "<a><b n=\"1\">one two</b><b n=\"2\">2.5 two words 2.500000</b></a>");
}

TEST_F(XmlProgram, ABatchKnowsResourcesAndFiles) {
    output("new f.xml");
    write_file(path_of("in"), "bytes");
    EXPECT_EQ(output(words("f.xml batch"), "set-resource string 0 \"a text\"\n"
                                           "set-resource string 1 more than one\n"
                                           "set-resource --data-file in image 0\n"
                                           "resources string\n"
                                           "resource string 1\n"
                                           "resource --out out image 0\n"),
              "2\nmore than one\n");
    EXPECT_EQ(file_text(path_of("out")), "bytes");
}

TEST_F(XmlProgram, ARefusedLineDoesNotKeepTheOthers) {
    write("<a/>");
    const ScriptResult result = run(words("f.xml batch"), "set a b text one\n"
                                                          "get a missing\n"
                                                          "frobnicate\n"
                                                          "set a c\n"
                                                          "get --as number a b\n"
                                                          "get --bytes x a b\n"
                                                          "get --bytes 99999 a b\n"
                                                          "get --out\n"
                                                          "get --frob 1 a b\n"
                                                          "set a b 7 text poison\n"
                                                          "delete a\n"
                                                          "get a b\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.transcript, "one\n");
    EXPECT_EQ(result.complaints, "no node at given path\n"
                                 "line 2: refused\n"
                                 "line 3: frobnicate: no such operation\n"
                                 "line 4: set: \"text\" or \"cdata\" is missing\n"
                                 "line 5: --as: number is none of int, float, text\n"
                                 "line 6: --bytes: x is no number from 1 to 32767\n"
                                 "line 7: --bytes: 99999 is no number from 1 to 32767\n"
                                 "line 8: --out: a value is missing\n"
                                 "line 9: --frob: no such option\n"
                                 "line 10: set: there is no b[7], and positions cannot be made\n"
                                 "line 11: delete: a file without a root element cannot be read again\n");
    EXPECT_EQ(content(), "<a><b>one</b></a>");
}

TEST_F(XmlProgram, ABatchThatChangesNothingWritesNothing) {
    write("<a>\n <b/>\n</a>");
    const std::string before = file_text(path_of("f.xml"));
    EXPECT_EQ(output(words("f.xml batch"), "count a b\n"), "1\n");
    EXPECT_EQ(output(words("f.xml batch"), ""), "");
    EXPECT_EQ(file_text(path_of("f.xml")), before);
}

TEST_F(XmlProgram, ABatchOfThousandsIsOneProcess) {
    output("new f.xml");
    constexpr int items = 10000;
    std::string input, expected;
    for (int i = 0; i < items; ++i)
        input += "set-resource string " + std::to_string(i) + " \"item " + std::to_string(i) + "\"\n";
    for (int i = items; i-- > 0;) {
        input += "resource string " + std::to_string(i) + "\n";
        expected += "item " + std::to_string(i) + "\n";
    }
    EXPECT_EQ(output(words("f.xml batch"), input + "resources string\n"), expected + "10000\n");
    EXPECT_EQ(output("f.xml resource string 9999"), "item 9999\n");
}
