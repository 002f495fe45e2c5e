// KelofileView's persisted properties: its static table().

#include "KelofileView_p.h"

#include "ClassicFaceEntries_p.h"
#include "Conversions.h"
#include "ListView.h"
#include "PropertyValues.h"

#include <QPixmap>
#include <QTimer>

using namespace Kelocontrols;

namespace {

QPixmap pictureOf(const QVariant &value)
{
    return value.canConvert<QPixmap>() ? value.value<QPixmap>() : QPixmap();
}

void drop(KelofileView &, const QVariant &) { }

} // namespace

// Read and written in the order added. Loading applies the list's appearance
// to ListFiles and stores the rest without listing anything (Path and
// PathRoot included). ItemIndex, ItemCount, ImageIndex and ImageCount are
// read and dropped: they describe the run-time contents, which saving writes
// as they are. InitProperties resets only what the control keeps itself
// (setInitialiseOrder); ListFiles keeps its look and RefreshTimer its interval.
const PropertyTable<KelofileView> &KelofileView::table()
{
    static const PropertyTable<KelofileView> properties = [] {
        using C = KelofileView;
        const auto text = [](const QString &s) { return QVariant(s); };
        PropertyTable<C> t;
        ClassicFaceEntries<C>(t, [](C &c) -> ClassicFace & { return c.d->face; })
            .backColor(0x80000005)
            .foreColor(0x80000008)
            .enabled()
            .font();
        t.add(
            "BorderStyle", QVariant(1), [](const C &c) { return QVariant(c.BorderStyle()); },
            [](C &c, const QVariant &v) { c.d->list->setBorderStyle(CInt(v)); });
        t.add(
            "Path", text(QString()), [](const C &c) { return QVariant(c.d->path); },
            [](C &c, const QVariant &v) { c.d->path = textFromVariant(v); });
        t.add(
            "PathRoot", text(QString()), [](const C &c) { return QVariant(c.d->pathRoot); },
            [](C &c, const QVariant &v) { c.d->pathRoot = textFromVariant(v); });
        t.add(
            "LimitToRoot", QVariant(true), [](const C &c) { return QVariant(c.d->limitToRoot); },
            [](C &c, const QVariant &v) { c.d->limitToRoot = CBool(v); });
        t.add(
            "ShowFolders", QVariant(true), [](const C &c) { return QVariant(c.d->showFolders); },
            [](C &c, const QVariant &v) { c.d->showFolders = CBool(v); });
        t.add(
            "MousePointer", QVariant(0), [](const C &c) { return QVariant(c.MousePointer()); },
            [](C &c, const QVariant &v) { c.d->face.storeMousePointer(CInt(v)); });
        t.add(
            "MouseIcon", QVariant(QPixmap()), [](const C &c) { return QVariant(c.MouseIcon()); },
            [](C &c, const QVariant &v) { c.setMouseIcon(pictureOf(v)); });
        t.add(
            "Picture", QVariant(QPixmap()), [](const C &c) { return QVariant(c.Picture()); },
            [](C &c, const QVariant &v) { c.setPicture(pictureOf(v)); });
        t.add(
            "PictureAlignment", QVariant(0), [](const C &c) { return QVariant(c.PictureAlignment()); },
            [](C &c, const QVariant &v) { c.d->list->setPictureAlignment(CInt(v)); });
        t.add(
            "Arrange", QVariant(0), [](const C &c) { return QVariant(c.Arrange()); },
            [](C &c, const QVariant &v) { c.d->list->setArrange(CInt(v)); });
        t.add(
            "Appearance", QVariant(1), [](const C &c) { return QVariant(c.Appearance()); },
            [](C &c, const QVariant &v) { c.d->list->setAppearance(CInt(v)); });
        t.add(
            "HideColumnHeaders", QVariant(false), [](const C &c) { return QVariant(c.HideColumnHeaders()); },
            [](C &c, const QVariant &v) { c.d->list->setHideColumnHeaders(CBool(v)); });
        t.add(
            "HideSelection", QVariant(false), [](const C &c) { return QVariant(c.HideSelection()); },
            [](C &c, const QVariant &v) { c.d->list->setHideSelection(CBool(v)); });
        t.add(
            "MultiSelect", QVariant(false), [](const C &c) { return QVariant(c.MultiSelect()); },
            [](C &c, const QVariant &v) { c.d->list->setMultiSelect(CBool(v)); });
        t.add(
            "AllowColumnReorder", QVariant(false), [](const C &c) { return QVariant(c.AllowColumnReorder()); },
            [](C &c, const QVariant &v) { c.d->list->setAllowColumnReorder(CBool(v)); });
        t.add(
            "FlatScrollBar", QVariant(false), [](const C &c) { return QVariant(c.FlatScrollBar()); },
            [](C &c, const QVariant &v) { c.d->list->setFlatScrollBar(CBool(v)); });
        t.add(
            "FullRowSelect", QVariant(false), [](const C &c) { return QVariant(c.FullRowSelect()); },
            [](C &c, const QVariant &v) { c.d->list->setFullRowSelect(CBool(v)); });
        t.add(
            "GridLines", QVariant(false), [](const C &c) { return QVariant(c.GridLines()); },
            [](C &c, const QVariant &v) { c.d->list->setGridLines(CBool(v)); });
        t.add(
            "HotTracking", QVariant(false), [](const C &c) { return QVariant(c.HotTracking()); },
            [](C &c, const QVariant &v) { c.d->list->setHotTracking(CBool(v)); });
        t.add(
            "HoverSelection", QVariant(false), [](const C &c) { return QVariant(c.HoverSelection()); },
            [](C &c, const QVariant &v) { c.d->list->setHoverSelection(CBool(v)); });
        t.add(
            "ItemIndex", QVariant(0), [](const C &c) { return QVariant(c.d->itemIndex); }, drop);
        t.add(
            "ItemDisplayName", text(QString()), [](const C &c) { return QVariant(c.d->itemDisplayName); },
            [](C &c, const QVariant &v) { c.d->itemDisplayName = textFromVariant(v); });
        t.add(
            "ItemName", text(QString()), [](const C &c) { return QVariant(c.d->itemName); },
            [](C &c, const QVariant &v) { c.d->itemName = textFromVariant(v); });
        t.add(
            "ItemCount", QVariant(0), [](const C &c) { return QVariant(c.ItemCount()); }, drop);
        t.add(
            "LabelWrap", QVariant(true), [](const C &c) { return QVariant(c.LabelWrap()); },
            [](C &c, const QVariant &v) { c.d->list->setLabelWrap(CBool(v)); });
        t.add(
            "View", QVariant(3), [](const C &c) { return QVariant(c.View()); },
            [](C &c, const QVariant &v) { c.d->list->setViewMode(CInt(v)); });
        t.add(
            "ItemIcon", text(QString()), [](const C &c) { return QVariant(c.d->itemIcon); },
            [](C &c, const QVariant &v) { c.d->itemIcon = textFromVariant(v); });
        t.add(
            "ItemSmallIcon", text(QStringLiteral("0")), [](const C &c) { return QVariant(c.d->itemSmallIcon); },
            [](C &c, const QVariant &v) { c.d->itemSmallIcon = textFromVariant(v); });
        t.add(
            "ItemSelected", QVariant(0), [](const C &c) { return QVariant(c.d->itemSelected); },
            [](C &c, const QVariant &v) { c.d->itemSelected = CInt(v); });
        t.add(
            "ItemTag", text(QString()), [](const C &c) { return QVariant(c.d->itemTag); },
            [](C &c, const QVariant &v) { c.d->itemTag = textFromVariant(v); });
        t.add(
            "ImageIndex", QVariant(0), [](const C &c) { return QVariant(c.d->imageIndex); }, drop);
        t.add(
            "ImageCount", QVariant(0), [](const C &c) { return QVariant(c.ImageCount()); }, drop);
        t.add(
            "ImageSmall", QVariant(false), [](const C &c) { return QVariant(c.d->imageSmall); },
            [](C &c, const QVariant &v) { c.d->imageSmall = CBool(v); });
        t.add(
            "ImageKey", text(QString()), [](const C &c) { return QVariant(c.d->imageKey); },
            [](C &c, const QVariant &v) { c.d->imageKey = textFromVariant(v); });
        t.add(
            "ShowFolderDetails", QVariant(false), [](const C &c) { return QVariant(c.d->showFolderDetails); },
            [](C &c, const QVariant &v) { c.d->showFolderDetails = CBool(v); });
        t.add(
            "ItemBold", QVariant(false), [](const C &c) { return QVariant(c.d->itemBold); },
            [](C &c, const QVariant &v) { c.d->itemBold = CBool(v); });
        t.add(
            "OLEDragMode", QVariant(1), [](const C &c) { return QVariant(c.d->oleDragMode); },
            [](C &c, const QVariant &v) { c.d->oleDragMode = CLng(v); });
        t.add(
            "OLEDropMode", QVariant(2), [](const C &c) { return QVariant(c.d->oleDropMode); },
            [](C &c, const QVariant &v) { c.d->oleDropMode = CLng(v); });
        t.add(
            "RefreshInterval", QVariant(0), [](const C &c) { return QVariant(c.RefreshInterval()); },
            [](C &c, const QVariant &v) { c.d->refreshTimer->setInterval(std::max(0, int(CLng(v)))); });
        t.add(
            "Filter", text(QString()), [](const C &c) { return QVariant(c.d->rules.pattern); },
            [](C &c, const QVariant &v) { c.d->rules.pattern = textFromVariant(v); });
        t.add(
            "TotalSize", QVariant(0), [](const C &c) { return QVariant(c.d->totalSize); },
            [](C &c, const QVariant &v) { c.d->totalSize = CLng(v); });
        t.add(
            "AllowHiddenFiles", QVariant(false), [](const C &c) { return QVariant(c.d->rules.allowHidden); },
            [](C &c, const QVariant &v) { c.d->rules.allowHidden = CBool(v); });
        t.add(
            "AllowSystemFiles", QVariant(false), [](const C &c) { return QVariant(c.d->rules.allowSystem); },
            [](C &c, const QVariant &v) { c.d->rules.allowSystem = CBool(v); });
        t.add(
            "AllowLabelEdit", QVariant(true), [](const C &c) { return QVariant(c.d->allowLabelEdit); },
            [](C &c, const QVariant &v) { c.d->allowLabelEdit = CBool(v); });
        t.add(
            "ImageTag", text(QStringLiteral("0")), [](const C &c) { return QVariant(c.d->imageTag); },
            [](C &c, const QVariant &v) { c.d->imageTag = textFromVariant(v); });
        t.add(
            "DeleteToTrash", QVariant(false), [](const C &c) { return QVariant(c.d->deleteToTrash); },
            [](C &c, const QVariant &v) { c.d->deleteToTrash = CBool(v); });
        t.setInitialiseOrder({"Path", "PathRoot", "Filter", "ItemName", "ItemDisplayName", "ItemIcon", "ItemTag",
            "ImageKey", "ItemSmallIcon", "ImageTag", "LimitToRoot", "ShowFolders", "AllowLabelEdit", "AllowHiddenFiles",
            "AllowSystemFiles", "ShowFolderDetails", "ItemBold", "ImageSmall", "ItemSelected", "TotalSize",
            "OLEDragMode", "OLEDropMode", "DeleteToTrash"});
        return t;
    }();
    return properties;
}
