#pragma once

#include <kelocontrols_export.h>

#include <QString>
#include <QtGlobal>

namespace Kelocontrols {

/**
 * Watches a long copy or move of FileOperations: it is told which file is
 * being written and how many bytes are done, and is asked between pieces of
 * work whether to go on.
 *
 * FileProgressDialog is the monitor the user sees; tests pass their own to
 * stop an operation at a chosen point.
 */
class KELOCONTROLS_EXPORT TransferMonitor
{
public:
    virtual ~TransferMonitor();

    /// A file, link or folder named @p name begins; @p bytes is its size (0 for links and folders).
    virtual void beginItem(const QString &name, qint64 bytes) = 0;
    /// @p bytes more of the current item are written.
    virtual void addBytes(qint64 bytes) = 0;
    /// The current item is complete and in place.
    virtual void endItem() = 0;
    /// True once the operation should stop; asked between items and between pieces of a large file.
    virtual bool isCancelled() = 0;
};

} // namespace Kelocontrols
