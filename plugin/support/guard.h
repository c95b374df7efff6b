#pragma once

#include "plugin/support/objc_guard.h"
#include <memory>

// Runs the work; a platform exception in it goes to caught, everything else passes (see koruGuard). The work
// must not make an autorelease pool that such an exception would drain on its way.
template <typename Work>
void guarded(Work work, KoruExceptionHandler caught) {
    koruGuard([](void* context) { (*static_cast<Work*>(context))(); }, std::addressof(work), caught);
}
