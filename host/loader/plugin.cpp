#include "host/loader/plugin.h"

#include "host/loader/load_error.h"

#include <algorithm>
#include <new>
#include <utility>

namespace host {

namespace {

constexpr size_t kStringCapacity = 1024; // units, the terminator included

// Places in the options string where a Y asks for messages.
constexpr size_t kOptionsLength = 11;
constexpr size_t kStartUpOption = 7; // start-up and shut-down
constexpr size_t kIdleOption = 8;
constexpr size_t kSessionOption = 9; // the end of sessions and files

constexpr int kHelpAddressSince = 57; // the first interface version that asks for a help address

} // namespace

Plugin::Plugin(const std::filesystem::path& file, int hostVersion, FMX_StartScriptCall startScript,
               FMX_CurrentEnvCall currentEnv)
    : library_(file) {
    call_.extnVersion = static_cast<fmx::int16>(hostVersion);
    call_.unusedID = -1;
    call_.entryPoint = library_.entry();
    call_.instanceID = reinterpret_cast<fmx::ptrtype>(library_.handle());
    call_.cStartScript = startScript;
    call_.cCurrentEnv = currentEnv;
    info_.path = file;
}

void Plugin::start() {
    info_.options = string(kFMXT_OptionsStr);
    if (asksForStartUp()) {
        const auto version = static_cast<fmx::int32>(
            send(kFMXT_Init, kFMXT_Developer,
                 reinterpret_cast<fmx::ptrtype>(hostRelease(call_.extnVersion).c_str())));
        const std::string file = "the plug-in " + info_.path.string();
        if (version == kBadExtnVersion) {
            throw LoadError(file + " refused version " + std::to_string(call_.extnVersion));
        }
        if (version == kDoNotEnable) {
            throw LoadError(file + " asked not to be enabled");
        }
        if (version < kOldestInterface || version > kNewestInterface) {
            throw LoadError(file + " answered the start-up with interface version " +
                            std::to_string(version) + "; expected " + std::to_string(kOldestInterface) +
                            " to " + std::to_string(kNewestInterface));
        }
        info_.version = version;
    }
    isStarted_ = true;
    info_.name = string(kFMXT_NameStr);
    info_.helpText = string(kFMXT_AppConfigStr);
    if (call_.extnVersion >= kHelpAddressSince) {
        info_.helpAddress = string(kFMXT_HelpURLStr);
    }
}

void Plugin::shutDown() {
    if (!std::exchange(isStarted_, false)) {
        return;
    }
    if (asksFor(kSessionOption)) {
        send(kFMXT_FileShutdown, 0, kSession, kFile);
        send(kFMXT_SessionShutdown, 0, kSession);
    }
    if (asksForStartUp()) {
        send(kFMXT_Shutdown);
    }
}

void Plugin::idle(IdleLevel level) {
    if (isStarted_ && asksFor(kIdleOption)) {
        send(kFMXT_Idle, static_cast<fmx::uchar>(level), kSession);
    }
}

// A plug-in without a proper options string is started as well, since plug-ins that are tried out here are
// often unfinished.
bool Plugin::asksForStartUp() const {
    return info_.options.size() < kOptionsLength || asksFor(kStartUpOption);
}

bool Plugin::asksFor(size_t option) const {
    return info_.options.size() > option && info_.options[option] == u'Y';
}

std::u16string Plugin::string(fmx::uchar which) {
    std::u16string buffer(kStringCapacity, u'\0');
    send(kFMXT_GetString, which, 0, kStringCapacity, reinterpret_cast<fmx::ptrtype>(buffer.data()));
    buffer.resize(std::min(buffer.size(), buffer.find(u'\0')));
    return buffer;
}

// Sends a message, and returns the result field of the message afterwards.
fmx::ptrtype Plugin::send(fmx::uchar message, fmx::uchar parm1, fmx::ptrtype parm2, fmx::ptrtype parm3,
                          fmx::ptrtype result) {
    call_.whichCall = message;
    call_.parm1 = parm1;
    call_.parm2 = parm2;
    call_.parm3 = parm3;
    call_.result = result;
    std::string reason;
    try {
        library_.entry()(&call_);
        return call_.result;
    } catch (const std::bad_alloc&) {
        reason = "out of memory";
    } catch (const std::exception& error) {
        reason = error.what();
    } catch (...) {
        reason = "it threw something that is no standard exception";
    }
    throw LoadError("the plug-in " + info_.path.string() + " failed on message " + std::to_string(message) +
                    ": " + reason);
}

} // namespace host
