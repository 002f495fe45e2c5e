#pragma once

#include "TransferMonitor.h"

#include <kelocontrols_export.h>

#include <QDialog>

#include <memory>

namespace Kelocontrols {

/**
 * The progress of a long copy or move: a modal dialog with the name of the
 * file being written, the files and bytes done, and a Cancel button.
 *
 * The dialog is a TransferMonitor handed to FileOperations. It stays hidden
 * while the work is short and appears once the operation has run for
 * showDelay() milliseconds (500 unless set otherwise). While it is up, every
 * question isCancelled() lets the event loop run (at most every 30 ms), so
 * the dialog and the windows behind it keep painting; being application
 * modal, it keeps the user from starting other work meanwhile. Cancel (or
 * closing the dialog) makes isCancelled() answer true from then on.
 *
 * Widgets (objectName): `labAction` ("Copying..." or "Moving..."), `labName`
 * (the current file's name), `labCount` ("3 files, 1.5 MB done"),
 * `barProgress` (a busy bar) and `cmdCancel`.
 */
class KELOCONTROLS_EXPORT FileProgressDialog
    : public QDialog
    , public TransferMonitor
{
    Q_OBJECT

public:
    /// A dialog for a copy (@p copy true) or a move; the clock starts now.
    explicit FileProgressDialog(bool copy, QWidget *parent = nullptr);
    ~FileProgressDialog() override;

    void beginItem(const QString &name, qint64 bytes) override;
    void addBytes(qint64 bytes) override;
    void endItem() override;
    bool isCancelled() override;

    /// The files completed so far.
    int filesDone() const;
    /// The bytes written so far.
    qint64 bytesDone() const;
    /// The name of the file being written.
    QString currentName() const;

    /// How long an operation runs before the dialog appears, for every new dialog; 500 ms by default.
    static int showDelay();
    /// Sets showDelay(); 0 shows the dialog at the first question.
    static void setShowDelay(int milliseconds);

protected:
    void reject() override;

private:
    void cancel();
    void appear();
    void updateTexts();

    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace Kelocontrols
