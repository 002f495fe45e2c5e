#pragma once

#include <kelocontrols_export.h>

#include "ListBackground.h"

#include <QListView>

namespace Kelocontrols {

/**
 * The icon, small-icon and list views of a ListView: a QListView that the
 * ListView sets up for each mode, with a background picture.
 */
class KELOCONTROLS_EXPORT IconView : public QListView
{
    Q_OBJECT
public:
    explicit IconView(QWidget *parent = nullptr);

    void setBackground(const ListBackground *background) { m_background = background; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    const ListBackground *m_background = nullptr;
};

} // namespace Kelocontrols
