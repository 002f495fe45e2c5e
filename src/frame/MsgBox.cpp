#include "MsgBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

#include <utility>

namespace Kelocontrols {

namespace {

MsgBoxHandler &currentHandler()
{
    static MsgBoxHandler handler;
    return handler;
}

QList<QPair<QMessageBox::StandardButton, int>> buttonsOf(int style)
{
    using B = QMessageBox;
    switch (style & 7) {
    case MsgBoxStyle::OKCancel:
        return {{B::Ok, MsgBoxResult::OK}, {B::Cancel, MsgBoxResult::Cancel}};
    case MsgBoxStyle::AbortRetryIgnore:
        return {{B::Abort, MsgBoxResult::Abort}, {B::Retry, MsgBoxResult::Retry}, {B::Ignore, MsgBoxResult::Ignore}};
    case MsgBoxStyle::YesNoCancel:
        return {{B::Yes, MsgBoxResult::Yes}, {B::No, MsgBoxResult::No}, {B::Cancel, MsgBoxResult::Cancel}};
    case MsgBoxStyle::YesNo:
        return {{B::Yes, MsgBoxResult::Yes}, {B::No, MsgBoxResult::No}};
    case MsgBoxStyle::RetryCancel:
        return {{B::Retry, MsgBoxResult::Retry}, {B::Cancel, MsgBoxResult::Cancel}};
    default:
        return {{B::Ok, MsgBoxResult::OK}};
    }
}

QMessageBox::Icon iconOf(int style)
{
    switch (style & 0x70) {
    case MsgBoxStyle::Critical:
        return QMessageBox::Critical;
    case MsgBoxStyle::Question:
        return QMessageBox::Question;
    case MsgBoxStyle::Exclamation:
        return QMessageBox::Warning;
    case MsgBoxStyle::Information:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

} // namespace

int showStandardMsgBox(const QString &Prompt, int Buttons, const QString &Title)
{
    const auto buttons = buttonsOf(Buttons);
    const int defaultIndex = qMin(int((Buttons & 0x300) >> 8), int(buttons.size()) - 1);
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        // Without a widget application there is nobody to ask: the default button answers.
        return buttons.at(defaultIndex).second;
    }
    QMessageBox box(iconOf(Buttons), Title.isEmpty() ? QGuiApplication::applicationDisplayName() : Title,
        QString(Prompt).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    for (const auto &[button, code] : buttons) {
        box.addButton(button);
    }
    box.setDefaultButton(buttons.at(defaultIndex).first);
    if (buttons.size() > 1 && (Buttons & 7) != MsgBoxStyle::YesNo && (Buttons & 7) != MsgBoxStyle::AbortRetryIgnore) {
        box.setEscapeButton(buttons.last().first);
    }
    box.exec();
    const auto clicked = box.standardButton(box.clickedButton());
    for (const auto &[button, code] : buttons) {
        if (button == clicked) {
            return code;
        }
    }
    // Closed without a button (Escape or the window's close box).
    return (Buttons & 7) == MsgBoxStyle::OKOnly ? MsgBoxResult::OK : MsgBoxResult::Cancel;
}

int MsgBox(const QString &Prompt, int Buttons, const QString &Title)
{
    const MsgBoxHandler &handler = currentHandler();
    return handler ? handler(Prompt, Buttons, Title) : showStandardMsgBox(Prompt, Buttons, Title);
}

MsgBoxHandler setMsgBoxHandler(MsgBoxHandler handler)
{
    MsgBoxHandler previous = std::exchange(currentHandler(), std::move(handler));
    // Hand back something callable even when the default was in force, so a
    // host can chain to it as well as restore it.
    return previous ? previous : MsgBoxHandler(&showStandardMsgBox);
}

} // namespace Kelocontrols
