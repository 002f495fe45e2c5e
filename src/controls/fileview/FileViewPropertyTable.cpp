#include "FileViewPropertyTable.h"

#include "Conversions.h"
#include "KelofileView.h"
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
        [](C &c, const QVariant &v) { c.m_list->setBackColor(colorFromVariant(v)); });
    add(
        "ForeColor", QVariant(uint(0x80000008)), [](const C &c) { return QVariant(c.ForeColor()); },
        [](C &c, const QVariant &v) { c.m_list->setForeColor(colorFromVariant(v)); });
    add(
        "Enabled", QVariant(true), [](const C &c) { return QVariant(c.Enabled()); },
        [](C &c, const QVariant &v) { c.m_list->setEnabled(CBool(v)); });
    add(
        "Font", [](const C &c) { return QVariant(c.ambientFont()); }, [](const C &c) { return QVariant(c.Font()); },
        [](C &c, const QVariant &v) { c.m_list->setFont(fontFromVariant(v)); });
    add(
        "BorderStyle", QVariant(1), [](const C &c) { return QVariant(c.BorderStyle()); },
        [](C &c, const QVariant &v) { c.m_list->setBorderStyle(CInt(v)); });
    add(
        "Path", text(QString()), [](const C &c) { return QVariant(c.m_path); },
        [](C &c, const QVariant &v) { c.m_path = textFromVariant(v); });
    add(
        "PathRoot", text(QString()), [](const C &c) { return QVariant(c.m_pathRoot); },
        [](C &c, const QVariant &v) { c.m_pathRoot = textFromVariant(v); });
    add(
        "LimitToRoot", QVariant(true), [](const C &c) { return QVariant(c.m_limitToRoot); },
        [](C &c, const QVariant &v) { c.m_limitToRoot = CBool(v); });
    add(
        "ShowFolders", QVariant(true), [](const C &c) { return QVariant(c.m_showFolders); },
        [](C &c, const QVariant &v) { c.m_showFolders = CBool(v); });
    add(
        "MousePointer", QVariant(0), [](const C &c) { return QVariant(c.MousePointer()); },
        [](C &c, const QVariant &v) { c.m_list->setMousePointer(CInt(v)); });
    add(
        "MouseIcon", QVariant(QPixmap()), [](const C &c) { return QVariant(c.MouseIcon()); },
        [](C &c, const QVariant &v) { c.setMouseIcon(pictureOf(v)); });
    add(
        "Picture", QVariant(QPixmap()), [](const C &c) { return QVariant(c.Picture()); },
        [](C &c, const QVariant &v) { c.setPicture(pictureOf(v)); });
    add(
        "PictureAlignment", QVariant(0), [](const C &c) { return QVariant(c.PictureAlignment()); },
        [](C &c, const QVariant &v) { c.m_list->setPictureAlignment(CInt(v)); });
    add(
        "Arrange", QVariant(0), [](const C &c) { return QVariant(c.Arrange()); },
        [](C &c, const QVariant &v) { c.m_list->setArrange(CInt(v)); });
    add(
        "Appearance", QVariant(1), [](const C &c) { return QVariant(c.Appearance()); },
        [](C &c, const QVariant &v) { c.m_list->setAppearance(CInt(v)); });
    add(
        "HideColumnHeaders", QVariant(false), [](const C &c) { return QVariant(c.HideColumnHeaders()); },
        [](C &c, const QVariant &v) { c.m_list->setHideColumnHeaders(CBool(v)); });
    add(
        "HideSelection", QVariant(false), [](const C &c) { return QVariant(c.HideSelection()); },
        [](C &c, const QVariant &v) { c.m_list->setHideSelection(CBool(v)); });
    add(
        "MultiSelect", QVariant(false), [](const C &c) { return QVariant(c.MultiSelect()); },
        [](C &c, const QVariant &v) { c.m_list->setMultiSelect(CBool(v)); });
    add(
        "AllowColumnReorder", QVariant(false), [](const C &c) { return QVariant(c.AllowColumnReorder()); },
        [](C &c, const QVariant &v) { c.m_list->setAllowColumnReorder(CBool(v)); });
    add(
        "FlatScrollBar", QVariant(false), [](const C &c) { return QVariant(c.FlatScrollBar()); },
        [](C &c, const QVariant &v) { c.m_list->setFlatScrollBar(CBool(v)); });
    add(
        "FullRowSelect", QVariant(false), [](const C &c) { return QVariant(c.FullRowSelect()); },
        [](C &c, const QVariant &v) { c.m_list->setFullRowSelect(CBool(v)); });
    add(
        "GridLines", QVariant(false), [](const C &c) { return QVariant(c.GridLines()); },
        [](C &c, const QVariant &v) { c.m_list->setGridLines(CBool(v)); });
    add(
        "HotTracking", QVariant(false), [](const C &c) { return QVariant(c.HotTracking()); },
        [](C &c, const QVariant &v) { c.m_list->setHotTracking(CBool(v)); });
    add(
        "HoverSelection", QVariant(false), [](const C &c) { return QVariant(c.HoverSelection()); },
        [](C &c, const QVariant &v) { c.m_list->setHoverSelection(CBool(v)); });
    add(
        "ItemIndex", QVariant(0), [](const C &c) { return QVariant(c.m_itemIndex); }, drop);
    add(
        "ItemDisplayName", text(QString()), [](const C &c) { return QVariant(c.m_itemDisplayName); },
        [](C &c, const QVariant &v) { c.m_itemDisplayName = textFromVariant(v); });
    add(
        "ItemName", text(QString()), [](const C &c) { return QVariant(c.m_itemName); },
        [](C &c, const QVariant &v) { c.m_itemName = textFromVariant(v); });
    add(
        "ItemCount", QVariant(0), [](const C &c) { return QVariant(c.ItemCount()); }, drop);
    add(
        "LabelWrap", QVariant(true), [](const C &c) { return QVariant(c.LabelWrap()); },
        [](C &c, const QVariant &v) { c.m_list->setLabelWrap(CBool(v)); });
    add(
        "View", QVariant(3), [](const C &c) { return QVariant(c.View()); },
        [](C &c, const QVariant &v) { c.m_list->setViewMode(CInt(v)); });
    add(
        "ItemIcon", text(QString()), [](const C &c) { return QVariant(c.m_itemIcon); },
        [](C &c, const QVariant &v) { c.m_itemIcon = textFromVariant(v); });
    add(
        "ItemSmallIcon", text(QStringLiteral("0")), [](const C &c) { return QVariant(c.m_itemSmallIcon); },
        [](C &c, const QVariant &v) { c.m_itemSmallIcon = textFromVariant(v); });
    add(
        "ItemSelected", QVariant(0), [](const C &c) { return QVariant(c.m_itemSelected); },
        [](C &c, const QVariant &v) { c.m_itemSelected = CInt(v); });
    add(
        "ItemTag", text(QString()), [](const C &c) { return QVariant(c.m_itemTag); },
        [](C &c, const QVariant &v) { c.m_itemTag = textFromVariant(v); });
    add(
        "ImageIndex", QVariant(0), [](const C &c) { return QVariant(c.m_imageIndex); }, drop);
    add(
        "ImageCount", QVariant(0), [](const C &c) { return QVariant(c.ImageCount()); }, drop);
    add(
        "ImageSmall", QVariant(false), [](const C &c) { return QVariant(c.m_imageSmall); },
        [](C &c, const QVariant &v) { c.m_imageSmall = CBool(v); });
    add(
        "ImageKey", text(QString()), [](const C &c) { return QVariant(c.m_imageKey); },
        [](C &c, const QVariant &v) { c.m_imageKey = textFromVariant(v); });
    add(
        "ShowFolderDetails", QVariant(false), [](const C &c) { return QVariant(c.m_showFolderDetails); },
        [](C &c, const QVariant &v) { c.m_showFolderDetails = CBool(v); });
    add(
        "ItemBold", QVariant(false), [](const C &c) { return QVariant(c.m_itemBold); },
        [](C &c, const QVariant &v) { c.m_itemBold = CBool(v); });
    add(
        "OLEDragMode", QVariant(1), [](const C &c) { return QVariant(c.m_oleDragMode); },
        [](C &c, const QVariant &v) { c.m_oleDragMode = CLng(v); });
    add(
        "OLEDropMode", QVariant(2), [](const C &c) { return QVariant(c.m_oleDropMode); },
        [](C &c, const QVariant &v) { c.m_oleDropMode = CLng(v); });
    add(
        "RefreshInterval", QVariant(0), [](const C &c) { return QVariant(c.RefreshInterval()); },
        [](C &c, const QVariant &v) { c.m_refreshTimer->setInterval(std::max(0, int(CLng(v)))); });
    add(
        "Filter", text(QString()), [](const C &c) { return QVariant(c.m_filter); },
        [](C &c, const QVariant &v) { c.m_filter = textFromVariant(v); });
    add(
        "TotalSize", QVariant(0), [](const C &c) { return QVariant(c.m_totalSize); },
        [](C &c, const QVariant &v) { c.m_totalSize = CLng(v); });
    add(
        "AllowHiddenFiles", QVariant(false), [](const C &c) { return QVariant(c.m_allowHiddenFiles); },
        [](C &c, const QVariant &v) { c.m_allowHiddenFiles = CBool(v); });
    add(
        "AllowSystemFiles", QVariant(false), [](const C &c) { return QVariant(c.m_allowSystemFiles); },
        [](C &c, const QVariant &v) { c.m_allowSystemFiles = CBool(v); });
    add(
        "AllowLabelEdit", QVariant(true), [](const C &c) { return QVariant(c.m_allowLabelEdit); },
        [](C &c, const QVariant &v) { c.m_allowLabelEdit = CBool(v); });
    add(
        "ImageTag", text(QStringLiteral("0")), [](const C &c) { return QVariant(c.m_imageTag); },
        [](C &c, const QVariant &v) { c.m_imageTag = textFromVariant(v); });
}

void FileViewPropertyTable::initialise(QObject &control) const
{
    auto &c = static_cast<KelofileView &>(control);
    c.m_path.clear();
    c.m_pathRoot.clear();
    c.m_filter.clear();
    c.m_itemName.clear();
    c.m_itemDisplayName.clear();
    c.m_itemIcon.clear();
    c.m_itemTag.clear();
    c.m_imageKey.clear();
    c.m_itemSmallIcon = QStringLiteral("0");
    c.m_imageTag = QStringLiteral("0");
    c.m_limitToRoot = true;
    c.m_showFolders = true;
    c.m_allowLabelEdit = true;
    c.m_allowHiddenFiles = false;
    c.m_allowSystemFiles = false;
    c.m_showFolderDetails = false;
    c.m_itemBold = false;
    c.m_imageSmall = false;
    c.m_itemSelected = 0;
    c.m_totalSize = 0;
    c.m_oleDragMode = 1;
    c.m_oleDropMode = 2;
}
