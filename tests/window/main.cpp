// Runs the tests of the windows: all of them, or the families that are named.
#include <cstdio>
#include <cstring>

#include <QApplication>

#include "boxaccess.h"
#include "embed/host.h"

int run_boxes_tests(int argc, char **argv);
int run_closing_tests(int argc, char **argv);
int run_disk_tests(int argc, char **argv);
int run_editor_tests(int argc, char **argv);
int run_list_tests(int argc, char **argv);
int run_patcherwindow_tests(int argc, char **argv);
int run_program_tests(int argc, char **argv);

namespace {

struct Family {
    const char *name;
    int (*run)(int argc, char **argv);
};

constexpr Family families[] = {{"boxes", run_boxes_tests},    {"closing", run_closing_tests},
                               {"disk", run_disk_tests},      {"editor", run_editor_tests},
                               {"list", run_list_tests},      {"window", run_patcherwindow_tests},
                               {"program", run_program_tests}};

} // namespace

// The first argument is the name of a family, the others are QTest's.
int main(int argc, char **argv) {
    QApplication qt(argc, argv);
    QApplication::setOrganizationName("vrk.tessaroll");
    QApplication::setApplicationName("window-tests");
    QApplication::setQuitOnLastWindowClosed(false);
    make_boxes_accessible();
    std::string reason;
    if (!maxhost::load_plugin(VRK_PLUGIN, reason)) {
        std::fprintf(stderr, "%s\n", reason.c_str());
        return 1;
    }
    for (const Family &family : families)
        if (argc > 1 && std::strcmp(argv[1], family.name) == 0)
            return family.run(argc - 1, argv + 1);
    std::fprintf(stderr, "no family of tests is named so\n");
    return 1;
}
