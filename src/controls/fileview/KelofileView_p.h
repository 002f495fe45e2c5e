#pragma once

#include "ClassicFace_p.h"
#include "FileListFilter.h"
#include "FileViewFill_p.h"
#include "FileViewImages_p.h"
#include "FileViewMessage_p.h"
#include "FileViewRefresh_p.h"
#include "FileViewSearch_p.h"
#include "FileViewWatch_p.h"
#include "KelofileView.h"

class QTimer;

namespace Kelocontrols {
class FileListModel;
class FileViewCommands;
class FileViewDragDrop;
class FileViewLabelEdit;
} // namespace Kelocontrols

/// What a KelofileView keeps: its inner widgets, the parts that fill and refresh the list, and its property values.
class KelofileView::Private
{
public:
    explicit Private(KelofileView &view);

    Kelocontrols::FileListModel *model() const;
    /// Whether ItemIndex addresses an item.
    bool currentItemValid() const;
    int currentRow() const { return itemIndex - 1; }
    /// The list the image members address: Image16 when ImageSmall, else Image32.
    Kelocontrols::ImageList *currentImageList() const;

    /// Marks a fill or refresh as running for its scope, so that one starting inside it does nothing.
    class Busy
    {
    public:
        explicit Busy(Private &d)
            : m_d(d)
        {
            m_d.busy = true;
        }
        ~Busy() { m_d.busy = false; }
        Busy(const Busy &) = delete;
        Busy &operator=(const Busy &) = delete;

    private:
        Private &m_d;
    };

    Kelocontrols::ListView *list;
    Kelocontrols::ImageList *image32;
    Kelocontrols::ImageList *image16;
    QTimer *refreshTimer;
    Kelocontrols::FileViewMessage message;
    Kelocontrols::FileViewImages images;
    Kelocontrols::FileViewFill filler;
    Kelocontrols::FileViewRefresh refresher;
    Kelocontrols::FileViewSearch searcher;
    Kelocontrols::ClassicFace face; ///< BackColor, ForeColor, Enabled, Font and MousePointer on ListFiles
    Kelocontrols::FileViewWatch watch; ///< whether a tick needs a pass
    Kelocontrols::FileViewCommands *commands = nullptr; ///< the popup menus and their commands (a child QObject)
    Kelocontrols::FileViewLabelEdit *labelEdit = nullptr; ///< renaming in place (a child QObject)
    Kelocontrols::FileViewDragDrop *dragDrop = nullptr; ///< drop target and drag source (a child QObject)
    bool busy = false; ///< a fill or an in-place refresh runs

    QString path;
    QString pathRoot;
    bool limitToRoot = true;
    bool showFolders = true;
    bool showFolderDetails = false;
    Kelocontrols::FileListFilter rules; ///< Filter, AllowHiddenFiles, AllowSystemFiles
    qint32 totalSize = 0;
    bool allowLabelEdit = true;
    int oleDragMode = 1;
    int oleDropMode = 2;
    bool deleteToTrash = false;
    QStringList myFolders;
    QString myFoldersEntry; ///< the "My Folders" entry the user went down through, "" when none
    bool enteredFromMyFolders = false; ///< "My Folders" is listed and no item was opened since

    int itemIndex = 0;
    int imageIndex = 0;
    bool imageSmall = false;
    // The values the item and image members were last given (and load and save).
    QString itemName;
    QString itemDisplayName;
    QString itemIcon;
    QString itemSmallIcon;
    QString itemTag;
    int itemSelected = 0;
    bool itemBold = false;
    QString imageKey;
    QString imageTag;
};
