#pragma once

// Umbrella header: everything a host needs to use the Kelocontrols widgets.

#include "CommonFile.h"
#include "Conversions.h"
#include "ImageList.h"
#include "InterfaceDescription.h"
#include "ItemModelRecordset.h"
#include "KeloEnums.h"
#include "KeloVersion.h"
#include "Kelochameleon.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"
#include "Like.h"
#include "ListBoxModel.h"
#include "MsgBox.h"
#include "OleColor.h"
#include "PictureBox.h"
#include "PropertyBag.h"
#include "Random.h"
#include "Recordset.h"
#include "RuntimeError.h"
#include "SqlQueryRecordset.h"
