#import "plugin/shell/run_loop.h"

namespace koru {

void turnRunLoop() {}

} // namespace koru
