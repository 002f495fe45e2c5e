#include "Recordset.h"

#include "Conversions.h"
#include "RuntimeError.h"

namespace Kelocontrols {

namespace {

bool holdsText(const QVariant &value)
{
    const int type = value.typeId();
    return type == QMetaType::QString || type == QMetaType::QByteArray || type == QMetaType::QChar;
}

bool holdsNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

[[noreturn]] void raiseItemNotFound()
{
    throw RuntimeError(Recordset::ItemNotFound, Recordset::itemNotFoundText());
}

} // namespace

QString Recordset::itemNotFoundText()
{
    return QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal.");
}

QString Recordset::noCurrentRecordText()
{
    return QStringLiteral("Either BOF or EOF is True, or the current record has been deleted. Requested operation "
                          "requires a current record.");
}

QString Recordset::objectClosedText()
{
    return QStringLiteral("Operation is not allowed when the object is closed.");
}

QString Recordset::cannotMoveBackText()
{
    return QStringLiteral("The recordset is forward-only and cannot move back to its first record.");
}

Recordset::~Recordset() = default;

Recordset::Field Recordset::Fields(const QVariant &nameOrPosition) const
{
    if (holdsText(nameOrPosition) && !nameOrPosition.isNull()) {
        return Field(this, positionOfName(nameOrPosition.toString()));
    }
    if (holdsNumber(nameOrPosition) && !nameOrPosition.isNull()) {
        return Field(this, positionOfNumber(nameOrPosition));
    }
    raiseItemNotFound();
}

void Recordset::checkPosition(int position) const
{
    if (position < 0 || position >= FieldCount()) {
        raiseItemNotFound();
    }
}

int Recordset::positionOfName(const QString &name) const
{
    const int count = FieldCount();
    for (int i = 0; i < count; ++i) {
        if (FieldName(i).compare(name, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    raiseItemNotFound();
}

int Recordset::positionOfNumber(const QVariant &number) const
{
    int position = -1;
    try {
        position = CLng(number);
    } catch (const RuntimeError &) {
        raiseItemNotFound(); // NaN or far out of range: no such field either
    }
    checkPosition(position);
    return position;
}

} // namespace Kelocontrols
