// The reference page tells of the box's class what the class registers, and nothing else.
#include <libxml/parser.h>
#include <libxml/xpath.h>

#include <algorithm>
#include <map>
#include <memory>

#include "kernel/attributes.h"
#include "kernel/classes.h"
#include "support/host-test.h"

using namespace maxhost;

namespace {

using Named = std::map<std::string, std::string>; // name, and what there is to say of it

struct Release {
    void operator()(xmlDoc *doc) const { xmlFreeDoc(doc); }
    void operator()(xmlXPathContext *context) const { xmlXPathFreeContext(context); }
    void operator()(xmlXPathObject *found) const { xmlXPathFreeObject(found); }
};

std::string attribute(xmlNode *node, const char *name) {
    xmlChar *value = xmlGetProp(node, BAD_CAST name);
    const std::string text = value ? reinterpret_cast<const char *>(value) : "";
    xmlFree(value);
    return text;
}

std::string content(xmlNode *node) {
    xmlChar *value = xmlNodeGetContent(node);
    const std::string text = value ? reinterpret_cast<const char *>(value) : "";
    xmlFree(value);
    return text;
}

// The class of an argument in the page's words; code 8 stands for any atoms.
std::string argument_type(short code) { return code == A_LONG ? " int" : code == A_SYM ? " symbol" : " any"; }

std::string registered_arguments(const Method &message) {
    std::string text;
    for (const short code : message.codes)
        text += argument_type(code);
    return text;
}

std::string attribute_type(const t_symbol *type) {
    const std::string name = type->s_name;
    return name == "long" || name == "char" ? "int" : name;
}

std::string registered_properties(const Attribute &attribute) {
    std::string text = attribute_type(attribute.type) + " " + std::to_string(attribute.count);
    for (const auto &[name, values] : attribute.attributes)
        text += ", " + std::string(name->s_name) + " " + print_atoms(values);
    return text;
}

// A page's value as a host splits it, so that "0." and "0.0" are the same.
std::string page_value(xmlNode *property) {
    const std::string value = attribute(property, "value");
    return attribute(property, "type") == "symbol" ? value : print_atoms(parse_atoms(value));
}

class ReferencePage : public HostTest {
  protected:
    void SetUp() override {
        HostTest::SetUp();
        std::string reason;
        ASSERT_TRUE(load_plugin(VRK_PLUGIN, reason)) << reason;
        patcher = new_patcher();
        const OwnedDictionary dictionary = empty_dictionary();
        box = new_box(patcher, gensym("vrk.tessaroll"), dictionary.get());
        ASSERT_TRUE(box);
        const std::string file = SOURCE_DIR "/package/docs/vrk.tessaroll.maxref.xml";
        page.reset(xmlReadFile(file.c_str(), nullptr, XML_PARSE_NONET));
        ASSERT_TRUE(page);
        context.reset(xmlXPathNewContext(page.get()));
    }
    void TearDown() override {
        free_patcher(patcher);
        HostTest::TearDown();
    }

    const Class &registered() const { return *reinterpret_cast<const Class *>(box->o_messlist); }

    bool takes(const std::string &message) const {
        const auto &all = registered().methods;
        return std::any_of(all.begin(), all.end(), [&](const Method &one) { return one.name->s_name == message; });
    }

    std::vector<xmlNode *> nodes(const char *path, xmlNode *from = nullptr) {
        context->node = from;
        const std::unique_ptr<xmlXPathObject, Release> found(xmlXPathEvalExpression(BAD_CAST path, context.get()));
        if (!found || !found->nodesetval)
            return {};
        return {found->nodesetval->nodeTab, found->nodesetval->nodeTab + found->nodesetval->nodeNr};
    }

    // What the page says of a message's arguments. All must be given, but those of a message that takes anything.
    std::string page_arguments(xmlNode *message) {
        std::string text;
        for (xmlNode *argument : nodes("arglist/arg", message)) {
            EXPECT_NE(attribute(argument, "name"), "");
            text += attribute(argument, "optional") == "1" ? " any" : " " + attribute(argument, "type");
        }
        return text;
    }

    std::string page_properties(xmlNode *of) {
        std::string text = attribute(of, "type") + " " + attribute(of, "size");
        for (xmlNode *property : nodes("attributelist/attribute", of))
            text += ", " + attribute(property, "name") + " " + page_value(property);
        return text;
    }

