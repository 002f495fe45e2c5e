#pragma once

// Helpers shared by the tests of the controls and their dialogs.

#include <Kelocontrols/KelolistBox.h>
#include <Kelocontrols/MsgBox.h>

#include <QAbstractItemView>
#include <QStringList>

namespace KeloTest {

/// Records every message box shown while it lives as "<buttons>|<prompt>|<title>", answering OK.
class MsgBoxRecorder
{
public:
    MsgBoxRecorder()
        : m_previous(Kelocontrols::setMsgBoxHandler([this](const QString &prompt, int buttons, const QString &title) {
            calls << QString::number(buttons) + QLatin1Char('|') + prompt + QLatin1Char('|') + title;
            return Kelocontrols::MsgBoxResult::OK;
        }))
    {
    }
    ~MsgBoxRecorder() { Kelocontrols::setMsgBoxHandler(m_previous); }
    MsgBoxRecorder(const MsgBoxRecorder &) = delete;
    MsgBoxRecorder &operator=(const MsgBoxRecorder &) = delete;

    QStringList calls;

private:
    Kelocontrols::MsgBoxHandler m_previous;
};

/// The entries of a list box from the top, in `role`: the texts, or with Qt::UserRole the values.
inline QVariantList listEntries(const KelolistBox &box, int role = Qt::DisplayRole)
{
    QVariantList entries;
    const auto *view = box.findChild<QAbstractItemView *>(QStringLiteral("listItems"));
    for (int row = 0; view && row < view->model()->rowCount(); ++row) {
        entries << view->model()->index(row, 0).data(role);
    }
    return entries;
}

/// The texts a list box shows, from the top.
inline QStringList listTexts(const KelolistBox &box)
{
    QStringList texts;
    for (const QVariant &entry : listEntries(box)) {
        texts << entry.toString();
    }
    return texts;
}

/// The hidden values of a list box's entries, from the top.
inline QList<int> listValues(const KelolistBox &box)
{
    QList<int> values;
    for (const QVariant &entry : listEntries(box, Qt::UserRole)) {
        values << entry.toInt();
    }
    return values;
}

} // namespace KeloTest
