#include "MousePointer.h"

namespace Kelocontrols::MousePointer {

bool isValid(int pointer)
{
    return (pointer >= Default && pointer <= SizeAll) || pointer == Custom;
}

QCursor cursor(int pointer, const QPixmap &icon)
{
    switch (pointer) {
    case Cross:
        return Qt::CrossCursor;
    case IBeam:
        return Qt::IBeamCursor;
    case Icon:
        return Qt::PointingHandCursor;
    case Size:
    case SizeAll:
        return Qt::SizeAllCursor;
    case SizeNESW:
        return Qt::SizeBDiagCursor;
    case SizeNS:
        return Qt::SizeVerCursor;
    case SizeNWSE:
        return Qt::SizeFDiagCursor;
    case SizeWE:
        return Qt::SizeHorCursor;
    case UpArrow:
        return Qt::UpArrowCursor;
    case Hourglass:
        return Qt::WaitCursor;
    case NoDrop:
        return Qt::ForbiddenCursor;
    case ArrowHourglass:
        return Qt::BusyCursor;
    case ArrowQuestion:
        return Qt::WhatsThisCursor;
    case Custom:
        return icon.isNull() ? QCursor(Qt::ArrowCursor) : QCursor(icon);
    default:
        return Qt::ArrowCursor;
    }
}

} // namespace Kelocontrols::MousePointer
