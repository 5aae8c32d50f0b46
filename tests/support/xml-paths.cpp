// Documents, paths and changes that are made up, and what a path selects.
#include "support/xml-paths.h"

#include "kernel/atomtext.h"

using namespace maxhost;

namespace {

using Atoms = std::vector<t_atom>;
using Operation = long (*)(t_jxmlfile *, long, t_atom *, char);

void carry_out(Operation operation, t_jxmlfile *holder, Atoms atoms) {
    operation(holder, static_cast<long>(atoms.size()), atoms.data(), 0);
}

Atoms with_symbol(Atoms atoms, const std::string &text) {
    atoms.emplace_back();
    atom_setsym(&atoms.back(), gensym(text.c_str()));
    return atoms;
}

} // namespace

std::string XmlGenerator::document() {
    return "<!DOCTYPE r [<!ENTITY five '5'><!ENTITY e '<b n=\"5\"/>'><!ATTLIST c n CDATA '5'>]>"
           "<r xmlns:p='u'" +
           attributes() + ">" + content(4) + "</r>";
}

std::string XmlGenerator::path() {
    std::string text = once_in(20) ? "other" : "r";
    for (size_t steps = below(4); steps > 0; --steps)
        text += step() + (once_in(8) ? filter() : "");
    return text + (once_in(3) ? "" : filter()) + (once_in(4) ? step() : "");
}

std::string XmlGenerator::number() {
    static const char *const forms[] = {"5",     "5",    "5",  "0",   "1",   "7", "-0",   " 5 ", "05",  "5.",  "5.0",
                                        "50e-1", ".5e1", "+5", "0x5", "5 5", "",  "five", "-7",  "5.5", "1e1", "10"};
    return one_of(forms);
}

std::string XmlGenerator::attributes() {
    std::string text;
    static const char *const names[] = {" n", " m", " p:n"};
    for (const char *name : names)
        if (once_in(2))
            text += std::string(name) + "='" + (once_in(15) ? "&five;" : number()) + "'";
    return once_in(30) ? text + " xmlns='v'" : text;
}

std::string XmlGenerator::content(int depth) {
    static const char *const others[] = {"text", "<!-- c -->", "<?pi d?>", "<![CDATA[FF]]>", "&e;", "&five;"};
    std::string text;
    for (size_t children = below(5); depth > 0 && children > 0; --children)
        text += once_in(5) ? one_of(others) : element(depth - 1);
    return text;
}

std::string XmlGenerator::element(int depth) {
    static const char *const names[] = {"a", "a", "b", "b", "b", "c", "p:b"};
    const std::string name = one_of(names);
    return "<" + name + attributes() + ">" + content(depth) + "</" + name + ">";
}

std::string XmlGenerator::step() {
    static const char *const steps[] = {" a", " a", " b", " b", " b", " c", " *", " p:b", " a 1", " \"b[last()]\""};
    return one_of(steps);
}

std::string XmlGenerator::filter() {
    static const char *const values[] = {"5",   "5",      "5.",     "0",      "1",     "7",       "10", "-7",
                                         "5.5", "\"05\"", "\"-0\"", "\"5.\"", "\"5\"", "\"'5'\"", "a",  "\"+5\""};
    return std::string(once_in(3) ? " attr m " : " attr n ") + one_of(values);
}

std::string change_nodes(t_jxmlfile *holder, XmlGenerator &generator, const std::string &path) {
    const std::string name = generator.once_in(3) ? " m" : generator.once_in(10) ? " p:n" : " n";
    switch (generator.below(6)) {
    case 0:
        carry_out(jxmlfile_deleteattr, holder, parse_atoms(path + name));
        return "deleteattr " + path + name;
    case 1:
        carry_out(jxmlfile_set, holder, parse_atoms(path + (generator.once_in(2) ? " text t" : " cdata AB")));
        return "set " + path;
    case 2:
        carry_out(jxmlfile_set, holder, parse_atoms(path + " b attr" + name + " 5 text made"));
        return "set below " + path;
    case 3:
        if (generator.once_in(3)) {
            carry_out(jxmlfile_delete, holder, parse_atoms(path));
            return "delete " + path;
        }
        [[fallthrough]];
    default: {
        const std::string value = generator.number();
        carry_out(jxmlfile_setattr, holder, with_symbol(parse_atoms(path + name), value));
        return "setattr " + path + name + " \"" + value + "\"";
    }
    }
}

XmlSelection selected_by_xpath(t_jxmlfile *holder, Atoms path) {
    t_atom *atoms = path.data();
    long count = static_cast<long>(path.size());
    xmlXPathObjectPtr given = nullptr;
    const long failure = jxmlfile_get_nodeset(holder, &count, &atoms, &given);
    const xpath_object found(given);
    if (failure || found->type != XPATH_NODESET)
        return {-1, nullptr};
    const xmlNodeSet *set = found->nodesetval;
    if (!set || set->nodeNr == 0)
        return {0, nullptr};
    const xmlNode *first = set->nodeTab[0];
    return {set->nodeNr, first->type == XML_ELEMENT_NODE ? first : nullptr};
}

XmlSelection selected_by_holder(t_jxmlfile *holder, Atoms path) {
    short nodes = -1;
    jxmlfile_count(holder, static_cast<long>(path.size()), path.data(), &nodes, 0);
    t_atom *atoms = path.data();
    long count = static_cast<long>(path.size());
    xmlNodePtr first = nullptr;
    jxmlfile_get_node(holder, &count, &atoms, &first, 0);
    return {nodes, first};
}
