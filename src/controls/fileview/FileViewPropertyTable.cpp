#include "FileViewPropertyTable_p.h"

#include "Conversions.h"
#include "KelofileView_p.h"
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

const FileViewPropertyTable &FileViewPropertyTable::instance()
{
    static const FileViewPropertyTable table;
    return table;
}

FileViewPropertyTable::FileViewPropertyTable()
{
    using C = KelofileView;
    const auto text = [](const QString &s) { return QVariant(s); };

    add(
        "BackColor", QVariant(uint(0x80000005)), [](const C &c) { return QVariant(c.BackColor()); },
        [](C &c, const QVariant &v) { c.d->list->setBackColor(colorFromVariant(v)); });
    add(
        "ForeColor", QVariant(uint(0x80000008)), [](const C &c) { return QVariant(c.ForeColor()); },
        [](C &c, const QVariant &v) { c.d->list->setForeColor(colorFromVariant(v)); });
    add(
        "Enabled", QVariant(true), [](const C &c) { return QVariant(c.Enabled()); },
        [](C &c, const QVariant &v) { c.d->list->setEnabled(CBool(v)); });
    add(
        "Font", [](const C &c) { return QVariant(c.ambientFont()); }, [](const C &c) { return QVariant(c.Font()); },
        [](C &c, const QVariant &v) { c.d->list->setFont(fontFromVariant(v)); });
    add(
        "BorderStyle", QVariant(1), [](const C &c) { return QVariant(c.BorderStyle()); },
        [](C &c, const QVariant &v) { c.d->list->setBorderStyle(CInt(v)); });
    add(
        "Path", text(QString()), [](const C &c) { return QVariant(c.d->path); },
        [](C &c, const QVariant &v) { c.d->path = textFromVariant(v); });
    add(
        "PathRoot", text(QString()), [](const C &c) { return QVariant(c.d->pathRoot); },
        [](C &c, const QVariant &v) { c.d->pathRoot = textFromVariant(v); });
    add(
        "LimitToRoot", QVariant(true), [](const C &c) { return QVariant(c.d->limitToRoot); },
        [](C &c, const QVariant &v) { c.d->limitToRoot = CBool(v); });
    add(
        "ShowFolders", QVariant(true), [](const C &c) { return QVariant(c.d->showFolders); },
        [](C &c, const QVariant &v) { c.d->showFolders = CBool(v); });
    add(
        "MousePointer", QVariant(0), [](const C &c) { return QVariant(c.MousePointer()); },
        [](C &c, const QVariant &v) { c.d->list->setMousePointer(CInt(v)); });
    add(
        "MouseIcon", QVariant(QPixmap()), [](const C &c) { return QVariant(c.MouseIcon()); },
        [](C &c, const QVariant &v) { c.setMouseIcon(pictureOf(v)); });
    add(
        "Picture", QVariant(QPixmap()), [](const C &c) { return QVariant(c.Picture()); },
        [](C &c, const QVariant &v) { c.setPicture(pictureOf(v)); });
    add(
        "PictureAlignment", QVariant(0), [](const C &c) { return QVariant(c.PictureAlignment()); },
        [](C &c, const QVariant &v) { c.d->list->setPictureAlignment(CInt(v)); });
    add(
        "Arrange", QVariant(0), [](const C &c) { return QVariant(c.Arrange()); },
        [](C &c, const QVariant &v) { c.d->list->setArrange(CInt(v)); });
    add(
        "Appearance", QVariant(1), [](const C &c) { return QVariant(c.Appearance()); },
        [](C &c, const QVariant &v) { c.d->list->setAppearance(CInt(v)); });
    add(
        "HideColumnHeaders", QVariant(false), [](const C &c) { return QVariant(c.HideColumnHeaders()); },
        [](C &c, const QVariant &v) { c.d->list->setHideColumnHeaders(CBool(v)); });
    add(
        "HideSelection", QVariant(false), [](const C &c) { return QVariant(c.HideSelection()); },
        [](C &c, const QVariant &v) { c.d->list->setHideSelection(CBool(v)); });
    add(
        "MultiSelect", QVariant(false), [](const C &c) { return QVariant(c.MultiSelect()); },
        [](C &c, const QVariant &v) { c.d->list->setMultiSelect(CBool(v)); });
    add(
        "AllowColumnReorder", QVariant(false), [](const C &c) { return QVariant(c.AllowColumnReorder()); },
        [](C &c, const QVariant &v) { c.d->list->setAllowColumnReorder(CBool(v)); });
    add(
        "FlatScrollBar", QVariant(false), [](const C &c) { return QVariant(c.FlatScrollBar()); },
        [](C &c, const QVariant &v) { c.d->list->setFlatScrollBar(CBool(v)); });
    add(
        "FullRowSelect", QVariant(false), [](const C &c) { return QVariant(c.FullRowSelect()); },
        [](C &c, const QVariant &v) { c.d->list->setFullRowSelect(CBool(v)); });
    add(
        "GridLines", QVariant(false), [](const C &c) { return QVariant(c.GridLines()); },
        [](C &c, const QVariant &v) { c.d->list->setGridLines(CBool(v)); });
    add(
        "HotTracking", QVariant(false), [](const C &c) { return QVariant(c.HotTracking()); },
        [](C &c, const QVariant &v) { c.d->list->setHotTracking(CBool(v)); });
    add(
        "HoverSelection", QVariant(false), [](const C &c) { return QVariant(c.HoverSelection()); },
        [](C &c, const QVariant &v) { c.d->list->setHoverSelection(CBool(v)); });
    add(
        "ItemIndex", QVariant(0), [](const C &c) { return QVariant(c.d->itemIndex); }, drop);
    add(
        "ItemDisplayName", text(QString()), [](const C &c) { return QVariant(c.d->itemDisplayName); },
        [](C &c, const QVariant &v) { c.d->itemDisplayName = textFromVariant(v); });
    add(
        "ItemName", text(QString()), [](const C &c) { return QVariant(c.d->itemName); },
        [](C &c, const QVariant &v) { c.d->itemName = textFromVariant(v); });
    add(
        "ItemCount", QVariant(0), [](const C &c) { return QVariant(c.ItemCount()); }, drop);
    add(
        "LabelWrap", QVariant(true), [](const C &c) { return QVariant(c.LabelWrap()); },
        [](C &c, const QVariant &v) { c.d->list->setLabelWrap(CBool(v)); });
    add(
        "View", QVariant(3), [](const C &c) { return QVariant(c.View()); },
        [](C &c, const QVariant &v) { c.d->list->setViewMode(CInt(v)); });
    add(
        "ItemIcon", text(QString()), [](const C &c) { return QVariant(c.d->itemIcon); },
        [](C &c, const QVariant &v) { c.d->itemIcon = textFromVariant(v); });
    add(
        "ItemSmallIcon", text(QStringLiteral("0")), [](const C &c) { return QVariant(c.d->itemSmallIcon); },
        [](C &c, const QVariant &v) { c.d->itemSmallIcon = textFromVariant(v); });
    add(
        "ItemSelected", QVariant(0), [](const C &c) { return QVariant(c.d->itemSelected); },
        [](C &c, const QVariant &v) { c.d->itemSelected = CInt(v); });
    add(
        "ItemTag", text(QString()), [](const C &c) { return QVariant(c.d->itemTag); },
        [](C &c, const QVariant &v) { c.d->itemTag = textFromVariant(v); });
    add(
        "ImageIndex", QVariant(0), [](const C &c) { return QVariant(c.d->imageIndex); }, drop);
    add(
        "ImageCount", QVariant(0), [](const C &c) { return QVariant(c.ImageCount()); }, drop);
    add(
        "ImageSmall", QVariant(false), [](const C &c) { return QVariant(c.d->imageSmall); },
        [](C &c, const QVariant &v) { c.d->imageSmall = CBool(v); });
    add(
        "ImageKey", text(QString()), [](const C &c) { return QVariant(c.d->imageKey); },
        [](C &c, const QVariant &v) { c.d->imageKey = textFromVariant(v); });
    add(
        "ShowFolderDetails", QVariant(false), [](const C &c) { return QVariant(c.d->showFolderDetails); },
        [](C &c, const QVariant &v) { c.d->showFolderDetails = CBool(v); });
    add(
        "ItemBold", QVariant(false), [](const C &c) { return QVariant(c.d->itemBold); },
        [](C &c, const QVariant &v) { c.d->itemBold = CBool(v); });
    add(
        "OLEDragMode", QVariant(1), [](const C &c) { return QVariant(c.d->oleDragMode); },
        [](C &c, const QVariant &v) { c.d->oleDragMode = CLng(v); });
    add(
        "OLEDropMode", QVariant(2), [](const C &c) { return QVariant(c.d->oleDropMode); },
        [](C &c, const QVariant &v) { c.d->oleDropMode = CLng(v); });
    add(
        "RefreshInterval", QVariant(0), [](const C &c) { return QVariant(c.RefreshInterval()); },
        [](C &c, const QVariant &v) { c.d->refreshTimer->setInterval(std::max(0, int(CLng(v)))); });
    add(
        "Filter", text(QString()), [](const C &c) { return QVariant(c.d->rules.pattern); },
        [](C &c, const QVariant &v) { c.d->rules.pattern = textFromVariant(v); });
    add(
        "TotalSize", QVariant(0), [](const C &c) { return QVariant(c.d->totalSize); },
        [](C &c, const QVariant &v) { c.d->totalSize = CLng(v); });
    add(
        "AllowHiddenFiles", QVariant(false), [](const C &c) { return QVariant(c.d->rules.allowHidden); },
        [](C &c, const QVariant &v) { c.d->rules.allowHidden = CBool(v); });
    add(
        "AllowSystemFiles", QVariant(false), [](const C &c) { return QVariant(c.d->rules.allowSystem); },
        [](C &c, const QVariant &v) { c.d->rules.allowSystem = CBool(v); });
    add(
        "AllowLabelEdit", QVariant(true), [](const C &c) { return QVariant(c.d->allowLabelEdit); },
        [](C &c, const QVariant &v) { c.d->allowLabelEdit = CBool(v); });
    add(
        "ImageTag", text(QStringLiteral("0")), [](const C &c) { return QVariant(c.d->imageTag); },
        [](C &c, const QVariant &v) { c.d->imageTag = textFromVariant(v); });
    add(
        "DeleteToTrash", QVariant(false), [](const C &c) { return QVariant(c.d->deleteToTrash); },
        [](C &c, const QVariant &v) { c.d->deleteToTrash = CBool(v); });
}

void FileViewPropertyTable::initialise(QObject &control) const
{
    auto &c = static_cast<KelofileView &>(control);
    c.d->path.clear();
    c.d->pathRoot.clear();
    c.d->rules.pattern.clear();
    c.d->itemName.clear();
    c.d->itemDisplayName.clear();
    c.d->itemIcon.clear();
    c.d->itemTag.clear();
    c.d->imageKey.clear();
    c.d->itemSmallIcon = QStringLiteral("0");
    c.d->imageTag = QStringLiteral("0");
    c.d->limitToRoot = true;
    c.d->showFolders = true;
    c.d->allowLabelEdit = true;
    c.d->rules.allowHidden = false;
    c.d->rules.allowSystem = false;
    c.d->showFolderDetails = false;
    c.d->itemBold = false;
    c.d->imageSmall = false;
    c.d->itemSelected = 0;
    c.d->totalSize = 0;
    c.d->oleDragMode = 1;
    c.d->oleDropMode = 2;
    c.d->deleteToTrash = false;
}
