// vrk-window: opens patchers in windows.
#include <cstdio>
#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include <QApplication>

#include "boxaccess.h"
#include "editorwindow.h"
#include "embed/signals.h"
#include "look.h"
#include "patcherwindow.h"
#include "picture.h"
#include "script/program.h"
#include "script/transcript.h"
#include "scriptplayer.h"
#include "session.h"
#include "xmldocument.h"

namespace {

constexpr int wrong_usage = 2;

struct Options {
    std::vector<std::string> plugins;
    std::vector<std::string> search;
    std::vector<std::string> patchers;
    std::string script;
    std::string picture;
    std::string tab;
    std::string palette;
    std::string edit;
};

void describe(CLI::App &app, Options &options) {
    app.description("Opens patchers in windows.");
    app.add_option("--plugin", options.plugins, "a module to load (default: the vrk.tessaroll beside this program)")
        ->allow_extra_args(false);
    app.add_option("--search", options.search, "a folder to search files in, before the current one")
        ->allow_extra_args(false);
    app.add_option("--script", options.script, "a script to play in the window, - for standard input");
    app.add_option("--picture", options.picture, "a PNG file for a picture of the window, and then the end");
    app.add_option("--tab", options.tab, "the tab that is shown first");
    app.add_option("--palette", options.palette, "light or dark (default: the desktop's)")
        ->check(CLI::IsMember({"light", "dark"}));
    app.add_option("--edit", options.edit, "an XML file to edit as text");
    app.add_option("PATCHER", options.patchers, "patcher files");
    app.footer("Scripts are those of vrk-run; \"vrk-run --help\" tells of them. Without a display,\n"
               "QT_QPA_PLATFORM=offscreen lets the program run, and --picture shows what a person would see.");
}

int fail(const std::string &reason) {
    std::cerr << "vrk-window: " << reason << '\n';
    return wrong_usage;
}

bool open_all(Session &session, const Options &options, std::string &reason) {
    QString why;
    for (const std::string &file : options.patchers)
        if (!session.open(QString::fromStdString(in_current_folder(file)), why)) {
            reason = file + ": " + why.toStdString();
            return false;
        }
    if (!options.edit.empty() && !edit_xml_file(QString::fromStdString(options.edit), why)) {
        reason = options.edit + ": " + why.toStdString();
        return false;
    }
    return true;
}

// The window that a person would look at.
QWidget *front_window() {
    for (QWidget *window : QApplication::topLevelWidgets())
        if (qobject_cast<EditorWindow *>(window))
            return window;
    for (QWidget *window : QApplication::topLevelWidgets())
        if (qobject_cast<PatcherWindow *>(window))
            return window;
    return nullptr;
}

int take_picture(Session &session, const Options &options) {
    session.time().run();
    maxhost::drain_queue(); // what that has left
    session.bridge().deliver();
    QWidget *window = front_window();
    if (!window)
        return fail("no window is open for the picture");
    QString reason;
    return write_picture(*window, QString::fromStdString(options.picture), reason)
               ? 0
               : fail(options.picture + ": " + reason.toStdString());
}

int show(Session &session, ScriptPlayer &player, const Options &options) {
    if (!options.picture.empty())
        session.dialogs().dismiss(); // nobody is there to answer one
    if (!options.script.empty() && !player.load(options.script))
        return fail(options.script + ": cannot be read");
    std::string reason;
    if (!open_all(session, options, reason))
        return fail(reason);
    Document *first = session.documents().empty() ? nullptr : session.documents().front().get();
    if (!first && options.edit.empty() && options.script.empty())
        first = session.open_untitled();
    if (first && !options.tab.empty() && !first->windows().constFirst()->show_tab(QString::fromStdString(options.tab)))
        return fail("no tab is named \"" + options.tab + "\"");
    if (player.is_playing())
        player.start(first);
    if (!options.picture.empty()) {
        player.play_all();
        return player.failure().empty() ? take_picture(session, options) : fail(player.failure());
    }
    QObject::connect(&player, &ScriptPlayer::ended, [&player] {
        if (!player.failure().empty())
            fail(player.failure());
    });
    const int status = QApplication::exec();
    return player.failure().empty() ? status : wrong_usage;
}

QtMessageHandler say_as_before;

// The offscreen platform complains of what it has no windows for, which tells nobody anything.
void say(QtMsgType kind, const QMessageLogContext &context, const QString &text) {
    if (QApplication::platformName() != "offscreen" || !text.startsWith("This plugin does not support "))
        say_as_before(kind, context, text);
}

// Without one Qt ends the program in its own way.
bool has_display() {
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

int run(const Options &options) {
    if (options.palette == "light")
        QApplication::setPalette(light_palette());
    else if (options.palette == "dark")
        QApplication::setPalette(dark_palette());
    make_boxes_accessible();
    std::string reason;
    if (!load_plugins(options.plugins, reason))
        return fail(reason);
    maxhost::set_search_folders(options.search);
    register_xml_document();
    Session session;
    Transcript transcript(stdout);
    ScriptPlayer player(session, transcript);
    maxhost::start_host(options.script.empty() ? session.front_end() : player.front_end(0));
    const int status = show(session, player, options);
    session.close_all();
    maxhost::stop_host();
    const std::string fault = transcript.fault();
    return fault.empty() ? status : fail("the transcript cannot be written: " + fault);
}

} // namespace

int main(int argc, char **argv) {
    maxhost::take_signals_here();
    try {
        CLI::App app("", "vrk-window");
        Options options;
        describe(app, options);
        try {
            app.parse(argc, argv);
        } catch (const CLI::ParseError &error) {
            return app.exit(error) == 0 ? 0 : wrong_usage;
        }
        if (!options.picture.empty() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        if (!has_display())
            return fail("there is no display; --picture FILE.png shows what would be on it");
        say_as_before = qInstallMessageHandler(say);
        int no_arguments = 1; // Qt's own options are not the program's
        const QApplication qt(no_arguments, argv);
        QApplication::setOrganizationName("vrk.tessaroll");
        QApplication::setApplicationName("vrk-window");
        return run(options);
    } catch (const std::exception &error) { // no memory, or a folder that has gone
        std::fprintf(stderr, "vrk-window: %s\n", error.what());
        return wrong_usage;
    }
}
