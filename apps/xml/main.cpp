// vrk-xml: reads, edits and prints XML and resource files from the shell.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <optional>

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "console.h"
#include "document.h"
#include "documentlock.h"
#include "embed/signals.h"
#include "operations.h"

namespace fs = std::filesystem;

namespace {

constexpr int refused = 1;
constexpr int wrong_usage = 2;

struct Options {
    std::string file;
    std::string save_to; // empty: the file itself
    Document::Names names;
    std::vector<std::string> words; // behind the name of the operation
    Operation operation;
    long bytes = 1;
};

const std::string about_words =
    R"(PATH is words: element names, numbers for positions, and "attr NAME VALUE" for a filter; any
XPath step is a word as well: "*", "b[last()]". The first element that it selects is worked on.
Words that read as numbers are numbers: 5 and 2.5 are stored as 5 and 2.500000. As VALUE a
number is compared as a number, and a text has to bring its quotes: attr id "'x'". Words that
begin with "-" and are no numbers go behind "--", which ends the options.
)";

const std::string about_batch =
    R"(
In a batch every line of standard input is an operation, with its options in front of its words:
get --as int a b. A word in double quotes is text there, also "2.5". A refused line does not keep
the others from being carried out; the file is written once, at the end. Meanwhile other vrk-xml
that edit the file wait, and say so: what writes to a batch must not edit its file. When anybody
else has changed the file, it is not saved.
)";

const std::string examples =
    R"(
Examples:
  vrk-xml path resourcefile resource string attr number 5
  vrk-xml new list.xml
  vrk-xml list.xml set resourcefile resource string attr number 0 text First line
  vrk-xml list.xml get resourcefile resource string attr number 0
  vrk-xml list.xml set resourcefile resource image attr number 0 cdata --data-file picture.png
  vrk-xml list.xml get resourcefile resource image attr number 0 --out picture.png
  vrk-xml list.xml set-resource string 1 Second line -o other.xml
  vrk-xml list.xml resources string --root resourcefile --xmlpath resource string
  printf 'set-resource string 0 "a text"\nresources string\n' | vrk-xml list.xml batch

Exit status: 0 done, 1 refused (standard error says why), 2 wrong usage.)";

// ---- the command line

// What an operation takes.
enum : unsigned {
    no_words = 1,
    no_file = 2,
    kind_option = 4,
    bytes_option = 8,
    out_option = 16,
    data_option = 32,
    edits = 64
};

struct Command {
    const char *name;
    const char *words;
    const char *description;
    unsigned takes;
};

constexpr Command commands[] = {
    {"path", "PATH", "print the XPath expression of a path", no_file},
    {"new", "FILE", "write an empty resource file", no_file},
    {"get", "PATH", "print the content of an element", kind_option | bytes_option | out_option},
    {"getattr", "PATH NAME", "print an attribute", kind_option | out_option},
    {"count", "PATH", "print how many nodes a path selects", 0},
    {"set", "PATH text|cdata DATA…", "set the content of an element, made when it is missing", data_option | edits},
    {"setattr", "PATH NAME VALUE", "set an attribute of an element that is there", edits},
    {"delete", "PATH", "delete an element with all that is in it", edits},
    {"deleteattr", "PATH NAME", "delete an attribute, if it is there", edits},
    {"print", "", "print the elements as the console shows them", no_words},
    {"resources", "TYPE", "print how many resources of a type there are", 0},
    {"resource", "TYPE NUMBER", "print a resource", kind_option | bytes_option | out_option},
    {"list", "TYPE", "print all resources of a type in the order of their numbers", kind_option},
    {"set-resource", "TYPE NUMBER TEXT…", "write a resource, made when it is missing", data_option | edits},
    {"menu", "NUMBER", "print a menu: its title, and its items with their numbers and commands", 0},
    {"batch", "", "carry out the operations of standard input", no_words | edits},
    {"edit", "", "edit the document as text, in a window", no_words},
};

const Command &command_of(const std::string &name) {
    return *std::find_if(std::begin(commands), std::end(commands),
                         [&name](const Command &command) { return command.name == name; });
}

