#include "host/console/diagnostic_formats.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace host {

namespace {

using Json = nlohmann::ordered_json;

const char* name(Severity severity) {
    return severity == Severity::error ? "error" : "warning";
}

Json jsonOf(const Diagnostic& found) {
    const auto place = [](const Place& at) { return Json{{"line", at.line}, {"column", at.column}}; };
    return {{"file", found.file},      {"begin", place(found.begin)},
            {"end", place(found.end)}, {"severity", name(found.severity)},
            {"code", found.code},      {"message", found.message}};
}

Json sarifResult(const Diagnostic& found) {
    const Json region = {{"startLine", found.begin.line},
                         {"startColumn", found.begin.column},
                         {"endLine", found.end.line},
                         {"endColumn", found.end.column}};
    return {
        {"ruleId", std::to_string(found.code)},
        {"level", name(found.severity)},
        {"message", {{"text", found.message}}},
        {"locations", Json::array({{{"physicalLocation",
                                     {{"artifactLocation", {{"uri", found.file}}}, {"region", region}}}}})}};
}

Json sarif(const std::vector<Diagnostic>& diagnostics) {
    Json results = Json::array();
    for (const Diagnostic& found : diagnostics) {
        results.push_back(sarifResult(found));
    }
    return {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({{{"tool", {{"driver", {{"name", "fmhost"}}}}},
                                   {"columnKind", "unicodeCodePoints"},
                                   {"results", results}}})}};
}

// Returns a text escaped for a workflow command; in a property also colon and comma, which would end it.
std::string escaped(std::string_view text, bool isProperty) {
    static constexpr char kHex[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        const bool isSpecial = c == '%' || c == '\r' || c == '\n' || (isProperty && (c == ':' || c == ','));
        if (isSpecial) {
            result += {'%', kHex[static_cast<unsigned char>(c) >> 4], kHex[c & 15]};
        } else {
            result += c;
        }
    }
    return result;
}

void printText(std::ostream& out, const Diagnostic& found) {
    out << found.file << ':' << found.begin.line << ':' << found.begin.column << ": " << name(found.severity)
        << ": " << found.message << '\n';
}

void printGithub(std::ostream& out, const Diagnostic& found) {
    out << "::" << name(found.severity) << " file=" << escaped(found.file, true)
        << ",line=" << found.begin.line << ",endLine=" << found.end.line << ",col=" << found.begin.column;
    if (found.end.line == found.begin.line) {
        out << ",endColumn=" << found.end.column;
    }
    out << "::" << escaped(found.message, false) << '\n';
}

} // namespace

void printDiagnostics(std::ostream& out, const std::vector<Diagnostic>& diagnostics,
                      std::string_view format) {
    if (format == "sarif") {
        out << sarif(diagnostics).dump(2) << '\n';
        return;
    }
    if (format == "json") {
        Json list = Json::array();
        for (const Diagnostic& found : diagnostics) {
            list.push_back(jsonOf(found));
        }
        out << list.dump(2) << '\n';
        return;
    }
    for (const Diagnostic& found : diagnostics) {
        format == "github" ? printGithub(out, found) : printText(out, found);
    }
}

} // namespace host
