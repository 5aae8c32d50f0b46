// Scripts: one command a line, carried out as it is read.
#pragma once

#include <istream>
#include <string>

#include "embed/host.h"
#include "stage.h"
#include "transcript.h"

class Script {
  public:
    // Both outlive the script.
    Script(Transcript &transcript, Stage &stage) : transcript_(transcript), stage_(stage) {}

    // What a script can say, a line each.
    static std::string help();

    // Carries out every line. At a line that is no command it stops and is false; `reason` says "NAME:LINE: why".
    bool run(std::istream &lines, const std::string &name, std::string &reason);

    // Carries out one line. False at a line that is no command; `reason` says why.
    bool run_line(const std::string &line, std::string &reason);

    // Whether the script has the draining of the queue stopped.
    bool holds_queue() const { return held_; }

    // Opens a patcher, in place of the one that is open, and drains the queue. False when it cannot be opened; `reason`
    // then says "FILE: why".
    bool open_file(const std::string &file, std::string &reason);

  private:
    using Atoms = std::span<const t_atom>;
    using Messages = std::span<const maxhost::TypedMessage>;
    using Verb = void (Script::*)(Atoms);
    struct NamedVerb;
    static const NamedVerb verbs_[];

    void carry_out(const std::string &line);
    void command(const t_symbol *word, Messages messages);
    void host(Atoms words);

    void make_box(Atoms words);
    void connect(Atoms words);
    void deliver(t_object *box, Messages messages);
    void deliver_on_scheduler(Messages messages);
    void deliver_to_receiver(t_symbol *receiver, Messages messages);

    // The verbs of "host"; the words behind the verb.
    void open(Atoms words);
    void save(Atoms words);
    void close(Atoms words);
    void free(Atoms words);
    void click(Atoms words);
    void key(Atoms words);
    void get(Atoms words);
    void set(Atoms words);
    void assist(Atoms words);
    void paint(Atoms words);
    void view(Atoms words);
    void dirty(Atoms words);
    void clean(Atoms words);
    void answer(Atoms words);
    void hold(Atoms words);
    void drain(Atoms words);
    void release(Atoms words);
    void wait(Atoms words);
    void fail(Atoms words);
    void memory(Atoms words);

    t_object *patcher(); // the open one; an untitled one is opened when none is
    t_object *box(Atoms words, size_t at);
    t_object *box_of(t_symbol *name);
    t_symbol *attribute_of(t_object *box, Atoms words, size_t at);

    Transcript &transcript_;
    Stage &stage_;
    bool held_ = false;
};
