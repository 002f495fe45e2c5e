#pragma once

// Umbrella header: everything a host needs to use the Kelocontrols widgets.

#include "CommonFile.h"
#include "Conversions.h"
#include "ImageList.h"
#include "InterfaceDescription.h"
#include "KeloEnums.h"
#include "KeloVersion.h"
#include "KeloscoreCard.h"
#include "Like.h"
#include "MsgBox.h"
#include "OleColor.h"
#include "PictureBox.h"
#include "PropertyBag.h"
#include "Random.h"
#include "RuntimeError.h"