// Help that shows the words of an operation, which the parser does not know of.
class Help : public CLI::Formatter {
  public:
    std::string make_usage(const CLI::App *app, std::string) const override {
        if (!app->get_parent())
            return "Usage: vrk-xml [OPTIONS] FILE OPERATION [WORD…]\n";
        const Command &command = command_of(app->get_name());
        std::string usage = command.takes & no_file ? "Usage: vrk-xml " : "Usage: vrk-xml FILE ";
        usage.append(command.name).append(*command.words ? " " : "").append(command.words);
        return usage + " [OPTIONS]\n";
    }
};

// Options that may stand in front of the operation and behind it.
void add_document_options(CLI::App &app, Options &options) {
    app.add_option("-o,--save-to", options.save_to, "where a changed document goes, instead of FILE")
        ->check([](const std::string &name) { return name.empty() ? "a name is missing" : ""; });
    app.add_option("--root", options.names.root, "name of the root element of a resource file (resourcefile)");
    app.add_option("--xmlpath", options.names.xmlpath, "names of its group and its type (resource long)")
        ->expected(2)
        ->allow_extra_args(false);
}

void add_value_options(CLI::App &app, Options &options, unsigned takes) {
    Operation &operation = options.operation;
    if (takes & kind_option)
        app.add_option("--as", operation.as, "kind of value (text)")->check(CLI::IsMember({"int", "float", "text"}));
    if (takes & bytes_option)
        app.add_option("--bytes", options.bytes, "how many bytes to print as integers (all, in hexadecimal)")
            ->check(CLI::Range(1, 32767));
    if (takes & out_option)
        app.add_option("--out", operation.out, "a file for the value, bytes as they are");
    if (takes & data_option)
        app.add_option("--data-file", operation.data_file, "a file of bytes as the content");
}

void add_command(CLI::App &app, Options &options, const Command &command) {
    CLI::App *added = app.add_subcommand(command.name, command.description);
    added->group("Operations");
    // The words are no option of the parser: it would take "[a,b]" for two.
    added->allow_extras(!(command.takes & no_words));
    added->callback([&options, &command] { options.operation.name = command.name; });
    add_value_options(*added, options, command.takes);
    add_document_options(*added, options);
}

void describe(CLI::App &app, Options &options) {
    app.description("Reads, edits and prints XML and resource files.");
    app.footer(about_words); // of the operations as well
    app.formatter(std::make_shared<Help>());
    app.require_subcommand(0, 1);
    app.allow_extras(); // a word in the place of the operation is told as such
    app.add_option("FILE", options.file, "the document; it has to begin with \"<?xml\"");
    add_document_options(app, options);
    for (const Command &command : commands)
        add_command(app, options, command);
    app.footer(about_words + about_batch + examples);
}

[[noreturn]] void refuse_option(const std::string &word) {
    throw CLI::ValidationError(word, "no such option (words that begin like one go behind \"--\")");
}

// A word that stands where the parser expects an operation.
[[noreturn]] void refuse_operation(const std::string &word) {
    if (word.starts_with('-'))
        refuse_option(word);
    throw CLI::ValidationError(word, "no such operation");
}

// The words of the operation: those among the options, where nothing may look like one, and what is behind "--".
void take_words(Options &options, const std::vector<std::string> &among_options, char **behind, char **end) {
    for (const std::string &word : among_options) {
        const t_atom atom = atom_of(word);
        if (word.size() > 1 && word[0] == '-' && atom_gettype(&atom) == A_SYM)
            refuse_option(word);
    }
    options.words = among_options;
    options.words.insert(options.words.end(), behind, end);
}

void expect_words(const Options &options) {
    const Command &command = command_of(options.operation.name);
    const bool has_file = !options.file.empty();
    if (command.takes & no_file ? has_file : !has_file)
        throw CLI::ValidationError("FILE", has_file ? "not for this operation" : "required in front of the operation");
    if ((command.takes & no_words) && !options.words.empty())
        throw CLI::ExtrasError(options.words);
    if (options.operation.name == "edit" && !options.save_to.empty())
        throw CLI::ValidationError("--save-to", "not for this operation, which saves when a person says so");
    if (options.operation.name == "new" && (options.words.size() != 1 || options.words.front().empty()))
        throw CLI::ValidationError("new", "takes one FILE");
}