    t_object *patcher = nullptr;
    t_object *box = nullptr;
    std::unique_ptr<xmlDoc, Release> page;
    std::unique_ptr<xmlXPathContext, Release> context;
};

TEST_F(ReferencePage, IsOfThisClass) {
    xmlNode *root = xmlDocGetRootElement(page.get());
    EXPECT_STREQ(reinterpret_cast<const char *>(root->name), "c74object");
    EXPECT_EQ(attribute(root, "name"), registered().name->s_name);
    EXPECT_EQ(attribute(root, "module"), "max");
    EXPECT_EQ(nodes("/c74object/objarglist/objarg").size(), 0u); // a box takes none
    EXPECT_GE(nodes("/c74object/seealsolist/seealso").size(), 3u);
}

TEST_F(ReferencePage, TellsEveryMessageWithItsArguments) {
    Named told, taken;
    for (xmlNode *message : nodes("/c74object/methodlist/method[not(starts-with(@name, '('))]")) { // a person's deed
        const std::string name = attribute(message, "name");
        EXPECT_TRUE(told.emplace(name, page_arguments(message)).second) << name << " is told twice";
    }
    for (const Method &message : registered().methods)
        if (message.codes != std::vector<short>{A_CANT}) // the host's own
            taken.emplace(message.name->s_name, registered_arguments(message));
    EXPECT_EQ(told, taken);
    EXPECT_EQ(taken.size(), 21u);
}

TEST_F(ReferencePage, TellsEveryAttributeWithItsAttributes) {
    Named told, registered_ones;
    for (xmlNode *of : nodes("/c74object/attributelist/attribute"))
        EXPECT_TRUE(told.emplace(attribute(of, "name"), page_properties(of)).second) << attribute(of, "name");
    for (const Attribute *of : registered().attributes)
        registered_ones.emplace(of->name->s_name, registered_properties(*of));
    EXPECT_EQ(told, registered_ones);
    EXPECT_EQ(told.count("xmlpath"), 1u);
}

// Values that are no declared defaults stand in the descriptions.
TEST_F(ReferencePage, TellsTheColorOfANewBox) {
    std::vector<t_atom> colour;
    ASSERT_EQ(read_attribute(box, gensym("selectcolor"), colour), MAX_ERR_NONE);
    xmlNode *told = nodes("/c74object/attributelist/attribute[@name='selectcolor']/description").at(0);
    EXPECT_NE(content(told).find("(" + print_atoms(colour) + " in a new box)"), std::string::npos) << content(told);
}

TEST_F(ReferencePage, TellsTheOutletsByTheirAssistance) {
    const std::vector<xmlNode *> outlets = nodes("/c74object/misc[@name='Output']/entry");
    ASSERT_EQ(static_cast<long>(outlets.size()), outlets_of(box));
    for (size_t i = 0; i < outlets.size(); ++i)
        EXPECT_EQ(attribute(outlets[i], "name"), assistance(box, false, static_cast<long>(i)));
}

TEST_F(ReferencePage, DigestsAndDescribesEverything) {
    const std::vector<xmlNode *> described = nodes("/c74object | //method | /c74object/attributelist/attribute");
    EXPECT_GT(described.size(), 30u);
    for (xmlNode *node : described) {
        const std::vector<xmlNode *> digest = nodes("digest", node), description = nodes("description", node);
        ASSERT_EQ(digest.size(), 1u) << attribute(node, "name");
        ASSERT_EQ(description.size(), 1u) << attribute(node, "name");
        EXPECT_GT(content(digest[0]).size(), 3u) << attribute(node, "name");
        EXPECT_NE(content(digest[0]).back(), '.') << attribute(node, "name");
        EXPECT_GT(content(description[0]).size(), 10u) << attribute(node, "name");
    }
}

TEST_F(ReferencePage, PointsOnlyToMessagesAndAttributesThatThereAre) {
    for (xmlNode *message : nodes("//m"))
        EXPECT_TRUE(takes(content(message))) << content(message);
    for (xmlNode *of : nodes("//at"))
        EXPECT_TRUE(has_attribute(box, gensym(content(of).c_str()))) << content(of);
}

} // namespace
