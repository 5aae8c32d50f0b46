// vrk-xml: reads, edits and prints XML and resource files from the shell.
#include <iostream>

#include <CLI/CLI.hpp>

#include "document.h"
#include "embed/host.h"
#include "operations.h"

namespace {

constexpr int refused = 1;
constexpr int wrong_usage = 2;

struct Options {
    std::string file;
    std::string save_to; // empty: the file itself
    Document::Names names;
    std::vector<std::string> words;
    Operation operation;
    long bytes = 1;
};

constexpr const char *examples =
    R"(Paths are words: element names, numbers for positions, and "attr NAME VALUE" for a filter.
Words that read as numbers are numbers. Words that begin with "-" go behind "--".

Examples:
  vrk-xml path resourcefile resource string attr number 5
  vrk-xml new list.xml
  vrk-xml list.xml set resourcefile resource string attr number 0 text First line
  vrk-xml list.xml get resourcefile resource string attr number 0
  vrk-xml list.xml set resourcefile resource image attr number 0 cdata --data-file picture.png
  vrk-xml list.xml get resourcefile resource image attr number 0 --out picture.png
  vrk-xml list.xml --xmlpath resource string resources string
  printf 'set-resource string 0 "a text"\nresources string\n' | vrk-xml list.xml batch

Exit status: 0 done, 1 refused (standard error says why), 2 wrong usage.)";

// What the layer says: posts are the output of "print", everything else is why it refuses.
maxhost::FrontEnd console() {
    maxhost::FrontEnd front;
    front.console = [](maxhost::ConsoleLine kind, const std::string &, const std::string &text) {
        const bool is_post = kind == maxhost::ConsoleLine::post;
        // Closing tags are posted with a line feed in front, for a console that does not break lines by itself.
        (is_post ? std::cout : std::cerr) << (is_post && text.starts_with('\n') ? text.substr(1) : text) << '\n';
    };
    return front;
}

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

int work_on(const Options &options) {
    Document document(options.names);
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
    return work_on(options);
}

// One subcommand, whose words go to options.words.
CLI::App *add_command(CLI::App &app, Options &options, const std::string &name, const std::string &description,
                      const std::string &words) {
    CLI::App *command = app.add_subcommand(name, description);
    if (!words.empty())
        command->add_option(words, options.words, "words of a path, and what follows it");
    command->callback([&options, name] { options.operation.name = name; });
    return command;
}

void add_reading_options(CLI::App *command, Options &options) {
    command->add_option("--as", options.operation.as, "kind of value")->check(CLI::IsMember({"int", "float", "text"}));
    command->add_option("--bytes", options.bytes, "how many bytes of a CDATA section to print as integers")
        ->check(CLI::Range(1, 32767));
    command->add_option("--out", options.operation.out, "a file for the value, bytes as they are");
}

void describe(CLI::App &app, Options &options) {
    app.description("Reads, edits and prints XML and resource files.");
    app.footer(examples);
    app.require_subcommand(1);
    app.add_option("FILE", options.file, "the document");
    app.add_option("-o,--save-to", options.save_to, "where a changed document goes, instead of FILE");
    app.add_option("--root", options.names.root, "name of the root element of a resource file (resourcefile)");
    app.add_option("--xmlpath", options.names.xmlpath, "names of its group and its type (resource long)")->expected(2);
    add_command(app, options, "path", "print the XPath expression of a path", "ATOM")->allow_extras(false);
    add_command(app, options, "new", "write an empty resource file", "FILE")->get_option("FILE")->required();
    add_reading_options(add_command(app, options, "get", "print the content of an element: PATH", "ATOM"), options);
    add_reading_options(add_command(app, options, "getattr", "print an attribute: PATH NAME", "ATOM"), options);
    add_command(app, options, "count", "print how many nodes a path selects: PATH", "ATOM");
    add_command(app, options, "delete", "delete an element: PATH", "ATOM");
    add_command(app, options, "deleteattr", "delete an attribute: PATH NAME", "ATOM");
    add_command(app, options, "set", "set the content of an element, made when missing: PATH text|cdata DATA…", "ATOM")
        ->add_option("--data-file", options.operation.data_file, "a file of bytes, for cdata");
    add_command(app, options, "setattr", "set an attribute: PATH NAME VALUE", "ATOM");
    add_command(app, options, "print", "print the elements as the console shows them", "");
    add_command(app, options, "resources", "print how many resources of a type there are: TYPE", "ATOM");
    add_reading_options(add_command(app, options, "resource", "print a resource: TYPE NUMBER", "ATOM"), options);
    add_command(app, options, "set-resource", "write a resource: TYPE NUMBER TEXT", "ATOM")
        ->add_option("--data-file", options.operation.data_file, "a file of bytes, instead of TEXT");
    add_command(app, options, "menu", "print a menu, its title and items with commands: NUMBER", "ATOM");
    add_command(app, options, "batch", "carry out the operations of standard input, one a line", "");
}

bool needs_file(const Options &options) { return options.operation.name != "path" && options.operation.name != "new"; }

} // namespace

int main(int argc, char **argv) {
    CLI::App app;
    Options options;
    describe(app, options);
    try {
        app.parse(argc, argv);
        if (needs_file(options) && options.file.empty())
            throw CLI::RequiredError("FILE");
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : wrong_usage;
    }
    maxhost::start_host(console());
    int status = 0;
    try {
        status = run(options);
    } catch (const Refused &reason) {
        std::cerr << reason.what << (reason.what.empty() ? "" : "\n");
        status = refused;
    }
    maxhost::stop_host();
    return status;
}
