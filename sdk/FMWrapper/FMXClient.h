/// The whole of the host's plug-in interface in one include.
#pragma once

#include "FMXBinaryData.h"
#include "FMXCalcEngine.h"
#include "FMXData.h"
#include "FMXDateTime.h"
#include "FMXExtern.h"
#include "FMXFixPt.h"
#include "FMXText.h"
#include "FMXTypes.h"
