#pragma once

#include <QObject>
#include <QPointer>
#include <QVariant>

class Kelochameleon;
class QDesignerFormWindowInterface;

namespace Kelocontrols::Designer {

/**
 * The object the chameleon's property page edits inside Qt Designer: it
 * stands for one chameleon on a form, reads its properties straight from the
 * widget and writes them through the form window's cursor, so that every
 * change is an undoable command and marks the property as changed (saved in
 * the .ui file).
 *
 * GetTheme() and SaveTheme() call the chameleon's own methods. A theme read
 * into the chameleon is replayed through the cursor as well, as one command
 * "Get Theme", so it too can be undone and is saved with the form. Without a
 * form window (a chameleon outside a form) the writes go to the widget
 * directly.
 */
class ChameleonDesignerProxy : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int ColorMinimum READ ColorMinimum WRITE setColorMinimum)
    Q_PROPERTY(int ColorMaximum READ ColorMaximum WRITE setColorMaximum)
    Q_PROPERTY(int ColorStepRate READ ColorStepRate WRITE setColorStepRate)
    Q_PROPERTY(int Interval READ Interval WRITE setInterval)
    Q_PROPERTY(QString ThemeName READ ThemeName WRITE setThemeName)
    Q_PROPERTY(bool ThemeIsUsed READ ThemeIsUsed WRITE setThemeIsUsed)
    Q_PROPERTY(QString BackgroundPicture READ BackgroundPicture WRITE setBackgroundPicture)

public:
    ChameleonDesignerProxy(
        Kelochameleon *chameleon, QDesignerFormWindowInterface *formWindow, QObject *parent = nullptr);

    int ColorMinimum() const { return read("ColorMinimum").toInt(); }
    void setColorMinimum(int value) { write("ColorMinimum", value); }
    int ColorMaximum() const { return read("ColorMaximum").toInt(); }
    void setColorMaximum(int value) { write("ColorMaximum", value); }
    int ColorStepRate() const { return read("ColorStepRate").toInt(); }
    void setColorStepRate(int value) { write("ColorStepRate", value); }
    int Interval() const { return read("Interval").toInt(); }
    void setInterval(int value) { write("Interval", value); }
    QString ThemeName() const { return read("ThemeName").toString(); }
    void setThemeName(const QString &value) { write("ThemeName", value); }
    bool ThemeIsUsed() const { return read("ThemeIsUsed").toBool(); }
    void setThemeIsUsed(bool value) { write("ThemeIsUsed", value); }
    QString BackgroundPicture() const { return read("BackgroundPicture").toString(); }
    void setBackgroundPicture(const QString &value) { write("BackgroundPicture", value); }

    /// The chameleon's GetTheme(); what it read is recorded as one undoable command.
    Q_INVOKABLE bool GetTheme();
    /// The chameleon's SaveTheme(); an empty theme name is first set to "DefaultTheme" as a command.
    Q_INVOKABLE QVariant SaveTheme();

    /// Groups the writes that follow into one undoable command until endCommand().
    void beginCommand(const QString &description);
    void endCommand();

private:
    QVariant read(const char *name) const;
    void write(const char *name, const QVariant &value);
    QVariantMap themeValues() const;
    void putBack(const QVariantMap &values);

    QPointer<Kelochameleon> m_chameleon;
    QPointer<QDesignerFormWindowInterface> m_formWindow;
};

} // namespace Kelocontrols::Designer
