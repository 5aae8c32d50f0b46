// A test with a document holder: operations are typed as messages are, and answer with text.
#pragma once

#include "vrk.jxml-resfile.h" // libxml2's headers come before the host's

#include "support/host-test.h"

// Atoms that cannot be typed, or not easily. The block of an object atom comes from the host's allocator.
t_atom symbol_atom(const std::string &text);
t_atom block_atom(const std::string &bytes);

// Lines of the console of a holder without an owner.
std::string error(const std::string &text);
std::string warning(const std::string &text);
std::string post(const std::string &text);

// What the layer says of expressions and nodes.
std::string unable(const std::string &what, const std::string &expression);
inline const std::string no_node = "warn: -: no node at given path";
inline const std::string invalid_node = "warn: -: invalid node at given path";

using Atoms = std::vector<t_atom>;

// The atoms of a typed list, with more behind them.
Atoms typed(const std::string &list, const Atoms &more = {});

// Frees its holder at the end, and fails when the host was misused.
class XmlTest : public HostTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    // Writes a file, with an XML declaration before the content, and loads it: the result of jxmlfile_load.
    short load(const std::string &content, const std::string &name = "test.xml");
    short load_file(const std::string &name); // -1 when there is no such file

    // Saves the document and reads it again; false when it cannot be read.
    bool reload();

    // The document as it would be written, without declaration and last line feed.
    std::string document() const;

    // The expression of a path; the path has to be consumed.
    static std::string expression(Atoms path, const std::string &before = "");

    // What a reader gives: its atoms as they print, or the bytes of a block as "block 00 FF"; "failed -1" otherwise.
    std::string get(const std::string &path, short room = 1, const std::string &kind = "text", char verbose = 1);
    std::string getattr(const std::string &path_and_name, const std::string &kind = "text", char verbose = 1);
    std::string count(const std::string &path, char verbose = 1);

    // The symbol that a reader gives, as it is; fails the test when there is none.
    std::string text(const std::string &path);
    std::string attribute(const std::string &path_and_name);

    long set(const std::string &path_and_data, const Atoms &more = {}, char verbose = 1);
    long setattr(const std::string &path_name_value, const Atoms &more = {}, char verbose = 1);
    long remove(const std::string &path, char verbose = 1);
    long removeattr(const std::string &path_and_name, char verbose = 1);

    std::string path_of(const std::string &name) const { return folder() + "/" + name; }

    t_jxmlfile *holder = nullptr;
};
