#pragma once

#include <QString>

class QLineEdit;
class QWidget;

namespace Kelocontrols {

class ListView;

/**
 * The message line `txtMessage` shown over the file list: the empty-folder
 * text, the design-time note, or an error no caller could catch.
 *
 * It takes the list's font and colours and sits 120 twips from the left,
 * as wide as the list less 240 twips; its top is 180 twips plus 30 twips
 * per point of font size in the details view (below the column headers),
 * else 120 twips.
 */
class FileViewMessage
{
public:
    FileViewMessage(QWidget &control, ListView &list);

    /// Shows @p text; "" hides the line.
    void show(const QString &text);
    /// Moves the line to where the list's view and font put it.
    void place();

private:
    QWidget &m_control;
    ListView &m_list;
    QLineEdit *m_line;
};

} // namespace Kelocontrols
