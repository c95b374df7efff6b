// Reading order: loading and the messages to all plug-ins, then registering, then the host's answers to
// calls.
#include "host/loader/plugin_host.h"

#include "host/calc/builtins.h"
#include "host/loader/conversion.h"
#include "host/loader/plugin.h"
#include "host/loader/plugin_file.h"
#include "host/loader/plugin_function.h"
#include "host/loader/registrations.h"
#include "host/loader/step_definition.h"
#include "host/script/own_steps.h"
#include "host/values/container.h"
#include "host/values/text.h"
#include "host/wrapper/host_hooks.h"

#include <algorithm>
#include <mutex>
#include <thread>

namespace host {

namespace {

// The error code that a plug-in gets when registering or unregistering is refused.
constexpr fmx::errcode kRefused = 1210;

// The error code for a plug-in that evaluates on another thread than the host's.
constexpr fmx::errcode kWrongThread = 3;

std::u16string identifierText(uint32_t plugin) {
    StreamType characters;
    characters.setCode(plugin);
    return fromUtf8({characters.characters.data(), characters.characters.size()});
}

// Returns a name without the blanks around it, which remain when plug-ins cut it out of a prototype.
std::u16string trimmed(const std::u16string& text) {
    const size_t first = text.find_first_not_of(u' ');
    const size_t last = text.find_last_not_of(u' ');
    return first == std::u16string::npos ? std::u16string() : text.substr(first, last - first + 1);
}

} // namespace

class PluginHost::Implementation {
  public:
    Implementation(Session& session, StepRegistry& steps, ScriptStarter starter)
        : session_(session), starter_(std::move(starter)), thread_(std::this_thread::get_id()),
          functions_(session.functions()), steps_(steps) {
        const std::lock_guard lock(currentMutex_);
        if (current_ != nullptr) {
            throw std::logic_error("a process has one plug-in host at a time");
        }
        current_ = this;
        HostHooks hooks;
        hooks.context = this;
        hooks.registerFunction = registerHook;
        hooks.unregisterFunction = unregisterHook;
        hooks.registerScriptStep = registerStepHook;
        hooks.unregisterScriptStep = unregisterStepHook;
        hooks.evaluate = evaluateHook;
        hooks.sessionId = kSession;
        hooks.fileId = kFile;
        FM_Host_SetHooks(&hooks);
    }

