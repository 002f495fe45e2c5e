#pragma once

// Helpers shared by the tests of the controls and their dialogs.

#include <Kelocontrols/KelolistBox.h>

#include <QAbstractItemView>
#include <QStringList>

namespace KeloTest {

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
