// Reading order: messages in and out, then the table of methods, then what each answers.
#include "host/editor/language_server.h"

#include "host/calc/calc_error.h"
#include "host/calc/custom_functions.h"
#include "host/calc/registry.h"
#include "host/editor/assistance.h"
#include "host/editor/format.h"
#include "host/editor/highlight.h"
#include "host/script/script_library.h"
#include "host/values/text.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <istream>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

namespace host {

namespace {

using Json = nlohmann::json;

// Codes of the protocol.
enum class RpcCode : int {
    parseError = -32700,
    invalidRequest = -32600,
    methodNotFound = -32601,
    invalidParams = -32602,
    internalError = -32603,
    notInitialized = -32002,
};

struct RpcError {
    RpcCode code;
    std::string message;
};

// The protocol's names for the roles of TextRole, in their order. An unknown function has none.
constexpr std::array kTokenTypes = {"comment",  "string",   "number",     "variable",
                                    "function", "property", "enumMember", "keyword"};
static_assert(kTokenTypes.size() == static_cast<size_t>(TextRole::unknown));

constexpr size_t kMaxMessage = size_t{256} << 20;

Json toJson(EditorPosition position) {
    return {{"line", position.line}, {"character", position.character}};
}

EditorPosition positionFrom(const Json& json) {
    return {json.at("line").get<size_t>(), json.at("character").get<size_t>()};
}

Json range(EditorPosition begin, EditorPosition end) {
    return {{"start", toJson(begin)}, {"end", toJson(end)}};
}

std::filesystem::path pathFrom(const std::string& uri) {
    constexpr std::string_view kScheme = "file://";
    std::string path;
    for (size_t i = uri.starts_with(kScheme) ? kScheme.size() : 0; i < uri.size(); ++i) {
        unsigned value = 0;
        const bool isEscape =
            uri[i] == '%' && i + 2 < uri.size() &&
            std::from_chars(uri.data() + i + 1, uri.data() + i + 3, value, 16).ptr == uri.data() + i + 3;
        path += isEscape ? static_cast<char>(value) : uri[i];
        i += isEscape ? 2 : 0;
    }
    return path;
}

std::string uriFrom(const std::filesystem::path& path) {
    constexpr std::string_view kPlain = "/-._~";
    std::string uri = "file://";
    for (const char c : path.string()) {
        const auto byte = static_cast<unsigned char>(c);
        if (std::isalnum(byte) != 0 || kPlain.find(c) != std::string_view::npos) {
            uri += c;
        } else {
            constexpr std::string_view kDigits = "0123456789ABCDEF";
            uri += '%';
            uri += kDigits[byte / 16];
            uri += kDigits[byte % 16];
        }
    }
    return uri;
}

class Server {
  public:
    Server(std::istream& in, std::ostream& out, FunctionRegistry& functions, const StepRegistry& steps)
        : in_(in), out_(out), functions_(functions), steps_(steps) {}

    bool run() {
        while (!isOver_) {
            const std::optional<std::string> message = read();
            if (!message) {
                break;
            }
            const Json json = Json::parse(*message, nullptr, false);
            if (json.is_discarded()) {
                fail(nullptr, {RpcCode::parseError, "this message is no JSON"});
            } else {
                answer(json);
            }
        }
        std::vector<CalcError> none;
        customFunctions_.load({}, functions_, none);
        return isShutDown_;
    }

  private:
    using Method = Json (Server::*)(const Json&);

    // The body of the next message; nothing at the end of the stream. A header without a length is passed over.
    std::optional<std::string> read() {
        constexpr std::string_view kLength = "Content-Length:";
        size_t length = 0;
        for (std::string line; std::getline(in_, line);) {
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            if (line.starts_with(kLength)) {
                const std::string digits = line.substr(line.find_first_not_of(' ', kLength.size()));
                std::from_chars(digits.data(), digits.data() + digits.size(), length);
            } else if (line.empty() && length > 0) {
                if (length > kMaxMessage) {
                    return std::nullopt;
                }
                std::string body(length, '\0');
                in_.read(body.data(), static_cast<std::streamsize>(length));
                return in_ ? std::optional(std::move(body)) : std::nullopt;
            }
        }
        return std::nullopt;
    }

