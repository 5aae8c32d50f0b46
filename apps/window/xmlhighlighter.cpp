// Colours for XML.
#include "xmlhighlighter.h"

#include <QRegularExpression>

namespace {

// What a line begins in the midst of.
enum State { in_text = -1, in_tag = 0, in_comment, in_cdata, in_instruction };

struct Section {
    State state;
    const char *start, *end;
};

// The first that fits is what begins.
constexpr Section sections[] = {
    {in_comment, "<!--", "-->"}, {in_cdata, "<![CDATA[", "]]>"}, {in_instruction, "<?", "?>"}, {in_tag, "<", ">"}};

const Section &section_of(int state) {
    for (const Section &section : sections)
        if (section.state == state)
            return section;
    return sections[std::size(sections) - 1];
}

const Section &section_at(const QString &text, int at) {
    for (const Section &section : sections)
        if (QStringView(text).mid(at).startsWith(QLatin1String(section.start)))
            return section;
    return sections[std::size(sections) - 1];
}

struct Colors {
    const char *element, *attribute, *value, *comment, *cdata, *entity;
};
constexpr Colors light{"#0b5cad", "#8a3ea8", "#2e7d32", "#7a8594", "#9a5b00", "#c2410c"};
constexpr Colors dark{"#7ab8ff", "#d3a0ec", "#93d39a", "#8d98a8", "#e0b26a", "#ff9d76"};

} // namespace

void XmlHighlighter::set_dark(bool is_dark) {
    if (dark_ == is_dark)
        return;
    dark_ = is_dark;
    rehighlight();
}

void XmlHighlighter::highlightBlock(const QString &text) {
    static const QRegularExpression entity("&[^;\\s<]*;");
    for (auto matches = entity.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        setFormat(static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()),
                  QColor(dark_ ? dark.entity : light.entity));
    }
    setCurrentBlockState(in_text);
    int at = previousBlockState() == in_text ? 0 : highlight_from(text, 0, previousBlockState());
    while (at < text.size()) {
        const auto start = static_cast<int>(text.indexOf('<', at));
        if (start < 0)
            return;
        at = highlight_from(text, start, in_text);
    }
}

// Colours a section, which begins at `at` or has begun in a line before; where it ends.
int XmlHighlighter::highlight_from(const QString &text, int at, int state) {
    const Colors &colors = dark_ ? dark : light;
    const Section &section = state == in_text ? section_at(text, at) : section_of(state);
    const auto skipped = state == in_text ? static_cast<int>(qstrlen(section.start)) : 0;
    const auto found = static_cast<int>(text.indexOf(QLatin1String(section.end), at + skipped));
    const int end = found < 0 ? static_cast<int>(text.size()) : found + static_cast<int>(qstrlen(section.end));
    if (found < 0)
        setCurrentBlockState(section.state);
    if (section.state == in_tag)
        highlight_tag(text, at, end, state == in_text);
    else
        setFormat(at, end - at, QColor(section.state == in_cdata ? colors.cdata : colors.comment));
    return end;
}

void XmlHighlighter::highlight_tag(const QString &text, int from, int to, bool has_name) {
    static const QRegularExpression part("(</?[^\\s/>]*)|([^\\s=\"'<>/]+)(?=\\s*=)|(\"[^\"]*\"?|'[^']*'?)|(/?>)");
    const Colors &colors = dark_ ? dark : light;
    for (auto matches = part.globalMatch(text, from); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedStart() >= to)
            return;
        const bool is_element = (match.hasCaptured(1) && has_name) || match.hasCaptured(4);
        const char *color = is_element ? colors.element : match.hasCaptured(2) ? colors.attribute : colors.value;
        setFormat(static_cast<int>(match.capturedStart()), static_cast<int>(match.capturedLength()), QColor(color));
    }
}
