#pragma once

// The whole of the plug-in interface.

#include "FMWrapper/FMXBinaryData.h"
#include "FMWrapper/FMXCalcEngine.h"
#include "FMWrapper/FMXData.h"
#include "FMWrapper/FMXDateTime.h"
#include "FMWrapper/FMXFixPt.h"
#include "FMWrapper/FMXText.h"
#include "FMWrapper/FMXTextStyle.h"
#include "FMWrapper/FMXTypes.h"
