#include "FolderTreeModel_p.h"

#include "ImageList.h"

#include <algorithm>

namespace Kelocontrols {

namespace {

int compareTexts(const QString &a, const QString &b)
{
    const int folded = QString::compare(a, b, Qt::CaseInsensitive);
    return folded != 0 ? folded : QString::compare(a, b, Qt::CaseSensitive);
}

} // namespace

size_t FolderTreeModel::KeyHash::operator()(const QString &key) const
{
    // FNV-1a over the case-folded text; ASCII, nearly all of a path, is folded inline.
    size_t h = 1469598103934665603ull;
    for (const QChar c : key) {
        char16_t u = c.unicode();
        if (u < 0x80) {
            if (u >= 'A' && u <= 'Z') {
                u += 'a' - 'A';
            }
        } else {
            u = c.toCaseFolded().unicode();
        }
        h = (h ^ u) * 1099511628211ull;
    }
    return h;
}

bool FolderTreeModel::KeyEqual::operator()(const QString &a, const QString &b) const
{
    return a.size() == b.size() && QString::compare(a, b, Qt::CaseInsensitive) == 0;
}

FolderTreeModel::FolderTreeModel(ImageList &images, QObject *parent)
    : QAbstractItemModel(parent)
    , m_images(images)
{
    m_keys.emplace_back();
    m_keyIds.insert(QString(), 0);
}

FolderTreeModel::~FolderTreeModel() = default;

void FolderTreeModel::clear()
{
    beginResetModel();
    m_byKey.clear();
    m_current = nullptr;
    m_order.clear();
    m_tags.clear();
    m_roots.clear();
    endResetModel();
}

int FolderTreeModel::sortedRow(const std::vector<std::unique_ptr<Node>> &siblings, const QString &text)
{
    const auto it = std::upper_bound(siblings.begin(), siblings.end(), text,
        [](const QString &t, const std::unique_ptr<Node> &n) { return compareTexts(t, n->text) < 0; });
    return int(it - siblings.begin());
}

FolderTreeModel::Node *FolderTreeModel::add(
    Node *parent, const QString &key, const QString &text, const QString &image, const QString &selectedImage)
{
    auto node = std::make_unique<Node>();
    node->key = key;
    Node *raw = node.get();
    if (!m_byKey.insert(raw).second) {
        return nullptr; // that key has a node already
    }
    node->text = text;
    node->parent = parent;
    node->image = keyId(image);
    node->selectedImage = keyId(selectedImage);
    auto &siblings = siblingsOf(parent);
    const int row = sortedRow(siblings, text);
    beginInsertRows(parent ? indexOf(parent) : QModelIndex(), row, row);
    siblings.insert(siblings.begin() + row, std::move(node));
    m_order.push_back(raw);
    raw->index = int(m_order.size());
    endInsertRows();
    return raw;
}

void FolderTreeModel::forget(Node *node)
{
    for (const auto &child : node->children) {
        forget(child.get());
    }
    m_byKey.erase(node);
    if (m_current == node) {
        m_current = nullptr;
    }
    if (node->hasTag) {
        m_tags.remove(node);
    }
    m_order[size_t(node->index - 1)] = nullptr;
}

void FolderTreeModel::remove(Node *node)
{
    if (!node) {
        return;
    }
    auto &siblings = siblingsOf(node->parent);
    const int row = rowOf(node);
    beginRemoveRows(node->parent ? indexOf(node->parent) : QModelIndex(), row, row);
    forget(node);
    // Close the gaps the sub-tree left in the order of adding.
    m_order.erase(std::remove(m_order.begin(), m_order.end(), nullptr), m_order.end());
    for (size_t i = 0; i < m_order.size(); ++i) {
        m_order[i]->index = int(i) + 1;
    }
    siblings.erase(siblings.begin() + row);
    endRemoveRows();
}

FolderTreeModel::Node *FolderTreeModel::find(const QString &key) const
{
    const auto it = m_byKey.find(key);
    return it == m_byKey.end() ? nullptr : *it;
}

FolderTreeModel::Node *FolderTreeModel::at(int index) const
{
    return index >= 1 && index <= count() ? m_order[size_t(index - 1)] : nullptr;
}

void FolderTreeModel::setText(Node *node, const QString &text)
{
    if (node->text == text) {
        return;
    }
    // Keep the siblings sorted: take the node out and put it back at its new place.
    auto &siblings = siblingsOf(node->parent);
    const QModelIndex parentIndex = node->parent ? indexOf(node->parent) : QModelIndex();
    const int from = rowOf(node);
    std::unique_ptr<Node> owned = std::move(siblings[size_t(from)]);
    siblings.erase(siblings.begin() + from);
    const int to = sortedRow(siblings, text);
    siblings.insert(siblings.begin() + from, std::move(owned)); // back for the move notification
    node->text = text;
    if (to != from && beginMoveRows(parentIndex, from, from, parentIndex, to > from ? to + 1 : to)) {
        std::unique_ptr<Node> moving = std::move(siblings[size_t(from)]);
        siblings.erase(siblings.begin() + from);
        siblings.insert(siblings.begin() + to, std::move(moving));
        endMoveRows();
    }
    const QModelIndex i = indexOf(node);
    Q_EMIT dataChanged(i, i);
}

void FolderTreeModel::setImages(Node *node, const QString &image, const QString &selectedImage)
{
    node->image = keyId(image);
    node->selectedImage = keyId(selectedImage);
    const QModelIndex i = indexOf(node);
    Q_EMIT dataChanged(i, i, {Qt::DecorationRole});
}

void FolderTreeModel::setCurrent(const Node *node)
{
    const Node *old = m_current;
    m_current = node;
    for (const Node *n : {old, node}) {
        if (n && (n == node || old != node)) {
            const QModelIndex i = indexOf(n);
            Q_EMIT dataChanged(i, i, {Qt::DecorationRole});
        }
    }
}

void FolderTreeModel::setChecked(Node *node, bool checked)
{
    node->checkable = true;
    node->checked = checked;
    const QModelIndex i = indexOf(node);
    Q_EMIT dataChanged(i, i, {Qt::CheckStateRole});
}

QString FolderTreeModel::tag(const Node *node) const
{
    return node->hasTag ? m_tags.value(node) : QString();
}

void FolderTreeModel::setTag(Node *node, const QString &tag)
{
    node->hasTag = !tag.isEmpty();
    if (node->hasTag) {
        m_tags.insert(node, tag);
    } else {
        m_tags.remove(node);
    }
}

void FolderTreeModel::picturesChanged()
{
    m_icons.clear();
}

quint16 FolderTreeModel::keyId(const QString &key)
{
    const auto it = m_keyIds.constFind(key);
    if (it != m_keyIds.constEnd()) {
        return it.value();
    }
    const auto id = quint16(std::min<size_t>(m_keys.size(), 0xffff));
    if (id == 0xffff) {
        return 0; // more distinct keys than any image list holds: show none
    }
    m_keys.push_back(key);
    m_keyIds.insert(key, id);
    return id;
}

QIcon FolderTreeModel::iconOf(quint16 id) const
{
    const auto it = m_icons.constFind(id);
    if (it != m_icons.constEnd()) {
        return it.value();
    }
    const QString &key = m_keys.at(id);
    QIcon icon;
    if (!key.isEmpty() && m_images.contains(key)) {
        icon = QIcon(m_images.picture(key));
    }
    m_icons.insert(id, icon);
    return icon;
}

int FolderTreeModel::rowOf(const Node *node) const
{
    const auto &siblings = siblingsOf(node->parent);
    if (node->rowHint < int(siblings.size()) && siblings[size_t(node->rowHint)].get() == node) {
        return node->rowHint;
    }
    // Siblings are sorted by text: search from the first of equal text.
    int row = sortedRow(siblings, node->text);
    while (row > 0 && compareTexts(siblings[size_t(row - 1)]->text, node->text) >= 0) {
        --row;
    }
    for (int r = row; r < int(siblings.size()); ++r) {
        if (siblings[size_t(r)].get() == node) {
            return node->rowHint = r;
        }
    }
    for (int r = 0; r < int(siblings.size()); ++r) { // a text changed behind our back
        if (siblings[size_t(r)].get() == node) {
            return node->rowHint = r;
        }
    }
    return -1;
}

QModelIndex FolderTreeModel::indexOf(const Node *node) const
{
    if (!node) {
        return {};
    }
    return createIndex(rowOf(node), 0, const_cast<Node *>(node));
}

FolderTreeModel::Node *FolderTreeModel::nodeOf(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<Node *>(index.internalPointer()) : nullptr;
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    const auto &siblings = siblingsOf(nodeOf(parent));
    if (column != 0 || row < 0 || row >= int(siblings.size())) {
        return {};
    }
    return createIndex(row, 0, siblings[size_t(row)].get());
}

QModelIndex FolderTreeModel::parent(const QModelIndex &child) const
{
    const Node *node = nodeOf(child);
    return node ? indexOf(node->parent) : QModelIndex();
}

int FolderTreeModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0) {
        return 0;
    }
    return int(siblingsOf(nodeOf(parent)).size());
}

int FolderTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

bool FolderTreeModel::hasChildren(const QModelIndex &parent) const
{
    return rowCount(parent) > 0;
}

QVariant FolderTreeModel::data(const QModelIndex &index, int role) const
{
    const Node *node = nodeOf(index);
    if (!node) {
        return {};
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return node->text;
    case Qt::DecorationRole:
        return iconOf(node == m_current ? node->selectedImage : node->image);
    case Qt::CheckStateRole:
        return node->checkable ? QVariant(node->checked ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::ToolTipRole:
        return node->key;
    case Qt::UserRole:
        return node->key;
    default:
        return {};
    }
}

Qt::ItemFlags FolderTreeModel::flags(const QModelIndex &index) const
{
    const Node *node = nodeOf(index);
    if (!node) {
        return Qt::ItemIsDropEnabled;
    }
    Qt::ItemFlags f
        = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    return f;
}

bool FolderTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    Node *node = nodeOf(index);
    if (!node || role != Qt::EditRole || !m_editHandler) {
        return false;
    }
    QString text = value.toString();
    return m_editHandler(node, text);
}

} // namespace Kelocontrols
