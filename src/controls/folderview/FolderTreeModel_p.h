#pragma once

#include <kelocontrols_export.h>

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>
#include <QString>

#include <functional>
#include <memory>
#include <unordered_set>
#include <vector>

namespace Kelocontrols {

class ImageList;

/**
 * The nodes of the folder tree, as a one-column item model for TreeFolders.
 *
 * A node keeps its key (a folder's full path, a drive's mount point or a
 * pseudo-root's name), its text, its two image keys (as small ids into a
 * shared key table, so a node costs no string of its own for them), its
 * check mark and its children, sorted by text without regard to case (ties
 * by the exact text). Keys are unique without regard to case and found
 * through a hash over the case-folded key, computed on the fly, so no
 * folded copy of any key is kept.
 *
 * Nodes also stand in one list in the order they were added: a node's
 * index (1-based) is its place there, as the control's item members count.
 * Removing a node (with its sub-tree) closes the gap.
 *
 * Pictures come from the ImageList by key; a key that the list lacks shows
 * no picture. A node's check mark shows only on nodes marked checkable.
 */
class KELOCONTROLS_TESTS_EXPORT FolderTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    struct Node
    {
        QString key;
        QString text;
        Node *parent = nullptr;
        std::vector<std::unique_ptr<Node>> children;
        int index = 0; ///< 1-based place in the order of adding
        mutable int rowHint = 0; ///< where rowOf() last found the node among its siblings
        quint16 image = 0; ///< id into the key table
        quint16 selectedImage = 0;
        bool checkable = false;
        bool checked = false;
        bool hasTag = false; ///< the tag lives in a side table: few nodes have one
    };

    explicit FolderTreeModel(ImageList &images, QObject *parent = nullptr);
    ~FolderTreeModel() override;

    /// Removes every node.
    void clear();
    /**
     * Adds a node under @p parent (nullptr: a root) at its sorted place and
     * answers it; nullptr when a node of that key exists already.
     */
    Node *add(
        Node *parent, const QString &key, const QString &text, const QString &image, const QString &selectedImage);
    /// Removes @p node with its sub-tree.
    void remove(Node *node);

    Node *find(const QString &key) const;
    /// The node at 1-based @p index, nullptr outside 1..count().
    Node *at(int index) const;
    int count() const { return int(m_order.size()); }
    const std::vector<std::unique_ptr<Node>> &roots() const { return m_roots; }

    void setText(Node *node, const QString &text);
    QString image(const Node *node) const { return m_keys.at(node->image); }
    QString selectedImage(const Node *node) const { return m_keys.at(node->selectedImage); }
    void setImages(Node *node, const QString &image, const QString &selectedImage);
    /// The node that shows its selected picture ("OPEN_" ...), nullptr for none.
    void setCurrent(const Node *node);
    const Node *current() const { return m_current; }
    void setChecked(Node *node, bool checked);
    QString tag(const Node *node) const;
    void setTag(Node *node, const QString &tag);
    /// Drops the cached pictures after the image list changed; the view then repaints.
    void picturesChanged();

    QModelIndex indexOf(const Node *node) const;
    Node *nodeOf(const QModelIndex &index) const;
    /// A node's place among its siblings.
    int rowOf(const Node *node) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Edits end here: the control decides (setEditHandler) whether the new text stands.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

    /// Called with the node and the edited text; answers whether the edit stands.
    void setEditHandler(std::function<bool(Node *, QString &)> handler) { m_editHandler = std::move(handler); }

private:
    struct KeyHash
    {
        using is_transparent = void;
        size_t operator()(const Node *node) const { return (*this)(node->key); }
        size_t operator()(const QString &key) const;
    };
    struct KeyEqual
    {
        using is_transparent = void;
        bool operator()(const Node *a, const Node *b) const { return (*this)(a->key, b->key); }
        bool operator()(const QString &a, const Node *b) const { return (*this)(a, b->key); }
        bool operator()(const Node *a, const QString &b) const { return (*this)(a->key, b); }
        bool operator()(const QString &a, const QString &b) const;
    };

    std::vector<std::unique_ptr<Node>> &siblingsOf(Node *parent) { return parent ? parent->children : m_roots; }
    const std::vector<std::unique_ptr<Node>> &siblingsOf(const Node *parent) const
    {
        return parent ? parent->children : m_roots;
    }
    /// The row a node of @p text takes among @p siblings.
    static int sortedRow(const std::vector<std::unique_ptr<Node>> &siblings, const QString &text);
    quint16 keyId(const QString &key);
    void forget(Node *node);
    QIcon iconOf(quint16 id) const;

    ImageList &m_images;
    std::vector<std::unique_ptr<Node>> m_roots;
    std::vector<Node *> m_order;
    std::unordered_set<Node *, KeyHash, KeyEqual> m_byKey;
    QHash<const Node *, QString> m_tags;
    std::vector<QString> m_keys; ///< image keys by id; id 0 is ""
    QHash<QString, quint16> m_keyIds;
    mutable QHash<quint16, QIcon> m_icons; ///< pictures by key id, dropped when the image list changes
    std::function<bool(Node *, QString &)> m_editHandler;
    const Node *m_current = nullptr;
};

} // namespace Kelocontrols
