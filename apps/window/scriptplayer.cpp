// The script player.
#include "scriptplayer.h"

#include <algorithm>

#include <QThread>

using namespace maxhost;

namespace {

constexpr int outermost_loop = 1; // the application's

} // namespace

// ---- the stage

Document *WindowStage::document() const {
    const auto &all = session_.documents();
    const bool is_open = std::any_of(all.begin(), all.end(), [&](const auto &each) { return each.get() == document_; });
    return is_open ? document_ : nullptr;
}

t_object *WindowStage::patcher() { return document() ? document()->patcher() : nullptr; }

bool WindowStage::open(const std::string &file, std::string &reason) {
    close();
    QString why;
    document_ = session_.open(QString::fromStdString(file), why);
    reason = why.toStdString();
    return document_ != nullptr;
}

void WindowStage::make_untitled() {
    close();
    document_ = session_.open_untitled();
}

bool WindowStage::save(const std::string &file, std::string &reason) { return document()->save_as_named(file, reason); }

void WindowStage::close() {
    if (Document *open = document())
        session_.close_now(*open);
    document_ = nullptr;
}

// ---- the player

ScriptPlayer::ScriptPlayer(Session &session, Transcript &transcript)
    : session_(session), transcript_(transcript), stage_(session), script_(transcript, stage_) {
    connect(&timer_, &QTimer::timeout, this, &ScriptPlayer::play_in_turn);
}

FrontEnd ScriptPlayer::front_end(unsigned traced) {
    const FrontEnd written = transcript_.front_end(traced);
    const FrontEnd shown = session_.front_end();
    FrontEnd both = shown;
    both.console = [=](ConsoleLine kind, const std::string &object, const std::string &text) {
        written.console(kind, object, text);
        shown.console(kind, object, text);
    };
    both.refused = [=](const std::string &object, const std::string &attribute, t_max_err result) {
        written.refused(object, attribute, result);
        shown.refused(object, attribute, result);
    };
    both.editor = [=](t_object *editor, EditorEvent event) {
        written.editor(editor, event);
        shown.editor(editor, event);
    };
    both.output = written.output;
    both.trace = written.trace;
    both.traced = written.traced;
    both.alert = [=, this](const std::string &text) { is_playing() ? written.alert(text) : shown.alert(text); };
    both.save_dialog = [=, this](const std::string &prompt, const std::string &proposal) {
        return is_playing() ? written.save_dialog(prompt, proposal) : shown.save_dialog(prompt, proposal);
    };
    return both;
}

bool ScriptPlayer::load(const std::string &file) {
    name_ = file;
    if (!lines_.open(file))
        return false;
    more_ = std::make_unique<QSocketNotifier>(lines_.descriptor(), QSocketNotifier::Read);
    more_->setEnabled(false);
    connect(more_.get(), &QSocketNotifier::activated, this, &ScriptPlayer::read_more);
    is_playing_ = true;
    session_.time().stop();
    return true;
}

void ScriptPlayer::start(Document *document) {
    stage_.begin_with(document);
    drain_queue(); // what opening has queued comes before the first line
    timer_.start(0);
}

void ScriptPlayer::play_all() {
    while (is_playing())
        if (!play_line())
            lines_.read();
}

// Not in the event loop of a question or a dialog: a line may close the window that waits for its end.
void ScriptPlayer::play_in_turn() {
    if (QThread::currentThread()->loopLevel() > outermost_loop || play_line())
        return;
    timer_.stop();
    more_->setEnabled(true);
}

void ScriptPlayer::read_more() {
    lines_.read();
    more_->setEnabled(false);
    timer_.start(0);
}

bool ScriptPlayer::play_line() {
    const std::optional<std::string> line = lines_.take();
    if (!line && !lines_.are_over())
        return false;
    if (line) {
        ++line_;
        std::string reason;
        if (script_.run_line(*line, reason))
            return true;
        failure_ = name_ + ":" + std::to_string(line_) + ": " + reason;
    }
    end();
    return true;
}

void ScriptPlayer::end() {
    timer_.stop();
    is_playing_ = false;
    session_.time().go_on();
    Q_EMIT ended();
}
