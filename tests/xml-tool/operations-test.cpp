// The operations of vrk-xml.
#include "xml-tool/xml-tool-test.h"

#include <sys/stat.h>

namespace {

using XmlOperations = XmlToolTest;

const std::string no_node = "no node at given path";

} // namespace

// ---- paths

TEST_F(XmlOperations, PathPrintsTheExpression) {
    EXPECT_EQ(output("path resourcefile resource string attr number 5"), "/resourcefile/resource/string[@number=5]\n");
    EXPECT_EQ(output("path a 2 b 2.5 c attr id 1.5"), "/a[2]/b/c[@id=1.500000]\n");
    EXPECT_EQ(output(words("path a attr id", {"'two words'"})), "/a[@id='two words']\n");
    EXPECT_EQ(output("path"), "\n");
}

TEST_F(XmlOperations, WordsAreTakenAsTheyStand) {
    EXPECT_EQ(output(words("path", {"[a,b]", "{}", "%%", "a=b", "/x", "'q'", "", "a b"})),
              "/[a,b]/{}/%%/a=b//x/'q'//a b\n");
    EXPECT_EQ(output("path get count path menu batch"), "/get/count/path/menu/batch\n")
        << "names of operations are words like others";
    EXPECT_EQ(output("path a -5 b"), "/a[-5]/b\n");
    EXPECT_EQ(output("path -- --out -x ++ -- 3"), "/--out/-x/++/--[3]\n") << "behind the first \"--\"";
}

// ---- reading

TEST_F(XmlOperations, GetPrintsAText) {
    write("<a><b>  First line\n</b><n>42</n><f>2.5</f><e/></a>");
    EXPECT_EQ(output("f.xml get a b"), "First line\n");
    EXPECT_EQ(output("f.xml get a n"), "42\n");
    EXPECT_EQ(output("f.xml get a e"), "\n");
    EXPECT_EQ(output("f.xml get --as int a f"), "2\n");
    EXPECT_EQ(output("f.xml get a f --as float"), "2.5\n");
    EXPECT_EQ(output("f.xml get a b --as int"), "0\n");
    EXPECT_EQ(output("f.xml get a b --as=text"), "First line\n");
}

TEST_F(XmlOperations, GetPrintsBytes) {
    write("<a><![CDATA[00ff7F80]]></a>");
    EXPECT_EQ(output("f.xml get a"), "00FF7F80\n");
    EXPECT_EQ(output("f.xml get a --bytes 3"), "0 -1 127\n");
    EXPECT_EQ(output("f.xml get --bytes 100 a"), "0 -1 127 -128\n");
}

TEST_F(XmlOperations, GetWritesToAFile) {
    write("<a><b><![CDATA[00FF0A]]></b><c>two words</c></a>");
    EXPECT_EQ(output("f.xml get a b --out bytes"), "");
    EXPECT_EQ(file_text(path_of("bytes")), std::string("\0\xFF\n", 3));
    EXPECT_EQ(output("f.xml get a c --out text"), "");
    EXPECT_EQ(file_text(path_of("text")), "two words");
}

TEST_F(XmlOperations, GetTellsWhyItCannot) {
    write("<a><m><x/>text</m></a>");
    expect_refused("f.xml get a missing", no_node);
    expect_refused("f.xml get a m", "get: the element holds neither text nor bytes alone");
    expect_refused(words("f.xml get a m", {"text()"}), "invalid node at given path");
    expect_refused("f.xml get a b[", "unable to evaluate xpath expression \"/a/b[\"");
    expect_refused("f.xml get", "unable to evaluate xpath expression \"\"");
    expect_refused("f.xml get a x --out no/such/folder", no_node);
    write("<a>x</a>");
    expect_refused("f.xml get a --out no/such/folder", "unable to write no/such/folder (No such file or directory)");
}

TEST_F(XmlOperations, GetattrPrintsAnAttribute) {
    write("<a><b n=' 5 ' t='two words'/></a>");
    EXPECT_EQ(output("f.xml getattr a b t"), "two words\n");
    EXPECT_EQ(output("f.xml getattr a b n"), " 5 \n");
    EXPECT_EQ(output("f.xml getattr a b n --as int"), "5\n");
    expect_refused("f.xml getattr a b x", "wrong argument: can't find attr x");
    expect_refused("f.xml getattr a c n", no_node);
    expect_refused("f.xml getattr a b 3", "getattr: 3 cannot name an attribute");
    expect_refused("f.xml getattr", "getattr: the name of an attribute is missing");
}

