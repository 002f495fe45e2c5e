#include "RuntimeError.h"

namespace Kelocontrols {

RuntimeError::RuntimeError(int number)
    : RuntimeError(number, standardDescription(number))
{
}

RuntimeError::RuntimeError(int number, const QString &description)
    : std::runtime_error(description.toStdString())
    , m_number(number)
    , m_description(description)
{
}

QString RuntimeError::standardDescription(int number)
{
    switch (number) {
    case ErrorNumber::InvalidProcedureCall:
        return QStringLiteral("Invalid procedure call or argument");
    case ErrorNumber::Overflow:
        return QStringLiteral("Overflow");
    case ErrorNumber::SubscriptOutOfRange:
        return QStringLiteral("Subscript out of range");
    case ErrorNumber::TypeMismatch:
        return QStringLiteral("Type mismatch");
    case ErrorNumber::FileNotFound:
        return QStringLiteral("File not found");
    case ErrorNumber::PermissionDenied:
        return QStringLiteral("Permission denied");
    case ErrorNumber::PathNotFound:
        return QStringLiteral("Path not found");
    case ErrorNumber::InvalidPatternString:
        return QStringLiteral("Invalid pattern string");
    case ErrorNumber::InvalidFileFormat:
        return QStringLiteral("Invalid file format");
    case ErrorNumber::InvalidPropertyValue:
        return QStringLiteral("Invalid property value");
    case ErrorNumber::SetNotPermitted:
        return QStringLiteral("Set not permitted");
    case ErrorNumber::ElementNotFound:
        return QStringLiteral("Element not found");
    case ErrorNumber::KeyNotUnique:
        return QStringLiteral("Key is not unique in collection");
    default:
        return QStringLiteral("Application-defined or object-defined error");
    }
}

void RuntimeError::raiseSetNotPermitted()
{
    throw RuntimeError(ErrorNumber::SetNotPermitted);
}

} // namespace Kelocontrols
