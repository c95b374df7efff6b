#pragma once

#include <functional>
#include <string>

// A double between the plug-in and the frameworks: counts the messages that the plug-in sends to objects that
// are not its own, and can make one of them raise an exception instead. Messages that only keep count of
// references are left alone. The linker gives it the plug-in's messages (--wrap=objc_msg_lookup).
namespace framework_double {

// Makes the message after the next [messages] messages raise; before that, [atFailure] is called.
void raiseAfter(int messages, std::function<void()> atFailure);

// Lets all messages pass again. Returns what raised, as "class message"; empty when nothing did.
std::string stop();

} // namespace framework_double