TEST_F(XmlOperations, CountPrintsHowMany) {
    write("<a><b n='1'/><b n='1'/><b n='2'/></a>");
    EXPECT_EQ(output("f.xml count a b"), "3\n");
    EXPECT_EQ(output("f.xml count a b attr n 1"), "2\n");
    EXPECT_EQ(output("f.xml count a c"), "0\n");
    expect_refused("f.xml count a b[", "unable to evaluate xpath expression \"/a/b[\"");
    expect_refused(words("f.xml count a", {"b = 1"}), "count: the expression selects no nodes");
}

TEST_F(XmlOperations, CountTellsOfTooMany) {
    std::string elements;
    for (int i = 0; i < 32768; ++i)
        elements += "<b/>";
    write("<a>" + elements + "</a>");
    expect_refused("f.xml count a b", "count: more than 32767 nodes");
}

TEST_F(XmlOperations, PrintShowsTheElements) {
    write("<a k='1'><b n='1' t='x'>text<c/></b></a>");
    EXPECT_EQ(output("f.xml print"), "<a>\n<b n=\"1\" t=\"x\">\n<c>\n</c>\n</b>\n<a>\n");
}

TEST_F(XmlOperations, ReadingChangesNoFile) {
    write("<a>\n  <b/>\n</a>");
    const std::string before = file_text(path_of("f.xml"));
    output("f.xml count a b");
    output("f.xml print -o other.xml");
    EXPECT_EQ(file_text(path_of("f.xml")), before);
    EXPECT_EQ(files(), (std::vector<std::string>{"f.xml"}));
}

// ---- writing

TEST_F(XmlOperations, SetWritesAText) {
    write("<a/>");
    EXPECT_EQ(output("f.xml set a b attr n 7 text hello there"), "");
    EXPECT_EQ(content(), "<a><b n=\"7\">hello there</b></a>");
    output(words("f.xml set a b attr n 7 text", {"[x, y]", "<&>", ""}));
    EXPECT_EQ(content(), "<a><b n=\"7\">[x, y] &lt;&amp;&gt; </b></a>");
    output("f.xml set a b text 1 2.5 x");
    EXPECT_EQ(content(), "<a><b n=\"7\">1 2.500000 x</b></a>");
    output("f.xml set a b text -- -x --out -o");
    EXPECT_EQ(content(), "<a><b n=\"7\">-x --out -o</b></a>");
    output("f.xml set a b text");
    EXPECT_EQ(content(), "<a><b n=\"7\"/></a>");
}

TEST_F(XmlOperations, SetWritesBytes) {
    write("<a/>");
    output("f.xml set a cdata 1 2 255");
    EXPECT_EQ(content(), "<a><![CDATA[0102FF]]></a>");
    write_file(path_of("bytes"), std::string("\0\xFF\n", 3));
    output("f.xml set a cdata --data-file bytes");
    EXPECT_EQ(content(), "<a><![CDATA[00FF0A]]></a>");
    write_file(path_of("empty"), "");
    output("f.xml set --data-file empty a cdata");
    EXPECT_EQ(content(), "<a><![CDATA[]]></a>");
}

TEST_F(XmlOperations, EveryByteGoesThroughAndBack) {
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes += static_cast<char>(i);
    write_file(path_of("in"), bytes);
    write("<a/>");
    output("f.xml set a cdata --data-file in");
    output("f.xml get a --out out");
    EXPECT_EQ(file_text(path_of("out")), bytes);
}

TEST_F(XmlOperations, SetTellsWhyItCannot) {
    write("<a><b/></a>");
    expect_refused("f.xml set a b hello", "set: \"text\" or \"cdata\" is missing");
    expect_refused("f.xml set", "set: \"text\" or \"cdata\" is missing");
    expect_refused("f.xml set text x", "unable to evaluate xpath expression \"\"");
    expect_refused("f.xml set a * c[d] text x", "unable to create node at xpath expression \"/a/*/c[d]\"");
    expect_refused(words("f.xml set a text", {"\x01"}), "text cannot be held by xml (byte 1)");
    expect_refused(words("f.xml set a text", {"\xFF"}), "text cannot be held by xml (byte 1)");
    expect_refused("f.xml set a cdata --data-file missing", "can't read missing: No such file or directory");
    expect_refused("f.xml set a cdata --data-file .", "can't read .: Is a directory");
    ASSERT_EQ(mkfifo(path_of("pipe").c_str(), 0600), 0);
    expect_refused("f.xml set a cdata --data-file pipe", "can't read pipe: nobody writes to the pipe");
    expect_refused("f.xml set a text --data-file f.xml", "set: --data-file is for \"cdata\" without other data");
    expect_refused("f.xml set a cdata 1 --data-file f.xml", "set: --data-file is for \"cdata\" without other data");
}

TEST_F(XmlOperations, TooManyBytesAreRefused) {
    write("<a/>");
    write_file(path_of("large"), std::string(5'000'001, 'x'));
    expect_refused("f.xml set a cdata --data-file large", "data is too long for xml (more than 5000000 bytes)");
    expect_refused("f.xml set a cdata --data-file /dev/zero", "data is too long for xml (more than 5000000 bytes)");
}

