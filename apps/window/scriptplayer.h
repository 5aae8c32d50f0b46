// The script player: plays a script in the windows, a line each time that the event loop comes round.
#pragma once

#include <memory>

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include "script/script.h"
#include "scriptlines.h"
#include "session.h"

// The script's patcher is a document in a window.
class WindowStage : public Stage {
  public:
    explicit WindowStage(Session &session) : session_(session) {}

    t_object *patcher() override; // null when a person has closed the window
    bool open(const std::string &file, std::string &reason) override;
    void make_untitled() override;
    bool save(const std::string &file, std::string &reason) override;
    void close() override;

    // The document that is open already is the one that the script begins with.
    void begin_with(Document *document) { document_ = document; }

  private:
    Document *document() const; // null when it is not open any more

    Session &session_;
    Document *document_ = nullptr; // to be compared, not touched
};

// While a script plays, time passes only as the script says, and dialogs are answered by it. While a window asks a
// person, it waits.
class ScriptPlayer : public QObject {
    Q_OBJECT

  public:
    // Both outlive the player.
    ScriptPlayer(Session &session, Transcript &transcript);

    // The session's front end with what the transcript writes down.
    maxhost::FrontEnd front_end(unsigned traced);

    // Takes a script; false when the file ("-": standard input) cannot be read. From now on it counts as playing, so
    // that it answers the dialogs that patchers open by themselves.
    bool load(const std::string &file);

    // Begins with the first line. `document` may be null.
    void start(Document *document);

    // Plays to the end, now, and waits for lines that are yet to be written.
    void play_all();

    bool is_playing() const { return is_playing_; }

    // Why the script has stopped at a line that is no command, "FILE:LINE: why"; empty when it has not.
    const std::string &failure() const { return failure_; }

  Q_SIGNALS:
    void ended();

  private:
    void play_in_turn();
    bool play_line(); // false when the next one has not been read
    void read_more();
    void end();

    Session &session_;
    Transcript &transcript_;
    WindowStage stage_;
    Script script_;
    ScriptLines lines_;
    std::string name_, failure_;
    long line_ = 0;
    bool is_playing_ = false;
    QTimer timer_;                          // has the next line played
    std::unique_ptr<QSocketNotifier> more_; // tells of more to read, while the timer does not run
};