    void send(Json message) {
        message["jsonrpc"] = "2.0";
        const std::string body = message.dump(-1, ' ', false, Json::error_handler_t::replace);
        out_ << "Content-Length: " << body.size() << "\r\n\r\n" << body << std::flush;
    }

    void fail(const Json& id, const RpcError& error) {
        send({{"id", id}, {"error", {{"code", static_cast<int>(error.code)}, {"message", error.message}}}});
    }

    // A request has an id and is answered; a notification has none, and errors in it are nobody's.
    void answer(const Json& message) {
        const bool isRequest = message.is_object() && message.contains("id");
        const Json id = isRequest ? message["id"] : Json();
        try {
            if (!message.is_object() || !message.contains("method") || !message["method"].is_string()) {
                throw RpcError{RpcCode::invalidRequest, "a message needs a method"};
            }
            const Json result =
                call(message["method"], message.contains("params") ? message["params"] : Json::object());
            if (isRequest) {
                send({{"id", id}, {"result", result}});
            }
        } catch (const RpcError& error) {
            if (isRequest || error.code == RpcCode::invalidRequest) {
                fail(id, error);
            }
        } catch (const Json::exception& error) {
            if (isRequest) {
                fail(id, {RpcCode::invalidParams, error.what()});
            }
        } catch (const FileError& error) { // of the document's folder
            if (isRequest) {
                fail(id, {RpcCode::internalError, error.what()});
            }
        }
    }

    Json call(const std::string& name, const Json& parameters) {
        static const std::map<std::string, Method> kMethods = {
            {"initialize", &Server::initialize},
            {"initialized", &Server::ignore},
            {"shutdown", &Server::shutDown},
            {"exit", &Server::exit},
            {"textDocument/didOpen", &Server::didOpen},
            {"textDocument/didChange", &Server::didChange},
            {"textDocument/didClose", &Server::didClose},
            {"textDocument/didSave", &Server::ignore},
            {"textDocument/completion", &Server::completion},
            {"textDocument/hover", &Server::hover},
            {"textDocument/signatureHelp", &Server::signatureHelp},
            {"textDocument/definition", &Server::definition},
            {"textDocument/formatting", &Server::formatting},
            {"textDocument/semanticTokens/full", &Server::semanticTokens},
        };
        const auto found = kMethods.find(name);
        if (found == kMethods.end()) {
            throw RpcError{RpcCode::methodNotFound, "there is no method " + name};
        }
        if (!isInitialized_ && name != "initialize" && name != "exit") {
            throw RpcError{RpcCode::notInitialized, "expected initialize first"};
        }
        return (this->*found->second)(parameters);
    }

    Json initialize(const Json& /*parameters*/) {
        isInitialized_ = true;
        return {{"serverInfo", {{"name", "fmhost"}}},
                {"capabilities",
                 {{"positionEncoding", "utf-16"},
                  {"textDocumentSync", {{"openClose", true}, {"change", 2}}},
                  {"completionProvider", {{"triggerCharacters", {"$", "(", "\"", "[", ";", ":"}}}},
                  {"hoverProvider", true},
                  {"signatureHelpProvider", {{"triggerCharacters", {"(", ";"}}}},
                  {"definitionProvider", true},
                  {"documentFormattingProvider", true},
                  {"semanticTokensProvider",
                   {{"legend", {{"tokenTypes", kTokenTypes}, {"tokenModifiers", Json::array()}}},
                    {"full", true}}}}}};
    }
    Json ignore(const Json& /*parameters*/) { return nullptr; }
    Json shutDown(const Json& /*parameters*/) {
        isShutDown_ = true;
        return nullptr;
    }
    Json exit(const Json& /*parameters*/) {
        isOver_ = true;
        return nullptr;
    }

