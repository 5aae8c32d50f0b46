// Lists the items of a resource file in the order of their numbers, with pugixml.
#include <algorithm>
#include <cstdio>
#include <vector>

#include <pugixml.hpp>

int main(int, char **argv) {
    pugi::xml_document document;
    if (!document.load_file(argv[1]))
        return 1;
    std::vector<pugi::xml_node> items;
    for (pugi::xml_node item : document.child("resourcefile").child("resource").children("string"))
        items.push_back(item);
    std::stable_sort(items.begin(), items.end(), [](pugi::xml_node a, pugi::xml_node b) {
        return a.attribute("number").as_int() < b.attribute("number").as_int();
    });
    for (pugi::xml_node item : items)
        std::puts(item.text().get());
}
