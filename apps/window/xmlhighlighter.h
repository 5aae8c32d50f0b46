// Colours for XML: elements, attributes, values, comments, CDATA sections, entities.
#pragma once

#include <QSyntaxHighlighter>

class XmlHighlighter : public QSyntaxHighlighter {
    Q_OBJECT

  public:
    using QSyntaxHighlighter::QSyntaxHighlighter;

    // Takes other colours; for a dark background lighter ones.
    void set_dark(bool dark);

  protected:
    void highlightBlock(const QString &text) override;

  private:
    int highlight_from(const QString &text, int at, int state);
    void highlight_tag(const QString &text, int from, int to, bool has_name);

    bool dark_ = false;
};