    Json didOpen(const Json& parameters) {
        const Json& item = parameters.at("textDocument");
        const std::string uri = item.at("uri");
        documents_.insert_or_assign(
            uri, Document(pathFrom(uri), fromUtf8(item.at("text").get_ref<const std::string&>())));
        publish(uri);
        return nullptr;
    }

    Json didChange(const Json& parameters) {
        Document& document = documentOf(parameters);
        for (const Json& change : parameters.at("contentChanges")) {
            const std::u16string text = fromUtf8(change.at("text").get_ref<const std::string&>());
            if (change.contains("range")) {
                document.replace(positionFrom(change["range"].at("start")),
                                 positionFrom(change["range"].at("end")), text);
            } else {
                document.setText(text);
            }
        }
        publish(parameters.at("textDocument").at("uri"));
        return nullptr;
    }

    Json didClose(const Json& parameters) {
        const std::string uri = parameters.at("textDocument").at("uri");
        documents_.erase(uri);
        notifyDiagnostics(uri, Json::array());
        return nullptr;
    }

    // Makes the custom functions and scripts of the document's folder known: a function that is open in the
    // editor as it is there. What is wrong with one is told where it is open.
    void enter(const Document& document) {
        const std::filesystem::path folder = document.file().parent_path();
        std::vector<SourcePtr> sources = readCustomFunctions(folder);
        for (SourcePtr& source : sources) {
            for (const auto& [uri, open] : documents_) {
                source = open.file() == source->name() ? open.source() : source;
            }
        }
        std::vector<CalcError> errors;
        customFunctions_.load(sources, functions_, errors);
        scripts_.emplace(folder, functions_, steps_);
    }

    Document& documentOf(const Json& parameters) {
        const std::string uri = parameters.at("textDocument").at("uri");
        const auto found = documents_.find(uri);
        if (found == documents_.end()) {
            throw RpcError{RpcCode::invalidParams, "the document " + uri + " is not open"};
        }
        return found->second;
    }

    void publish(const std::string& uri) {
        const Document& document = documents_.at(uri);
        enter(document);
        Json list = Json::array();
        for (const Diagnostic& found : check(document.source(), document.kind(), known_)) {
            list.push_back({{"range", range(document.position(found.begin), document.position(found.end))},
                            {"severity", found.severity == Severity::error ? 1 : 2},
                            {"code", found.code},
                            {"source", "fmhost"},
                            {"message", found.message}});
        }
        notifyDiagnostics(uri, list);
    }

    void notifyDiagnostics(const std::string& uri, const Json& list) {
        send({{"method", "textDocument/publishDiagnostics"},
              {"params", {{"uri", uri}, {"diagnostics", list}}}});
    }

    Json completion(const Json& parameters) {
        const Document& document = documentOf(parameters);
        enter(document);
        const size_t offset = document.offset(positionFrom(parameters.at("position")));
        const CompletionList found = completions(document, offset, known_);
        const Json place = range(document.position(found.begin), document.position(offset));
        Json items = Json::array();
        for (const Completion& item : found.items) {
            items.push_back({{"label", item.name},
                             {"kind", static_cast<int>(item.kind)},
                             {"detail", item.prototype},
                             {"documentation", item.description},
                             {"filterText", item.name},
                             {"textEdit", {{"range", place}, {"newText", item.name}}}});
        }
        return {{"isIncomplete", false}, {"items", items}};
    }

    Json hover(const Json& parameters) {
        const Document& document = documentOf(parameters);
        enter(document);
        const size_t offset = document.offset(positionFrom(parameters.at("position")));
        const std::optional<Sheet> sheet = sheetAt(document, offset, known_);
        if (!sheet) {
            return nullptr;
        }
        std::string text = "```filemaker\n";
        for (const std::string& prototype : sheet->prototypes) {
            text += prototype + "\n";
        }
        text += "```\n" + sheet->description;
        text += sheet->category.empty() ? "" : "\n\n*" + sheet->category + "*";
        return {{"contents", {{"kind", "markdown"}, {"value", text}}}};
    }

