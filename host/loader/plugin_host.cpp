// Reading order: one plug-in and its messages, then the host that keeps the plug-ins and answers them.
#include "host/loader/plugin_host.h"

#include "host/calc/builtins.h"
#include "host/loader/conversion.h"
#include "host/loader/plugin_function.h"
#include "host/loader/plugin_library.h"
#include "host/values/container.h"
#include "host/values/text.h"
#include "host/wrapper/host_hooks.h"

#include <algorithm>
#include <mutex>
#include <thread>

namespace host {

namespace {

// What registering and unregistering answer to the plug-in when they refuse.
constexpr fmx::errcode kRefused = 1210;

// What evaluating answers to a plug-in that asks on another thread than the host's.
constexpr fmx::errcode kWrongThread = 3;

constexpr size_t kStringCapacity = 1024; // units, the terminator included
constexpr size_t kIdleOption = 8; // the place in the options string of the Y that asks for idle messages

constexpr char16_t kHostVersionText[] = u"fmhost 1.0";

std::u16string identifierText(uint32_t plugin) {
    StreamType characters;
    characters.setCode(plugin);
    return fromUtf8({characters.characters.data(), characters.characters.size()});
}

// A name without the blanks around it: plug-ins cut it out of a prototype.
std::u16string trimmed(const std::u16string& text) {
    const size_t first = text.find_first_not_of(u' ');
    const size_t last = text.find_last_not_of(u' ');
    return first == std::u16string::npos ? std::u16string() : text.substr(first, last - first + 1);
}

// A loaded plug-in: from the library to the end of its work.
class Plugin {
  public:
    Plugin(const std::filesystem::path& path, int hostVersion, FMX_StartScriptCall startScript,
           FMX_CurrentEnvCall currentEnv)
        : library_(path) {
        call_.extnVersion = static_cast<fmx::int16>(hostVersion);
        call_.unusedID = -1;
        call_.entryPoint = library_.entry();
        call_.instanceID = reinterpret_cast<fmx::ptrtype>(library_.handle());
        call_.cStartScript = startScript;
        call_.cCurrentEnv = currentEnv;
        info_.path = library_.file();
    }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    // Sends the start-up and asks for the strings. Throws LoadError when the plug-in does not want to run.
    void start() {
        const fmx::ptrtype answer =
            send(kFMXT_Init, kFMXT_Developer, reinterpret_cast<fmx::ptrtype>(kHostVersionText), 0, 0);
        const auto version = static_cast<fmx::int32>(answer);
        if (version == kBadExtnVersion) {
            throw LoadError("the plug-in " + file() + " refused version " +
                            std::to_string(call_.extnVersion));
        }
        if (version == kDoNotEnable) {
            throw LoadError("the plug-in " + file() + " asked not to be enabled");
        }
        info_.version = version;
        isStarted_ = true;
        info_.name = string(kFMXT_NameStr);
        info_.helpText = string(kFMXT_AppConfigStr);
        info_.options = string(kFMXT_OptionsStr);
    }

    // Sends the shut-down to a started plug-in. Throws LoadError when the plug-in throws.
    void shutDown() {
        if (std::exchange(isStarted_, false)) {
            send(kFMXT_Shutdown, 0, 0, 0, 0);
        }
    }

    bool wantsIdle() const {
        return info_.options.size() > kIdleOption && info_.options[kIdleOption] == u'Y';
    }
    void idle(IdleLevel level) { send(kFMXT_Idle, static_cast<fmx::uchar>(level), 0, 0, 0); }

    const PluginInfo& info() const { return info_; }
    std::string file() const { return info_.path.string(); }

  private:
    // Sends a message and answers what stands in the result afterwards.
    fmx::ptrtype send(fmx::uchar message, fmx::uchar parm1, fmx::ptrtype parm2, fmx::ptrtype parm3,
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
        throw LoadError("the plug-in " + file() + " failed on message " + std::to_string(message) + ": " +
                        reason);
    }

    std::u16string string(fmx::uchar which) {
        std::u16string buffer(kStringCapacity, u'\0');
        send(kFMXT_GetString, which, 0, kStringCapacity, reinterpret_cast<fmx::ptrtype>(buffer.data()));
        buffer.resize(std::min(buffer.size(), buffer.find(u'\0')));
        return buffer;
    }

