// An XML file that is edited in a text editor window, for a shell.
#pragma once

#include <QString>

// Makes the class of such documents known to the host. Once, after the host has started.
void register_xml_document();

// Loads a file and opens an editor on it; both are freed when the editor is closed. False with the reason when it
// cannot be loaded.
bool edit_xml_file(const QString &file, QString &reason);

// The text of such a file as an editor gets it. False with the reason when it cannot be loaded.
bool read_xml_text(const QString &file, QString &text, QString &reason);