    Json signatureHelp(const Json& parameters) {
        const Document& document = documentOf(parameters);
        enter(document);
        const size_t offset = document.offset(positionFrom(parameters.at("position")));
        const std::optional<CallAt> call = callAt(document, offset, known_);
        if (!call) {
            return nullptr;
        }
        Json signatures = Json::array();
        for (const std::string& prototype : call->sheet.prototypes) {
            Json places = Json::array();
            for (const auto& [begin, end] : parameterPlaces(fromUtf8(prototype))) {
                places.push_back({{"label", {begin, end}}});
            }
            signatures.push_back(
                {{"label", prototype}, {"documentation", call->sheet.description}, {"parameters", places}});
        }
        return {{"signatures", signatures}, {"activeSignature", 0}, {"activeParameter", call->argument}};
    }

    Json definition(const Json& parameters) {
        const Document& document = documentOf(parameters);
        const size_t offset = document.offset(positionFrom(parameters.at("position")));
        const std::optional<Definition> found = definitionAt(document, offset);
        if (!found) {
            return nullptr;
        }
        return {{"uri", uriFrom(found->file)}, {"range", range(found->place, found->place)}};
    }

    // A text that can not be read stays as it is; its diagnostics say why.
    Json formatting(const Json& parameters) {
        const Document& document = documentOf(parameters);
        const Json& options = parameters.at("options");
        FormatStyle style;
        style.indent = options.value("insertSpaces", true)
                           ? std::u16string(std::min<size_t>(options.value("tabSize", size_t{4}), 16), u' ')
                           : u"\t";
        try {
            const std::u16string text = formatFile(document.source(), document.kind(), style);
            if (text == document.text()) {
                return Json::array();
            }
            return Json::array({{{"range", range({0, 0}, document.position(document.text().size()))},
                                 {"newText", toUtf8(text)}}});
        } catch (const CalcError&) {
            return Json::array();
        }
    }

    // Five numbers for each part, or each line of it: lines and characters after the one before, length, type,
    // modifiers.
    Json semanticTokens(const Json& parameters) {
        const Document& document = documentOf(parameters);
        enter(document);
        Json data = Json::array();
        EditorPosition last;
        for (const Highlight& part : highlights(document, known_)) {
            if (part.role == TextRole::unknown) {
                continue; // its diagnostic shows it
            }
            for (size_t at = part.begin; at < part.end;) {
                const size_t end = std::min(document.text().find_first_of(u"\r\n", at), part.end);
                const EditorPosition place = document.position(at);
                if (end > at) {
                    data.insert(data.end(), {place.line - last.line,
                                             place.character - (place.line == last.line ? last.character : 0),
                                             end - at, static_cast<int>(part.role), 0});
                    last = place;
                }
                at = end + 1;
            }
        }
        return {{"data", data}};
    }

    std::istream& in_;
    std::ostream& out_;
    FunctionRegistry& functions_;
    const StepRegistry& steps_;
    std::map<std::string, Document> documents_; // by URI
    CustomFunctions customFunctions_;           // of the folder of the document that is looked at
    std::optional<ScriptLibrary> scripts_;      // of that folder
    const Vocabulary known_{functions_, steps_, [this](std::u16string_view file, std::u16string_view name) {
                                return scripts_->find(file, name).has_value();
                            }};
    bool isInitialized_ = false;
    bool isShutDown_ = false;
    bool isOver_ = false;
};

} // namespace

bool serveLanguage(std::istream& in, std::ostream& out, FunctionRegistry& functions,
                   const StepRegistry& steps) {
    return Server(in, out, functions, steps).run();
}

} // namespace host
