// Reading and writing of resource files, beside what libxml2 needs for them alone.
#include <filesystem>
#include <memory>
#include <string>

#include "files.h"
#include "lists.h"
#include "ratio.h"
#include "vrk.pathname.h"

namespace {

using Kind = ResourceFile::Kind;

constexpr int no_blanks = XML_PARSE_NOBLANKS;

const char *type_of(Kind kind) { return kind == Kind::text ? "string" : "image"; }
const char *column_of(Kind kind) { return kind == Kind::text ? "vrk.tessaroll" : "images"; }

// Both sides release the document that the read before left, as a box that reads again does.
void read(benchmark::State &state, Kind kind, long count) {
    const ResourceFile file(kind, count);
    BareList list(column_of(kind));
    for (auto _ : state) {
        Holder holder(type_of(kind));
        if (!jlist_load_from_xml(list.get(), holder.get(), gensym(file.path().c_str())))
            state.SkipWithError("not read");
    }
}

void parse(benchmark::State &state, Kind kind, long count) {
    const ResourceFile file(kind, count);
    for (auto _ : state)
        benchmark::DoNotOptimize(xml_doc(xmlReadFile(file.path().c_str(), nullptr, no_blanks)).get());
}

void write(benchmark::State &state, long count) {
    const ResourceFile file(Kind::text, count);
    BareList list;
    Holder holder("string");
    jlist_load_from_xml(list.get(), holder.get(), gensym(file.path().c_str()));
    t_atom name;
    atom_setsym(&name, gensym((file.path() + ".out").c_str()));
    for (auto _ : state)
        jlist_write(list.get(), gensym("write"), 1, &name);
}

// The same document by the shortest way that libxml2 has.
void append_and_save(benchmark::State &state, long count) {
    const ResourceFile file(Kind::text, count);
    const std::string out = file.path() + ".direct";
    for (auto _ : state) {
        const xml_doc doc(xmlNewDoc(BAD_CAST "1.0"));
        xmlNodePtr root = xmlNewNode(nullptr, BAD_CAST "resourcefile");
        xmlDocSetRootElement(doc.get(), root);
        xmlNodePtr group = xmlNewChild(root, nullptr, BAD_CAST "resource", nullptr);
        for (long i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            xmlNodePtr item =
                xmlNewTextChild(group, nullptr, BAD_CAST "string", BAD_CAST("Item number " + number).c_str());
            xmlNewProp(item, BAD_CAST "number", BAD_CAST number.c_str());
        }
        xmlSaveFile(out.c_str(), doc.get());
    }
}

std::string items(long count) { return std::to_string(count) + " items"; }

} // namespace

void add_file_ratios() {
    for (long count : {100L, 1000L, 10000L, 32767L})
        add_ratio({"read " + items(count), [count](benchmark::State &state) { read(state, Kind::text, count); },
                   "xmlReadFile of the file", [count](benchmark::State &state) { parse(state, Kind::text, count); }});
    for (long count : {100L, 1000L, 10000L})
        add_ratio({"read " + std::to_string(count) + " images",
                   [count](benchmark::State &state) { read(state, Kind::image, count); }, "xmlReadFile of the file",
                   [count](benchmark::State &state) { parse(state, Kind::image, count); }});
    for (long count : {100L, 1000L, 10000L, 32767L})
        add_ratio({"write " + items(count), [count](benchmark::State &state) { write(state, count); },
                   "direct appends and xmlSaveFile",
                   [count](benchmark::State &state) { append_and_save(state, count); }});
}
