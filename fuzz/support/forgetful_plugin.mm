#include "fuzz/support/forgetful_plugin.h"

#import "plugin/records/plugin_state.h"
#import "plugin/shell/error_state.h"
#include "plugin/support/pool.h"

// Of the framework's own tests.
@interface ABAddressBook (Closing)
+ (void)closeSharedAddressBook;
@end

void forgetEverything() {
    const koru::Pool pool;
    koru::resetStateForTests();
    koru::errors.g_llasterror = koru::kSuccess;
    koru::errors.g_sExceptionTxt.reset();
    [koru::errors.error clearError];
    [ABAddressBook closeSharedAddressBook];
}