TEST_F(XmlOperations, AnotherRootIsRefused) {
    write("<a k='1'/>");
    expect_refused("f.xml set other b text x", "set: the root element is not other");
    expect_refused("f.xml set a attr k 2 b text x", "set: the root element is not a[@k=2]");
}

TEST_F(XmlOperations, APositionThatIsNotThereIsRefused) {
    write("<a><b/></a>");
    output("f.xml set a b 1 text there");
    EXPECT_EQ(content(), "<a><b>there</b></a>");
    expect_refused("f.xml set a b 2 text x", "set: there is no b[2], and positions cannot be made");
    expect_refused("f.xml set a c 1 d text x", "set: there is no c[1], and positions cannot be made");
    expect_refused("f.xml set a b[3] text x", "set: there is no b[3], and positions cannot be made");
    expect_refused("f.xml set a b[ text x", "unable to evaluate xpath expression \"/a/b[\"");
}

TEST_F(XmlOperations, SetattrSetsAnAttribute) {
    write("<a><b/></a>");
    output(words("f.xml setattr a b t", {"two \"words\" & more"}));
    output("f.xml setattr a b n 5");
    EXPECT_EQ(content(), "<a><b t=\"two &quot;words&quot; &amp; more\" n=\"5\"/></a>");
    output("f.xml setattr a b t x");
    EXPECT_EQ(content(), "<a><b t=\"x\" n=\"5\"/></a>");
}

TEST_F(XmlOperations, SetattrTellsWhyItCannot) {
    write("<a><b/></a>");
    expect_refused("f.xml setattr a c n 5", no_node);
    expect_refused("f.xml setattr a b 3 x", "can't set attribute 3");
    expect_refused("f.xml setattr a b 2.5 x", "can't set attribute 2.500000");
    expect_refused("f.xml setattr a b a=b x", "\"a=b\" cannot name an attribute");
    expect_refused(words("f.xml setattr a b n", {"\x01"}), "text cannot be held by xml (byte 1)");
    expect_refused("f.xml setattr a", "setattr: name or value of an attribute is missing");
}

TEST_F(XmlOperations, DeleteTakesAnElementAway) {
    write("<a><b n='1'><c/></b><b n='2'/></a>");
    output("f.xml delete a b attr n 1");
    EXPECT_EQ(content(), "<a><b n=\"2\"/></a>");
    expect_refused("f.xml delete a b attr n 1", no_node);
    expect_refused(words("f.xml delete a", {"@k"}), no_node);
    expect_refused("f.xml delete a", "delete: a file without a root element cannot be read again");
}

TEST_F(XmlOperations, DeleteattrTakesAnAttributeAway) {
    write("<a><b n='1' m='2'/></a>");
    output("f.xml deleteattr a b n");
    EXPECT_EQ(content(), "<a><b m=\"2\"/></a>");
    EXPECT_EQ(output("f.xml deleteattr a b n"), "") << "it need not be there";
    expect_refused("f.xml deleteattr a c n", no_node);
    expect_refused("f.xml deleteattr a b 3", "deleteattr: 3 cannot name an attribute");
    expect_refused("f.xml deleteattr", "deleteattr: the name of an attribute is missing");
}

// ---- resource files

TEST_F(XmlOperations, NewWritesAnEmptyResourceFile) {
    EXPECT_EQ(output("new f.xml"), "");
    EXPECT_EQ(content(), "<resourcefile><resource/></resourcefile>");
    output("new --root list --xmlpath group item other.xml");
    EXPECT_EQ(content("other.xml"), "<list><group/></list>");
    expect_refused("new f.xml", "f.xml is there already");
    expect_refused("new no/such/folder.xml", "unable to write no/such/folder.xml (No such file or directory)");
    expect_refused(words("new --root", {"two words", "third.xml"}), "\"two words\" cannot name an element");
    EXPECT_EQ(files(), (std::vector<std::string>{"f.xml", "other.xml"}));
}

TEST_F(XmlOperations, ResourcesAreWrittenCountedAndRead) {
    output("new f.xml");
    output("f.xml set-resource string 0 First line");
    output(words("f.xml set-resource string 1", {"Second & last"}));
    output("f.xml set-resource string 2 2.5 x 7");
    EXPECT_EQ(content(), "<resourcefile><resource><string number=\"0\">First line</string>"
                         "<string number=\"1\">Second &amp; last</string>"
                         "<string number=\"2\">2.500000 x 7</string></resource></resourcefile>");
    EXPECT_EQ(output("f.xml resources string"), "3\n");
    EXPECT_EQ(output("f.xml resources types"), "1\n");
    EXPECT_EQ(output("f.xml resources image"), "0\n");
    EXPECT_EQ(output("f.xml resource string 1"), "Second & last\n");
    EXPECT_EQ(output("f.xml resource string 2 --as float"), "2.5\n");
}

