#pragma once

#include <kelocontrols_export.h>

#include <QString>

#include <stdexcept>

namespace Kelocontrols {

/**
 * The run-time errors the controls raise, numbered as the classic BASIC
 * runtime numbers them so hosts ported from it can keep their handlers.
 */
namespace ErrorNumber {
constexpr int InvalidProcedureCall = 5; ///< "Invalid procedure call or argument"
constexpr int Overflow = 6; ///< "Overflow"
constexpr int SubscriptOutOfRange = 9; ///< "Subscript out of range"
constexpr int TypeMismatch = 13; ///< "Type mismatch"
constexpr int FileNotFound = 53; ///< "File not found"
constexpr int PermissionDenied = 70; ///< "Permission denied"
constexpr int PathNotFound = 76; ///< "Path not found"
constexpr int InvalidPatternString = 93; ///< "Invalid pattern string"
constexpr int InvalidFileFormat = 321; ///< "Invalid file format"
constexpr int InvalidPropertyValue = 380; ///< "Invalid property value"
constexpr int SetNotPermitted = 387; ///< "Set not permitted": a write refused at design time
constexpr int ElementNotFound = 35601; ///< "Element not found": unknown key or index of a collection
constexpr int KeyNotUnique = 35602; ///< "Key is not unique in collection"
} // namespace ErrorNumber

/**
 * A run-time error raised by a property write or a method of a control.
 *
 * It carries the classic error number and a description. It propagates out
 * of the typed C++ call as well as out of QObject::setProperty() and
 * QMetaObject::invokeMethod(), so a host catches it the same way whichever
 * way it called.
 */
class KELOCONTROLS_EXPORT RuntimeError : public std::runtime_error
{
public:
    /// An error with its number and the runtime's standard text for it.
    explicit RuntimeError(int number);
    /// An error with its number and a description of the caller's own.
    RuntimeError(int number, const QString &description);

    int number() const noexcept { return m_number; }
    QString description() const { return m_description; }

    /// The runtime's standard text for an error number ("Overflow" for 6),
    /// or "Application-defined or object-defined error" for numbers it has none for.
    static QString standardDescription(int number);

    /// Raises error 387, the answer to a write that is not allowed at design time.
    [[noreturn]] static void raiseSetNotPermitted();

private:
    int m_number;
    QString m_description;
};

} // namespace Kelocontrols
