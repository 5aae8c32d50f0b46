// vrk-window from the shell: scripts, pictures, refusals.
#include "window-test.h"

#include <QProcess>

class ProgramTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void plays_a_script_as_vrk_run_does();
    void draws_a_picture();
    void picture_waits_for_no_dialog();
    void tells_what_is_wrong_data();
    void tells_what_is_wrong();
    void a_transcript_that_is_lost_is_told_data();
    void a_transcript_that_is_lost_is_told();
    void editor_opens_from_vrk_xml();

  private:
    struct Ended {
        int status;
        QString output, complaints;
    };
    Ended run(const QString &program, const QStringList &arguments, const QString &input = {});
};

ProgramTest::Ended ProgramTest::run(const QString &program, const QStringList &arguments, const QString &input) {
    QProcess process;
    process.start(program, arguments);
    process.write(input.toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(120'000))
        qFatal("%s does not end", qPrintable(program));
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void ProgramTest::plays_a_script_as_vrk_run_does() {
    const QString script = "new list vrk.tessaroll @embed 1\n"
                           "list append \"First line\"\n"
                           "list append second, bang\n"
                           "new m metro 100\n"
                           "connect m 0 list\n"
                           "m 1\n"
                           "host wait 250\n"
                           "list read missing.xml\n"
                           "host answer cancel\n"
                           "list write\n"
                           "host view list\n"
                           "host dirty\n";
    const Ended headless = run(VRK_RUN_PROGRAM, {"--script", "-"}, script);
    const QTemporaryDir folder;
    const Ended shown = run(VRK_WINDOW_PROGRAM, {"--script", "-", "--picture", folder.filePath("p.png")}, script);
    QCOMPARE(shown.status, 0);
    QCOMPARE(shown.output, headless.output);
    QVERIFY(headless.output.contains("m:0 bang"));
    QVERIFY(!QImage(folder.filePath("p.png")).isNull());
}

void ProgramTest::draws_a_picture() {
    const QTemporaryDir folder;
    const Ended ended = run(VRK_WINDOW_PROGRAM, {"--picture", folder.filePath("p.png"), "--palette", "dark", PATCHER});
    QCOMPARE(ended.status, 0);
    QVERIFY2(!ended.complaints.contains("plugin"), qPrintable(ended.complaints));
    const QImage picture(folder.filePath("p.png"));
    QVERIFY(picture.width() > 200);
    QVERIFY(picture.pixelColor(picture.width() - 5, picture.height() / 2).lightness() < 80);
}

// The patcher opens a dialog as soon as it is open, and again with every bang of its metro.
void ProgramTest::picture_waits_for_no_dialog() {
    const QTemporaryDir folder;
    QFile patcher(folder.filePath("dialogs.maxpat"));
    QVERIFY(patcher.open(QFile::WriteOnly));
    const QStringList boxes{box_json("start", "newobj", "20, 20, 60, 22", "\"text\": \"loadbang\""),
                            box_json("metro", "newobj", "90, 20, 60, 22", "\"text\": \"metro 10\""),
                            box_json("m", "message", "20, 50, 120, 22", "\"text\": \"append one, write\""),
                            box_json("list", "vrk.tessaroll", "20, 80, 120, 80")};
    const QStringList cords{cord_json("start", 0, "m", 0), cord_json("start", 0, "metro", 0),
                            cord_json("metro", 0, "m", 0), cord_json("m", 0, "list", 0)};
    patcher.write(("{\"patcher\": {\"fileversion\": 1, \"boxes\": [" + boxes.join(",") + "], \"lines\": [" +
                   cords.join(",") + "]}}")
                      .toUtf8());
    patcher.close();
    const QStringList picture{"--picture", folder.filePath("p.png"), patcher.fileName()};
    QCOMPARE(run(VRK_WINDOW_PROGRAM, picture).status, 0);
    QVERIFY(QFile::remove(folder.filePath("p.png")));

    const QString script = "host wait 20\n";
    const Ended headless = run(VRK_RUN_PROGRAM, {"--script", "-", patcher.fileName()}, script);
    const Ended shown = run(VRK_WINDOW_PROGRAM, picture + QStringList{"--script", "-"}, script);
    QCOMPARE(shown.status, 0);
    QVERIFY(headless.output.contains("-> cancel"));
    QVERIFY2(shown.output.startsWith(headless.output), qPrintable(shown.output));
    QVERIFY(QFile::exists(folder.filePath("p.png")));
}

void ProgramTest::tells_what_is_wrong_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("patcher") << QStringList("missing.maxpat") << "vrk-window: missing.maxpat: not found\n";
    QTest::newRow("script") << QStringList({"--script", "missing"}) << "vrk-window: missing: cannot be read\n";
    QTest::newRow("line") << QStringList({"--picture", "/dev/null", "--script", "-"})
                          << "vrk-window: -:1: host does not know \"nothing\"\n";
    QTest::newRow("picture") << QStringList({"--picture", "/none/p.png", PATCHER})
                             << "vrk-window: /none/p.png: No such file or directory\n";
    QTest::newRow("tab") << QStringList({"--tab", "none", PATCHER}) << "vrk-window: no tab is named \"none\"\n";
    QTest::newRow("editor") << QStringList({"--edit", "missing.xml"}) << "vrk-window: missing.xml: not found\n";
}

void ProgramTest::tells_what_is_wrong() {
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const Ended ended = run(VRK_WINDOW_PROGRAM, arguments, "host nothing\n");
    QCOMPARE(ended.status, 2);
    QVERIFY2(ended.complaints.endsWith(complaint), qPrintable(ended.complaints));
}

void ProgramTest::a_transcript_that_is_lost_is_told_data() {
    QTest::addColumn<QString>("program");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("vrk-run") << VRK_RUN_PROGRAM << QStringList({"--script", "-"});
    QTest::newRow("vrk-window") << VRK_WINDOW_PROGRAM << QStringList({"--script", "-", "--picture", "/dev/null"});
}

void ProgramTest::a_transcript_that_is_lost_is_told() {
    QFETCH(QString, program);
    QFETCH(QStringList, arguments);
    if (!QFile::exists("/dev/full"))
        QSKIP("there is no /dev/full");
    const QStringList shell{"-c", "exec \"$0\" \"$@\" > /dev/full", program};
    const Ended ended = run("/bin/sh", shell + arguments, "new m message go\nm bang\n");
    QCOMPARE(ended.status, 2);
    const QString complaint = ": the transcript cannot be written: No space left on device\n";
    QVERIFY2(ended.complaints.endsWith(complaint), qPrintable(ended.complaints));
}

// The window stays open, so it is a refusal that tells who has been asked.
void ProgramTest::editor_opens_from_vrk_xml() {
    const Ended ended = run(VRK_XML_PROGRAM, {"missing.xml", "edit"});
    QCOMPARE(ended.status, 2);
    QVERIFY2(ended.complaints.endsWith("vrk-window: missing.xml: not found\n"), qPrintable(ended.complaints));
}

int run_program_tests(int argc, char **argv) {
    ProgramTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "program-test.moc"
