#pragma once

#include <kelocontrols_export.h>

#include <QString>

#include <functional>

namespace Kelocontrols {

/// Style values of a message box: buttons + icon + default button, added.
namespace MsgBoxStyle {
constexpr int OKOnly = 0;
constexpr int OKCancel = 1;
constexpr int AbortRetryIgnore = 2;
constexpr int YesNoCancel = 3;
constexpr int YesNo = 4;
constexpr int RetryCancel = 5;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;
constexpr int Information = 64;
constexpr int DefaultButton2 = 256;
constexpr int DefaultButton3 = 512;
} // namespace MsgBoxStyle

/// The answers of a message box.
namespace MsgBoxResult {
constexpr int OK = 1;
constexpr int Cancel = 2;
constexpr int Abort = 3;
constexpr int Retry = 4;
constexpr int Ignore = 5;
constexpr int Yes = 6;
constexpr int No = 7;
} // namespace MsgBoxResult

using MsgBoxHandler = std::function<int(const QString &Prompt, int Buttons, const QString &Title)>;

/**
 * Shows a modal message box and returns the button the user chose.
 *
 * Every message of the library goes through here. `Buttons` is the sum of a
 * MsgBoxStyle button set, icon and default button (0 = OK, 16 = OK with stop
 * sign, 51 = Yes/No/Cancel with exclamation, 52 = Yes/No with exclamation,
 * 64 = OK with information); multi-line prompts use CR-LF. An empty `Title`
 * shows the application's display name.
 *
 * By default a QMessageBox is shown; setMsgBoxHandler() replaces it, which is
 * how tests and hosts script the answers.
 */
KELOCONTROLS_EXPORT int MsgBox(const QString &Prompt, int Buttons = 0, const QString &Title = QString());

/// Replaces the function that shows message boxes and returns the previous
/// one (showStandardMsgBox when the default was in force, so it can be called
/// or restored); an empty handler restores the default QMessageBox.
KELOCONTROLS_EXPORT MsgBoxHandler setMsgBoxHandler(MsgBoxHandler handler);

/// The standard box: a QMessageBox with the buttons, icon and default
/// button of the style value.
KELOCONTROLS_EXPORT int showStandardMsgBox(const QString &Prompt, int Buttons, const QString &Title);

} // namespace Kelocontrols
