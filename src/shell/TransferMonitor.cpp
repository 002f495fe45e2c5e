#include "TransferMonitor.h"

namespace Kelocontrols {

TransferMonitor::~TransferMonitor() = default;

} // namespace Kelocontrols
