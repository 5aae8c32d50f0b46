// Batches of vrk-xml: what they leave of a document can be saved. The input is the lines, or before them a document
// with an empty line behind it.
#include "fuzz.h"

#include <iostream>
#include <sstream>

#include "xml/console.h"
#include "xml/operations.h"

static constexpr std::string_view usual_document =
    "<?xml version='1.0'?><resourcefile><resource><string number='0'>first</string><string number='1'>second</string>"
    "<image number='0'><![CDATA[00FF]]></image><menu number='0'><menu-title>Edit</menu-title>"
    "<menu-item number='0'>Copy</menu-item><menu-item number='1'>-</menu-item>"
    "<menu-command number='0'>copy it</menu-command></menu></resource></resourcefile>\n\n";

static void run_line(Document &document, const std::string &line) {
    try {
        const Operation operation = parse_operation(line);
        if (!operation.name.empty() && !fuzz::could_leave_the_folder(operation.out + operation.data_file))
            run_operation(document, operation);
    } catch (const Refused &) {
    }
}

FUZZ_TARGET(input) {
    std::cout.setstate(std::ios::failbit); // nothing is printed
    std::cerr.setstate(std::ios::failbit);
    fuzz::Host host(terminal_console());
    const std::string batch = std::string(input.starts_with("<?xml") ? "" : usual_document) + std::string(input);
    const size_t end = std::min(batch.find("\n\n"), batch.size());
    fuzz::write_file("given.xml", batch.substr(0, end));
    std::istringstream lines(batch.substr(end));
    try {
        Document document({});
        document.load("given.xml");
        for (std::string line; std::getline(lines, line);)
            run_line(document, line);
        document.save("saved.xml");
    } catch (const Refused &) {
    }
}
