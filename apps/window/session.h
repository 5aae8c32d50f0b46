// The session: the documents that are open, and what their windows share.
#pragma once

#include <memory>
#include <vector>

#include <QObject>
#include <QStringList>

#include "console.h"
#include "dialogs.h"
#include "document.h"
#include "editors.h"
#include "hostbridge.h"
#include "hosttime.h"

// Outlives the host, which stops after everything has been closed.
class Session : public QObject {
    Q_OBJECT

  public:
    Session();
    ~Session() override;

    // What the host is started with.
    maxhost::FrontEnd front_end();

    // Opens a patcher file in a window, or brings the one that it has to the front. Null with the reason when it cannot
    // be opened. `open_and_tell` tells a person the reason.
    Document *open(const QString &file, QString &reason);
    void open_and_tell(const QString &file, QWidget *parent);
    Document *open_untitled();

    // A window of a patcher in a box of the document.
    void show_inner(Document &document, t_object *patcher);

    // Closes everything without asking; from outside the event loop.
    void close_all();

    // Closes a document without asking. Its windows go at once; the patcher is freed when control is back in the event
    // loop and no box of any waits for a dialog, whose answer then is that it is cancelled.
    void close(Document &document);

    // Closes a window of a patcher in a box.
    void close_window(PatcherWindow *window);

    // Closes a document at once: for whoever is called from the event loop and from no window.
    void close_now(Document &document);

    // Reads a document's file again, when no box waits for a dialog; a person is told why it fails.
    void revert(Document &document, PatcherWindow *window);

    const std::vector<std::unique_ptr<Document>> &documents() const { return documents_; }

    // Files that were opened or saved, the newest first.
    QStringList recent_files() const;
    void add_recent(const QString &file);

    ConsoleModel &console() { return console_; }
    HostBridge &bridge() { return bridge_; }
    HostTime &time() { return time_; }
    Dialogs &dialogs() { return dialogs_; }
    Editors &editors() { return editors_; }

  private:
    Document *show(std::unique_ptr<Document> document);
    std::unique_ptr<Document> take(Document &document);
    void release_closed();

    HostBridge bridge_;
    HostTime time_;
    Dialogs dialogs_{time_};
    ConsoleModel console_;
    Editors editors_{*this};
    std::vector<std::unique_ptr<Document>> documents_;
    std::vector<std::unique_ptr<Document>> closed_; // to be freed
    QList<PatcherWindow *> closed_windows_;         // likewise, of documents that stay
};