    ~Implementation() {
        for (auto plugin = plugins_.rbegin(); plugin != plugins_.rend(); ++plugin) {
            end(**plugin);
        }
        functions_.removeAllBut({});
        steps_.removeAllBut({});
        const std::lock_guard lock(currentMutex_);
        FM_Host_SetHooks(nullptr);
        current_ = nullptr;
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    const PluginInfo& load(const std::filesystem::path& path, const LoadOptions& options) {
        options_ = options;
        const std::filesystem::path file = pluginFile(path);
        const Functions::Items functionsBefore = functions_.items();
        const Steps::Items stepsBefore = steps_.items();
        std::unique_ptr<Plugin> plugin;
        try {
            const Loading loading(*this, file.string());
            const CallWatch watch(file.string(), "start-up", options_.limit, options_.fatal);
            plugin = std::make_unique<Plugin>(file, options_.hostVersion, startScriptCall, currentEnvCall);
            plugin->start();
        } catch (...) {
            if (plugin != nullptr) {
                end(*plugin);
                plugins_.push_back(std::move(plugin)); // it may still use the message structure
            }
            functions_.removeAllBut(functionsBefore);
            steps_.removeAllBut(stepsBefore);
            throw;
        }
        plugins_.push_back(std::move(plugin));
        return plugins_.back()->info();
    }

    void idle(IdleLevel level) {
        for (const auto& plugin : plugins_) {
            guarded([&] { plugin->idle(level); });
        }
    }

    std::vector<FunctionInfo> functions() const {
        std::vector<FunctionInfo> result;
        for (const Functions::Pointer& function : functions_.items()) {
            result.push_back({listed(*function), function->prototype(), function->minArguments(),
                              function->maxArguments()});
        }
        return result;
    }

    std::vector<StepInfo> steps() const {
        std::vector<StepInfo> result;
        for (const Steps::Pointer& step : steps_.items()) {
            result.push_back({listed(*step), stepPrototype(step->name(), step->parameters())});
        }
        return result;
    }

    std::vector<std::string> takeWarnings() {
        const std::lock_guard lock(warningsMutex_);
        return std::exchange(warnings_, {});
    }

    bool hasRefused() const { return hasRefused_; }

  private:
    using Functions = Registrations<PluginFunction, ExternalFunction>;
    using Steps = Registrations<PluginStep, ExternalStep>;

    // Notes which plug-in is being loaded, for as long as it lives.
    class Loading {
      public:
        Loading(Implementation& host, std::string file) : host_(host) { host_.loading_ = std::move(file); }
        ~Loading() { host_.loading_.clear(); }
        Loading(const Loading&) = delete;
        Loading& operator=(const Loading&) = delete;

      private:
        Implementation& host_;
    };

    template <class Work>
    void guarded(Work work) {
        try {
            work();
        } catch (const LoadError& error) {
            warn(error.what());
        }
    }

    void end(Plugin& plugin) {
        const CallWatch watch(plugin.info().path.string(), "shut-down", options_.limit, options_.fatal);
        guarded([&] { plugin.shutDown(); });
    }

    void warn(std::string message) {
        const std::lock_guard lock(warningsMutex_);
        warnings_.push_back(std::move(message));
    }

    template <class Item>
    static RegisteredInfo listed(const Item& item) {
        const Registration& registration = item.registration();
        const auto [plugin, id] = registration.handler.identity();
        return {identifierText(plugin), id, item.name(), registration.description, registration.flags};
    }

    // Adds a function or step, unless [objection] says what is wrong with it, or its id or name is taken. A
    // refusal becomes a warning, and kRefused is returned.
    template <class List>
    fmx::errcode add(List& list, const char* kind, const typename List::Pointer& item,
                     std::string objection) {
        const PluginHandler::Identity identity = item->registration().handler.identity();
        if (item->name().empty()) {
            objection = "it has no name";
        } else if (const auto other = list.find(identity)) {
            objection = "its id is that of " + toUtf8(other->name());
        } else if (objection.empty() && list.hasName(item->name())) {
            objection = std::string("there is a ") + kind + " of that name already";
        }
        if (!objection.empty()) {
            return refuse(kind, identity, item->name(), objection);
        }
        list.add(item);
        return 0;
    }

    fmx::errcode refuse(const char* kind, const PluginHandler::Identity& identity, const std::u16string& name,
                        const std::string& reason) {
        warn(std::string("the plug-in ") + kind + " " + (name.empty() ? "" : toUtf8(name) + " ") + "(" +
             toUtf8(identifierText(identity.plugin)) + " " + std::to_string(identity.id) + ")" +
             (loading_.empty() ? "" : " of " + loading_) + " is not registered: " + reason);
        hasRefused_ = true;
        return kRefused;
    }

    // Returns what is wrong with a function, whatever else is registered; empty when nothing is.
    static std::string objection(const PluginFunction& function) {
        const int minimum = function.minArguments();
        const int maximum = function.maxArguments();
        if (minimum < 0) {
            return "it needs " + std::to_string(minimum) + " arguments";
        }
        if (maximum != ExternalFunction::kAnyNumber && maximum < minimum) {
            return "it needs " + std::to_string(minimum) + (minimum == 1 ? " argument" : " arguments") +
                   " and can be given " + std::to_string(maximum) + " at most";
        }
        return findBuiltin(foldName(function.name())) == nullptr
                   ? ""
                   : "the calculation language has a function of that name";
    }

    Registration registration(const fmx::QuadChar& plugin, fmx::int16 id, const fmx::Text* description,
                              fmx::uint32 flags, fmx::ExtPluginType code) {
        return {PluginHandler({plugin.GetMacType(), id}, code, frames_),
                description == nullptr ? std::u16string() : trimmed(textOf(*description)), flags};
    }

    template <class List>
    static fmx::errcode remove(List& list, const fmx::QuadChar& plugin, short id) {
        const auto item = list.find({plugin.GetMacType(), id});
        if (item == nullptr) {
            return kRefused;
        }
        list.remove(item);
        return 0;
    }

    // The hooks, which run when a plug-in calls the host.

    static Implementation& of(void* context) { return *static_cast<Implementation*>(context); }

    static fmx::errcode registerHook(void* context, const FunctionRegistration& wanted) {
        Implementation& host = of(context);
        const auto function = std::make_shared<PluginFunction>(
            host.registration(wanted.plugin, wanted.id, wanted.description, wanted.flags, wanted.function),
            trimmed(textOf(wanted.name)), trimmed(textOf(wanted.prototype)), wanted.minArguments,
            wanted.maxArguments < 0 ? ExternalFunction::kAnyNumber : wanted.maxArguments);
        return host.add(host.functions_, "function", function, objection(*function));
    }

    static fmx::errcode unregisterHook(void* context, const fmx::QuadChar& plugin, short id) {
        return remove(of(context).functions_, plugin, id);
    }

    static fmx::errcode registerStepHook(void* context, const ScriptStepRegistration& wanted) {
        Implementation& host = of(context);
        const std::u16string stepName = normalName(textOf(wanted.name));
        try {
            const auto step =
                std::make_shared<PluginStep>(host.registration(wanted.plugin, wanted.id, &wanted.description,
                                                               wanted.flags, wanted.function),
                                             stepName, parseStepDefinition(textOf(wanted.definition)));
            return host.add(host.steps_, "script step", step,
                            isStepName(foldName(stepName)) ? "the host has a script step of that name" : "");
        } catch (const DefinitionError& error) {
            return host.refuse("script step", {wanted.plugin.GetMacType(), wanted.id}, stepName,
                               std::string("its definition is wrong: ") + error.what());
        }
    }

    static fmx::errcode unregisterStepHook(void* context, const fmx::QuadChar& plugin, short id) {
        return remove(of(context).steps_, plugin, id);
    }

    static fmx::errcode evaluateHook(void* context, const fmx::ExprEnv& /*environment*/,
                                     const fmx::Text& expression, fmx::Data& result) {
        if (std::this_thread::get_id() != of(context).thread_) {
            setData(result, Value::invalid());
            return kWrongThread;
        }
        try {
            setData(result, of(context).session_.evaluate(textOf(expression)));
            return 0;
        } catch (const CalcError& error) {
            setData(result, Value::invalid());
            return static_cast<fmx::errcode>(error.code());
        }
    }

    // The two calls that have no context. They may come on any thread, and after the host is destroyed.
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

    // Succeeds always: there is only one environment.
    static fmx::errcode currentEnvCall(fmx::ExprEnv* env) { return env == nullptr ? kRefused : 0; }

    static inline std::mutex currentMutex_;
    static inline Implementation* current_ = nullptr;

    Session& session_;
    ScriptStarter starter_;
    std::thread::id thread_;
    CallFrames frames_;
    Functions functions_;
    Steps steps_;
    LoadOptions options_; // of the last plug-in
    std::string loading_; // the file of the plug-in that is being loaded
    std::vector<std::unique_ptr<Plugin>> plugins_;
    bool hasRefused_ = false;
    std::mutex warningsMutex_;
    std::vector<std::string> warnings_;
};

PluginHost::PluginHost(Session& session, StepRegistry& steps, ScriptStarter starter)
    : implementation_(std::make_unique<Implementation>(session, steps, std::move(starter))) {}

PluginHost::~PluginHost() = default;

const PluginInfo& PluginHost::load(const std::filesystem::path& path, const LoadOptions& options) {
    return implementation_->load(path, options);
}

void PluginHost::idle(IdleLevel level) {
    implementation_->idle(level);
}

std::vector<FunctionInfo> PluginHost::functions() const {
    return implementation_->functions();
}

std::vector<StepInfo> PluginHost::steps() const {
    return implementation_->steps();
}

bool PluginHost::hasRefused() const {
    return implementation_->hasRefused();
}

std::vector<std::string> PluginHost::takeWarnings() {
    return implementation_->takeWarnings();
}

} // namespace host
