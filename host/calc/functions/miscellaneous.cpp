// Conversions between paths of FileMaker and of the system, and placeholders for what this host does not
// have.
#include "host/calc/functions/groups.h"
#include "host/calc/json_text.h"
#include "host/values/text.h"

#include <algorithm>
#include <unicode/uchar.h>

namespace host {

namespace {

enum PathFormat : int64_t { kPosix = 1, kWindows = 2, kUrl = 3 };

// The prefixes of paths, in lower case.
constexpr std::u16string_view kPrefixes[] = {u"filemac:",  u"filewin:",  u"filelinux:",  u"file:",
                                             u"imagemac:", u"imagewin:", u"imagelinux:", u"image:",
                                             u"moviemac:", u"moviewin:", u"movielinux:", u"movie:"};

bool hasDrive(std::u16string_view path) {
    return path.size() >= 2 && path[1] == u':' && u_isalpha(path[0]) != 0;
}

std::u16string replaced(std::u16string text, char16_t from, char16_t to) {
    std::replace(text.begin(), text.end(), from, to);
    return text;
}

// Returns a path with percent escapes, except for its separators.
std::u16string urlPath(std::u16string_view path) {
    constexpr std::string_view kPlain =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_.~/:";
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char c : toUtf8(path)) {
        const auto byte = static_cast<unsigned char>(c);
        result += kPlain.find(c) != std::string_view::npos
                      ? std::string(1, c)
                      : std::string{'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
    return fromUtf8(result);
}

std::u16string withoutPercents(std::u16string_view text) {
    const std::string bytes = toUtf8(text);
    std::string result;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const bool coded = bytes[i] == '%' && i + 2 < bytes.size() && std::isxdigit(bytes[i + 1]) != 0 &&
                           std::isxdigit(bytes[i + 2]) != 0;
        result += coded ? static_cast<char>(std::stoi(bytes.substr(i + 1, 2), nullptr, 16)) : bytes[i];
        i += coded ? 2 : 0;
    }
    return fromUtf8(result);
}

Value fromFileMakerPath(Session& /*session*/, Arguments in) {
    std::u16string path = in[0].asText();
    const std::u16string folded = foldCase(path);
    if (folded.starts_with(u"fmnet:")) {
        return integer(in[1]) == kUrl ? Value::text(u"fmp:/" + path.substr(6)) : Value::invalid();
    }
    const auto* prefix = std::find_if(std::begin(kPrefixes), std::end(kPrefixes),
                                      [&](std::u16string_view each) { return folded.starts_with(each); });
    if (prefix == std::end(kPrefixes)) {
        return Value::invalid();
    }
    path.erase(0, prefix->size());
    const bool isAbsolute = path.starts_with(u'/');
    const std::u16string withoutSlash = isAbsolute ? path.substr(1) : path;
    switch (integer(in[1])) {
    case kPosix:
        return Value::text(path);
    case kWindows:
        return hasDrive(withoutSlash) || !isAbsolute ? Value::text(replaced(withoutSlash, u'/', u'\\'))
                                                     : Value::text(replaced(path, u'/', u'\\'));
    case kUrl:
        return isAbsolute ? Value::text(u"file://" + urlPath(path)) : Value::invalid();
    default:
        return Value::invalid();
    }
}

Value toFileMakerPath(Session& /*session*/, Arguments in) {
    std::u16string path = in[0].asText();
    const std::u16string folded = foldCase(path);
    switch (integer(in[1])) {
    case kPosix:
        return path.empty() ? Value::invalid() : Value::text(u"file:" + path);
    case kWindows:
        path = replaced(path, u'\\', u'/');
        return path.empty() ? Value::invalid() : Value::text((hasDrive(path) ? u"file:/" : u"file:") + path);
    case kUrl:
        if (folded.starts_with(u"fmp://")) {
            return Value::text(u"fmnet:/" + path.substr(6));
        }
        if (folded.starts_with(u"file://")) {
            const size_t root = path.find(u'/', 7);
            return root == std::u16string::npos ? Value::invalid()
                                                : Value::text(u"file:" + withoutPercents(path.substr(root)));
        }
        return Value::invalid();
    default:
        return Value::invalid();
    }
}

// Returns ids of no records: an empty JSON array for the types 1, 2 and 4, an empty list for 0 and 3.
Value recordIds(Session& /*session*/, Arguments in) {
    const int64_t type = integer(in[0]);
    return type == 1 || type == 2 || type == 4 ? Value::text(u"[]") : Value();
}

constexpr Builtin kFunctions[] = {
    {u"ConvertFromFileMakerPath ( filemakerPath ; format )", fromFileMakerPath,
     "Returns a path of FileMaker's in the form of a system."},
    {u"ConvertToFileMakerPath ( standardPath ; format )", toFileMakerPath,
     "Returns a path of a system in FileMaker's form."},
    {u"External ( nameOfFunction ; parameter )", Placeholder{u"?"},
     "Calls a plug-in function in the old way."},
    {u"GetAddonInfo ( addonID )", Placeholder{u"?"}, "Returns facts about an add-on."},
    {u"GetBaseTableName ( field )", Refused{CalcCode::fieldRequired}, "Returns the name of a field's table."},
    {u"GetFieldName ( field )", Refused{CalcCode::fieldRequired}, "Returns a field's name with its table's."},
    {u"GetLayoutObjectAttribute ( objectName ; attributeName {; repetitionNumber ; portalRowNumber } )",
     Placeholder{u""}, "Returns an attribute of an object on the layout."},
    {u"GetLayoutObjectOwnerInfo ( objectID )", Placeholder{u""}, "Returns what a layout object belongs to."},
    {u"GetPersistentData ( name ; instanceID )", Placeholder{{u"?"}, CalcCode::dataMissing},
     "Returns data that a script has put away."},
    {u"GetRecordIDsFromFoundSet ( type {; tableOccurrenceOrPortal } )", recordIds,
     "Returns the ids of the found records."},
    {u"LayoutObjectUUID", Placeholder{u"?"}, "Returns the identifier of the layout object."},
    {u"ListPersistentDataIDs ( name )", Placeholder{u""},
     "Lists the ids of data that a script has put away."},
};

} // namespace

std::span<const Builtin> miscellaneousFunctions() {
    return kFunctions;
}

} // namespace host