// Throws what the parser throws.
void read_arguments(CLI::App &app, Options &options, int argc, char **argv) {
    char **const end = argv + argc;
    char **const mark = std::find(argv + 1, end, std::string("--"));
    std::vector<std::string> arguments(argv + 1, mark);
    std::reverse(arguments.begin(), arguments.end()); // as the parser wants it
    if (std::find(arguments.begin(), arguments.end(), "++") != arguments.end())
        refuse_option("++"); // to the parser it is one
    app.parse(arguments);
    const std::vector<std::string> left = app.remaining();
    if (app.get_subcommands().empty())
        left.empty() ? throw CLI::RequiredError("an operation") : refuse_operation(left.front());
    if (!left.empty())
        throw CLI::ExtrasError(left);
    take_words(options, app.get_subcommands().front()->remaining(), mark == end ? end : mark + 1, end);
    expect_words(options);
}

// ---- work

// Every line of standard input is an operation; a refused one does not keep the others from being carried out.
int run_batch(Document &document) {
    int status = 0;
    std::string line;
    for (long number = 1; std::getline(std::cin, line); ++number) {
        try {
            const Operation operation = parse_operation(line);
            if (!operation.name.empty())
                std::cout << run_operation(document, operation);
        } catch (const Refused &reason) {
            std::cerr << "line " << number << ": " << (reason.what.empty() ? "refused" : reason.what) << '\n';
            status = refused;
        }
    }
    return status;
}

// Becomes the program that has windows.
int edit(const Options &options) {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error).parent_path() / "vrk-window";
    execl(program.c_str(), program.c_str(), ("--edit=" + options.file).c_str(), nullptr);
    throw Refused{program.string() + ": " + std::generic_category().message(errno)};
}

int work_on(const Options &options) {
    // Never freed: the program ends now, and the system takes back at once what node by node would take a while.
    static Document &document = *new Document(options.names);
    std::optional<DocumentLock> lock; // a document that another program edits is read when it is saved
    if (command_of(options.operation.name).takes & edits)
        lock.emplace(options.file);
    document.load(options.file);
    int status = 0;
    if (options.operation.name == "batch")
        status = run_batch(document);
    else
        std::cout << run_operation(document, options.operation);
    if (document.changed)
        document.save(options.save_to.empty() ? options.file : options.save_to);
    return status;
}

int run(Options &options) {
    for (const std::string &word : options.words)
        options.operation.atoms.push_back(atom_of(word));
    options.operation.bytes = static_cast<short>(options.bytes);
    if (options.operation.name == "path") {
        std::cout << expression_of(options.operation.atoms) << '\n';
        return 0;
    }
    if (options.operation.name == "new") {
        Document(options.names).create(options.words.front());
        return 0;
    }
    return options.operation.name == "edit" ? edit(options) : work_on(options);
}

// The exit status; whatever goes wrong is told.
int run_and_tell(Options &options) {
    int status = refused;
    try {
        status = run(options);
    } catch (const Refused &reason) {
        std::cerr << reason.what << (reason.what.empty() ? "" : "\n");
    } catch (const std::exception &failure) { // out of memory, above all
        std::cerr << failure.what() << '\n';
    }
    if (std::cout.flush())
        return status;
    std::cerr << "unable to write to standard output\n";
    return refused;
}

} // namespace

int main(int argc, char **argv) {
    maxhost::take_signals_here();
    try {
        CLI::App app("", "vrk-xml");
        Options options;
        describe(app, options);
        try {
            read_arguments(app, options, argc, argv);
        } catch (const CLI::ParseError &error) {
            return app.exit(error) == 0 ? 0 : wrong_usage;
        }
        maxhost::start_host(terminal_console());
        const int status = run_and_tell(options);
        maxhost::stop_host();
        return status;
    } catch (const std::exception &failure) { // no memory for the arguments
        std::cerr << failure.what() << '\n';
        return refused;
    }
}