    PluginLibrary library_;
    FMX_ExternCallStruct call_{}; // the plug-in keeps its address
    PluginInfo info_;
    bool isStarted_ = false;
};

} // namespace

class PluginHost::Implementation {
  public:
    Implementation(Session& session, ScriptStarter starter)
        : session_(session), starter_(std::move(starter)), thread_(std::this_thread::get_id()) {
        const std::lock_guard lock(currentMutex_);
        if (current_ != nullptr) {
            throw std::logic_error("a process has one plug-in host at a time");
        }
        current_ = this;
        const HostHooks hooks{this, registerHook, unregisterHook, evaluateHook};
        FM_Host_SetHooks(&hooks);
    }

    ~Implementation() {
        for (auto plugin = plugins_.rbegin(); plugin != plugins_.rend(); ++plugin) {
            end(**plugin);
        }
        while (!functions_.empty()) {
            remove(functions_.begin());
        }
        const std::lock_guard lock(currentMutex_);
        FM_Host_SetHooks(nullptr);
        current_ = nullptr;
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    const PluginInfo& load(const std::filesystem::path& path, int hostVersion) {
        auto plugin = std::make_unique<Plugin>(path, hostVersion, startScriptCall, currentEnvCall);
        const std::vector<FunctionPtr> before = functions_;
        try {
            plugin->start();
        } catch (...) {
            end(*plugin);
            removeAllBut(before);
            plugins_.push_back(std::move(plugin)); // it may still use the structure of its messages
            throw;
        }
        plugins_.push_back(std::move(plugin));
        return plugins_.back()->info();
    }

    void idle(IdleLevel level) {
        for (const auto& plugin : plugins_) {
            if (plugin->wantsIdle()) {
                guarded([&] { plugin->idle(level); });
            }
        }
    }

    std::vector<FunctionInfo> functions() const {
        std::vector<FunctionInfo> result;
        for (const FunctionPtr& function : functions_) {
            const auto [plugin, id] = function->identity();
            result.push_back({identifierText(plugin), id, function->name(), function->prototype(),
                              function->minArguments(), function->maxArguments(), function->flags()});
        }
        return result;
    }

    std::vector<std::string> takeWarnings() {
        const std::lock_guard lock(warningsMutex_);
        return std::exchange(warnings_, {});
    }

  private:
    using FunctionPtr = std::shared_ptr<PluginFunction>;
    using Functions = std::vector<FunctionPtr>;

    template <class Work>
    void guarded(Work work) {
        try {
            work();
        } catch (const LoadError& error) {
            warn(error.what());
        }
    }

    void end(Plugin& plugin) {
        guarded([&] { plugin.shutDown(); });
    }

    void warn(std::string message) {
        const std::lock_guard lock(warningsMutex_);
        warnings_.push_back(std::move(message));
    }

    Functions::iterator find(PluginFunction::Identity identity) {
        return std::find_if(functions_.begin(), functions_.end(), [&](const FunctionPtr& function) {
            return function->identity().plugin == identity.plugin && function->identity().id == identity.id;
        });
    }

    void remove(Functions::iterator function) {
        session_.functions().remove(*function);
        functions_.erase(function);
    }

    void removeAllBut(const Functions& kept) {
        for (size_t i = functions_.size(); i > 0; --i) {
            if (std::find(kept.begin(), kept.end(), functions_[i - 1]) == kept.end()) {
                remove(functions_.begin() + static_cast<std::ptrdiff_t>(i - 1));
            }
        }
    }

    // Why a function can not be registered; empty when it can.
    std::string objection(const PluginFunction& function) {
        if (function.name().empty()) {
            return "it has no name";
        }
        if (function.minArguments() < 0 ||
            (function.maxArguments() >= 0 && function.maxArguments() < function.minArguments())) {
            return "it takes " + std::to_string(function.minArguments()) + " to " +
                   std::to_string(function.maxArguments()) + " arguments";
        }
        if (find(function.identity()) != functions_.end()) {
            return "its id is registered already";
        }
        const std::u16string key = foldName(function.name());
        if (findBuiltin(key) != nullptr) {
            return "the calculation language has a function of that name";
        }
        return session_.functions().find(key) == nullptr ? "" : "there is a function of that name already";
    }

    fmx::errcode add(const FunctionPtr& function) {
        const std::string reason = objection(*function);
        if (!reason.empty()) {
            warn("the plug-in function " + toUtf8(function->name()) + " (" +
                 toUtf8(identifierText(function->identity().plugin)) + " " +
                 std::to_string(function->identity().id) + ") is not registered: " + reason);
            return kRefused;
        }
        session_.functions().add(function);
        functions_.push_back(function);
        return 0;
    }

    // The functions below run when a plug-in calls the host.

    static Implementation& of(void* context) { return *static_cast<Implementation*>(context); }

    static fmx::errcode registerHook(void* context, const fmx::QuadChar& plugin, short id,
                                     const fmx::Text& name, const fmx::Text& prototype, short minArguments,
                                     short maxArguments, fmx::uint32 flags, fmx::ExtPluginType handler) {
        const PluginFunction::Identity identity{plugin.GetMacType(), id};
        return of(context).add(std::make_shared<PluginFunction>(
            identity, trimmed(textOf(name)), trimmed(textOf(prototype)), minArguments,
            maxArguments < 0 ? ExternalFunction::kAnyNumber : maxArguments, flags, handler,
            of(context).frames_));
    }

    static fmx::errcode unregisterHook(void* context, const fmx::QuadChar& plugin, short id) {
        const auto function = of(context).find({plugin.GetMacType(), id});
        if (function == of(context).functions_.end()) {
            return kRefused;
        }
        of(context).remove(function);
        return 0;
    }

    static fmx::errcode evaluateHook(void* context, const fmx::ExprEnv& /*environment*/,
                                     const fmx::Text& expression, fmx::Data& result) {
        ConversionTools tools;
        if (std::this_thread::get_id() != of(context).thread_) {
            setData(result, Value::invalid(), tools);
            return kWrongThread;
        }
        try {
            setData(result, of(context).session_.evaluate(textOf(expression)), tools);
            return 0;
        } catch (const CalcError& error) {
            setData(result, Value::invalid(), tools);
            return static_cast<fmx::errcode>(error.code());
        }
    }

    // The two calls that carry no context. They may come on any thread, also when there is no host any more.
    static fmx::errcode startScriptCall(const fmx::Text* file, const fmx::Text* script,
                                        fmx::uchar /*control*/, const fmx::Data* parameter) {
        const std::lock_guard lock(currentMutex_);
        if (current_ == nullptr) {
            return kRefused;
        }
        try {
            const auto text = [](const fmx::Text* from) {
                return from == nullptr ? std::u16string() : textOf(*from);
            };
            const Value value = parameter == nullptr ? Value() : valueOf(*parameter);
            return static_cast<fmx::errcode>(current_->starter_(text(file), text(script), value));
        } catch (const std::exception&) {
            return kRefused;
        }
    }

    // There is one environment, and it is always the current one.
    static fmx::errcode currentEnvCall(fmx::ExprEnv* env) { return env == nullptr ? kRefused : 0; }

    static inline std::mutex currentMutex_;
    static inline Implementation* current_ = nullptr;

    Session& session_;
    ScriptStarter starter_;
    std::thread::id thread_;
    CallFrames frames_;
    Functions functions_; // in the order of their registration
    std::vector<std::unique_ptr<Plugin>> plugins_;
    std::mutex warningsMutex_;
    std::vector<std::string> warnings_;
};

PluginHost::PluginHost(Session& session, ScriptStarter starter)
    : implementation_(std::make_unique<Implementation>(session, std::move(starter))) {}

PluginHost::~PluginHost() = default;

const PluginInfo& PluginHost::load(const std::filesystem::path& path, int hostVersion) {
    return implementation_->load(path, hostVersion);
}

void PluginHost::idle(IdleLevel level) {
    implementation_->idle(level);
}

std::vector<FunctionInfo> PluginHost::functions() const {
    return implementation_->functions();
}

std::vector<std::string> PluginHost::takeWarnings() {
    return implementation_->takeWarnings();
}

} // namespace host
