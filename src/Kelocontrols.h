#pragma once

// Umbrella header: everything a host needs to use the Kelocontrols widgets.

#include "KeloEnums.h"
#include "KeloVersion.h"
#include "RuntimeError.h"
