#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

#include <QFont>
#include <QString>
#include <QVariant>

namespace Kelocontrols {

/// A saved colour, which may come back as a signed or unsigned 32-bit
/// number; raises Overflow beyond 32 bits and TypeMismatch for non-numbers.
KELOCONTROLS_EXPORT OleColor colorFromVariant(const QVariant &value);

/// A saved text; an empty value gives "", a value with no text form raises TypeMismatch.
KELOCONTROLS_EXPORT QString textFromVariant(const QVariant &value);

/// A saved font; anything else raises TypeMismatch.
KELOCONTROLS_EXPORT QFont fontFromVariant(const QVariant &value);

} // namespace Kelocontrols
