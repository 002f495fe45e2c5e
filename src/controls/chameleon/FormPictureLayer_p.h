#pragma once

#include <kelocontrols_export.h>

#include <QList>
#include <QObject>
#include <QPixmap>
#include <QPointF>
#include <QPointer>

class QWidget;

namespace Kelocontrols {

/**
 * A picture painted on a form's surface, behind the form's widgets.
 *
 * paint() draws copies of a picture at given positions on the form as it is
 * now. Qt repaints widgets far more often than a classic form host did, so
 * the drawing is kept (rendered once into a layer the size of the form) and
 * painted again from the form's paint events, through an event filter, until
 * clear() or the next paint() replaces it. The layer keeps the form size it
 * was painted for: a form that grows shows no picture in the new room until
 * it is painted again.
 *
 * The layer paints before the form's own paintEvent(), right over its
 * background, so it suits the plain containers forms are made of (QWidget,
 * QDialog, QFrame, QGroupBox); a form class that fills its whole background
 * in paintEvent() hides it.
 */
class KELOCONTROLS_TESTS_EXPORT FormPictureLayer : public QObject
{
    Q_OBJECT
public:
    explicit FormPictureLayer(QObject *parent = nullptr);
    ~FormPictureLayer() override;

    /**
     * Paints @p picture on @p form once at each of @p positions, given in
     * pixels relative to the form's top-left corner, replacing any earlier
     * drawing. A null picture or no positions leave the form clear.
     */
    void paint(QWidget *form, const QPixmap &picture, const QList<QPointF> &positions);

    /// Removes the drawing; the form shows its own background again.
    void clear();

    /// The form painted on, if any.
    QWidget *form() const { return m_form; }
    /// How many copies of the picture the current drawing holds.
    int copies() const { return m_copies; }
    /// The current drawing, transparent where no picture lies.
    QPixmap layer() const { return m_layer; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void attach(QWidget *form);

    QPointer<QWidget> m_form;
    QPixmap m_layer;
    int m_copies = 0;
};

} // namespace Kelocontrols
