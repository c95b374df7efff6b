#import "plugin/shell/run_loop.h"

void turnRunLoop() {}
