/// The classes that all others use.
#pragma once

#include "FMXClient.h"
