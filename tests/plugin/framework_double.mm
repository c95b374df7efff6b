#include "tests/plugin/framework_double.h"

#import <Foundation/Foundation.h>
#include <algorithm>
#include <array>
#include <objc/runtime.h>
#include <string_view>
#include <utility>

namespace {

int messagesUntilFailure = -1; // less than 0: none is to fail
std::function<void()> beforeFailure;
std::string raisedBy;

// What the runtime itself sends, and what cannot fail.
constexpr std::array<std::string_view, 7> kReferences{"retain",  "release", "autorelease", "retainCount",
                                                      "dealloc", "drain",   "class"};
constexpr std::array<std::string_view, 2> kOwn{"koru_PluginError", "NSAutoreleasePool"};

bool isFrameworks(id receiver, SEL message) {
    const auto contains = [](const auto& list, std::string_view word) {
        return std::find(list.begin(), list.end(), word) != list.end();
    };
    return !contains(kReferences, sel_getName(message)) && !contains(kOwn, object_getClassName(receiver));
}

id raiseInstead(id /*self*/, SEL /*message*/) {
    [NSException raise:NSGenericException format:@"%s: not today", raisedBy.c_str()];
    return nil;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming)
extern "C" IMP __real_objc_msg_lookup(id receiver, SEL message);
extern "C" __attribute__((visibility("default"))) IMP __wrap_objc_msg_lookup(id receiver, SEL message) {
    if (messagesUntilFailure >= 0 && receiver != nil && isFrameworks(receiver, message) &&
        messagesUntilFailure-- == 0) {
        raisedBy = std::string(object_getClassName(receiver)) + " " + sel_getName(message);
        beforeFailure();
        return reinterpret_cast<IMP>(&raiseInstead);
    }
    return __real_objc_msg_lookup(receiver, message);
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)

namespace framework_double {

void raiseAfter(int messages, std::function<void()> atFailure) {
    beforeFailure = std::move(atFailure);
    raisedBy.clear();
    messagesUntilFailure = messages;
}

std::string stop() {
    messagesUntilFailure = -1;
    return std::exchange(raisedBy, {});
}

} // namespace framework_double
