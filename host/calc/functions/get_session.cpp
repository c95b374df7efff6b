// Get functions about the running script, its file and the plug-ins.
#include "host/calc/functions/groups.h"
#include "host/calc/json_text.h"
#include "host/calc/session.h"
#include "host/values/text.h"

namespace host {

namespace {

// Returns the folder in the form in which FileMaker writes paths of files.
std::u16string filePath(Session& session) {
    const std::u16string& folder = session.environment().folder;
    return folder.empty() ? u"" : u"file:" + folder;
}

std::u16string fileName(Session& session) {
    const std::u16string& folder = session.environment().folder;
    return folder.substr(folder.rfind(u'/') + 1);
}

std::vector<InstalledPlugin> plugins(Session& session) {
    const auto& list = session.environment().plugins;
    return list ? list() : std::vector<InstalledPlugin>();
}

Value installedPlugins(Session& session) {
    std::u16string result;
    for (const InstalledPlugin& plugin : plugins(session)) {
        result += (result.empty() ? u"" : u"\r") + plugin.name + u";" + plugin.version + u";" + plugin.state;
    }
    return Value::text(result);
}

Value installedPluginsAsJson(Session& session) {
    Json list = Json::array();
    for (const InstalledPlugin& plugin : plugins(session)) {
        list.push_back(Json{{"PluginName", toUtf8(plugin.name)},
                            {"PluginVersion", toUtf8(plugin.version)},
                            {"PluginState", toUtf8(plugin.state)}});
    }
    return Value::text(jsonText(list));
}

constexpr GetRow kGets[] = {
    {u"AllowAbortState",
     [](Session& session) { return integerValue(session.environment().allowUserAbort ? 1 : 0); },
     "Whether the user may stop the script."},
    {u"CalculationRepetitionNumber", Fixed{u"1"}, "The repetition that is being calculated."},
    {u"ErrorCaptureState",
     [](Session& session) { return integerValue(session.environment().errorCapture ? 1 : 0); },
     "Whether the script handles errors itself."},
    {u"FileName", [](Session& session) { return Value::text(fileName(session)); },
     "The name of the file: the folder of scripts."},
    {u"FilePath", [](Session& session) { return Value::text(filePath(session)); },
     "The path of the file: the folder of scripts."},
    {u"InstalledFMPlugins", installedPlugins, "The plug-ins as lines of name, version and state."},
    {u"InstalledFMPluginsAsJSON", installedPluginsAsJson, "The plug-ins as a JSON array."},
    {u"LastError", [](Session& session) { return integerValue(session.lastError()); },
     "The error code of the last script step or plug-in function."},
    {u"LastErrorDetail", [](Session& session) { return Value::text(session.environment().lastErrorDetail); },
     "The text of the last error."},
    {u"LastErrorLocation",
     [](Session& session) { return Value::text(session.environment().lastErrorLocation); },
     "The script, the step and the line of the last error."},
    {u"LastMessageChoice",
     [](Session& session) { return integerValue(session.environment().lastMessageChoice); },
     "The button of the last dialog."},
    {u"OpenDataFileInfo", [](Session& session) { return Value::text(session.environment().openDataFiles); },
     "The open data files as lines of id and path."},
    {u"RevertTransactionOnErrorState",
     [](Session& session) { return integerValue(session.environment().revertTransactionOnError ? 1 : 0); },
     "Whether an error reverts the transaction."},
    {u"ScriptAnimationState",
     [](Session& session) { return integerValue(session.environment().animation ? 1 : 0); },
     "Whether scripts move layout objects."},
    {u"ScriptName", [](Session& session) { return Value::text(session.frame().scriptName); },
     "The name of the script."},
    {u"ScriptParameter", [](Session& session) { return session.frame().parameter; },
     "What the script was given."},
    {u"ScriptResult", [](Session& session) { return session.frame().scriptResult; },
     "What the last performed script answered."},
    {u"SessionIdentifier",
     [](Session& session) { return Value::text(session.environment().sessionIdentifier); },
     "The text that a script gave the session."},
    {u"TransactionOpenState", Fixed{u"0"}, "Whether a transaction is open."},
    {u"UseSystemFormatsState", Fixed{u"0"}, "Whether the system's formats are used."},
};

} // namespace

std::span<const GetRow> sessionGets() {
    return kGets;
}

} // namespace host
