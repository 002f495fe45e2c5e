#pragma once

#include "PropertyTable.h"

class KelofileView;

/**
 * The persisted properties of KelofileView, in the order they are read and
 * written.
 *
 * Loading applies the list's appearance to ListFiles and stores the rest
 * without listing anything (Path and PathRoot included). ItemIndex,
 * ItemCount, ImageIndex and ImageCount are read and dropped: they describe
 * the run-time contents, which saving writes as they are. InitProperties
 * resets only what the control keeps itself; ListFiles keeps its look.
 */
class FileViewPropertyTable final : public Kelocontrols::PropertyTable<KelofileView>
{
public:
    static const FileViewPropertyTable &instance();

    void initialise(QObject &control) const override;

private:
    FileViewPropertyTable();
};