TEST_F(XmlOperations, ResourcesOfBytesGoThroughFiles) {
    output("new f.xml");
    write_file(path_of("picture"), std::string("\0\xFF\n", 3));
    output("f.xml set-resource image 0 --data-file picture");
    EXPECT_EQ(content(),
              "<resourcefile><resource><image number=\"0\"><![CDATA[00FF0A]]></image></resource></resourcefile>");
    EXPECT_EQ(output("f.xml resource image 0"), "00FF0A\n");
    EXPECT_EQ(output("f.xml resource image 0 --bytes 2"), "0 -1\n");
    output("f.xml resource image 0 --out copy");
    EXPECT_EQ(file_text(path_of("copy")), file_text(path_of("picture")));
}

TEST_F(XmlOperations, ListPrintsAllResourcesOfATypeByNumber) {
    write("<resourcefile><resource><s number='1'>one</s><s number='0'> zero </s><n number='0'>5</n>"
          "<i number='0'><![CDATA[00FF]]></i><gap number='0'>x</gap><gap number='2'>y</gap></resource></resourcefile>");
    EXPECT_EQ(output("f.xml list s"), "zero\none\n");
    EXPECT_EQ(output("f.xml list n --as int"), "5\n");
    EXPECT_EQ(output("f.xml list i"), "00FF\n");
    EXPECT_EQ(output("f.xml list missing"), "");
    expect_refused("f.xml list gap", no_node + "\ncannot get resource gap number 1");
    expect_refused("f.xml list", "list: a type is missing");
}

TEST_F(XmlOperations, ResourceFilesMayHaveOtherNames) {
    write("<list><group><item number='3'>three</item></group></list>");
    EXPECT_EQ(output("f.xml --root list --xmlpath group item resource item 3"), "three\n");
    EXPECT_EQ(output("f.xml resource item 3 --root list --xmlpath group item"), "three\n");
    EXPECT_EQ(output("--root list f.xml resources --xmlpath group item item"), "1\n");
    output("f.xml set-resource item 4 four --root list --xmlpath group item");
    EXPECT_EQ(content(), "<list><group><item number=\"3\">three</item><item number=\"4\">four</item></group></list>");
}

TEST_F(XmlOperations, ResourcesTellWhyTheyCannot) {
    output("new f.xml");
    expect_refused("f.xml resource string 5", no_node + "\ncannot get resource string number 5");
    expect_refused("f.xml resource string five", "resource: five is no whole number");
    expect_refused("f.xml resource string 1.5", "resource: 1.5 is no whole number");
    expect_refused("f.xml resource string", "resource: a number is missing");
    expect_refused("f.xml resource", "resource: a type is missing");
    expect_refused("f.xml resources", "resources: a type is missing");
    expect_refused("f.xml resources a[", "unable to evaluate xpath expression \"/resourcefile/resource/a[\"\n"
                                         "cannot count resources of type a[");
    expect_refused("f.xml set-resource string 0", "set-resource: either a text or --data-file has to tell the content");
    expect_refused("f.xml set-resource string 0 x --data-file f.xml",
                   "set-resource: either a text or --data-file has to tell the content");
    expect_refused("f.xml set-resource string x", "set-resource: x is no whole number");
    expect_refused(words("f.xml set-resource string 0", {"\x01"}),
                   "text cannot be held by xml (byte 1)\ncannot set resource string number 0");
    expect_refused("f.xml set-resource text 0 x", "cannot set resource text number 0 (\"text\" ends a path)");
    expect_refused("f.xml set-resource string 0 x --root other", "set-resource: the root element is not other");
    expect_refused("f.xml set-resource string 0 x --xmlpath resource[2] long",
                   "set-resource: there is no resource[2], and positions cannot be made");
}

TEST_F(XmlOperations, MenuPrintsTitleItemsAndCommands) {
    write("<resourcefile><resource><menu number='1'><menu-title>Edit</menu-title>"
          "<menu-item number='0'>Copy</menu-item><menu-command number='0'>copy selection</menu-command>"
          "<menu-item number='1'>-</menu-item><menu-item number='2'>Alone</menu-item>"
          "</menu></resource></resourcefile>");
    EXPECT_EQ(output("f.xml menu 1"), "Edit\n0 Copy/copy\n1 -\n2 Alone\n");
    expect_refused("f.xml menu 7", no_node + "\ncannot get menu-title from long 7");
    expect_refused("f.xml menu", "menu: a number is missing");
    expect_refused("f.xml menu Edit", "menu: Edit is no whole number");
}
