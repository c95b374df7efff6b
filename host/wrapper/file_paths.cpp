#include "host/wrapper/file_paths.h"

#include "host/values/text.h"

#include <algorithm>
#include <array>

namespace host {

namespace {

using namespace std::string_view_literals;

constexpr std::array kPrefixes = {u"file:"sv,  u"filemac:"sv,  u"filewin:"sv,  u"filelinux:"sv,
                                  u"image:"sv, u"imagemac:"sv, u"imagewin:"sv, u"imagelinux:"sv,
                                  u"movie:"sv, u"moviemac:"sv, u"moviewin:"sv, u"movielinux:"sv};
constexpr std::u16string_view kNetworkFile = u"fmnet:/";
constexpr std::u16string_view kNetworkUrl = u"fmp://";
constexpr std::u16string_view kFileUrl = u"file://";

bool isLetter(char16_t c) {
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// Whether a path begins with a drive: "C:/" or "C:" alone, behind so many characters.
bool hasDrive(std::u16string_view path, size_t at) {
    return path.size() >= at + 2 && isLetter(path[at]) && path[at + 1] == u':' &&
           (path.size() == at + 2 || path[at + 2] == u'/');
}

std::u16string withSlashes(std::u16string_view path, char16_t from, char16_t to) {
    std::u16string result(path);
    std::replace(result.begin(), result.end(), from, to);
    return result;
}

int hexDigit(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
}

std::u16string percentDecoded(std::u16string_view text) {
    const std::string bytes = toUtf8(text);
    std::string result;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const bool isCode = bytes[i] == '%' && i + 2 < bytes.size() && hexDigit(bytes[i + 1]) >= 0 &&
                            hexDigit(bytes[i + 2]) >= 0;
        result += isCode ? static_cast<char>(hexDigit(bytes[i + 1]) * 16 + hexDigit(bytes[i + 2])) : bytes[i];
        i += isCode ? 2 : 0;
    }
    return fromUtf8(result);
}

std::u16string percentEncoded(std::u16string_view text) {
    constexpr std::string_view kPlain = "-._~!$&'()*+,;=:@/";
    constexpr std::u16string_view kHex = u"0123456789ABCDEF";
    std::u16string result;
    for (const char c : toUtf8(text)) {
        const auto code = static_cast<unsigned char>(c);
        if (code < 0x80 &&
            (isLetter(code) || (c >= '0' && c <= '9') || kPlain.find(c) != std::string_view::npos)) {
            result += static_cast<char16_t>(code);
        } else {
            result += {u'%', kHex[code >> 4], kHex[code & 15]};
        }
    }
    return result;
}

// The host's path without its prefix.
std::u16string_view withoutPrefix(std::u16string_view path) {
    for (const std::u16string_view prefix : kPrefixes) {
        if (path.starts_with(prefix)) {
            return path.substr(prefix.size());
        }
    }
    return path;
}

std::u16string filePath(std::u16string_view path) {
    return std::u16string(kPrefixes.front()).append(path);
}

} // namespace

std::optional<std::u16string> hostPath(std::u16string_view path, PathFormat format) {
    if (path.starts_with(kNetworkUrl)) {
        return std::u16string(kNetworkFile).append(path.substr(kNetworkUrl.size()));
    }
    switch (format) {
    case PathFormat::posix:
        return path.starts_with(u'/') ? std::optional(filePath(path)) : std::nullopt;
    case PathFormat::windows: {
        const std::u16string slashed = withSlashes(path, u'\\', u'/');
        return hasDrive(slashed, 0)         ? std::optional(filePath(u"/" + slashed))
               : slashed.starts_with(u"//") ? std::optional(filePath(slashed))
                                            : std::nullopt;
    }
    case PathFormat::urlPath: {
        const std::u16string decoded = percentDecoded(path);
        const std::u16string_view local =
            decoded.starts_with(u"file:///") ? std::u16string_view(decoded).substr(kFileUrl.size())
            : decoded.starts_with(kFileUrl)  ? std::u16string_view(decoded).substr(kFileUrl.size() - 2)
                                             : std::u16string_view(decoded);
        return local.starts_with(u'/') ? std::optional(filePath(local)) : std::nullopt;
    }
    }
    return std::nullopt;
}

std::optional<std::u16string> systemPath(std::u16string_view path, PathFormat format) {
    if (path.starts_with(kNetworkFile)) {
        return format == PathFormat::urlPath
                   ? std::optional(std::u16string(kNetworkUrl).append(path.substr(kNetworkFile.size())))
                   : std::nullopt;
    }
    const std::u16string_view local = withoutPrefix(path);
    const bool isShare = local.starts_with(u"//");
    const bool isWindows = isShare || (local.starts_with(u'/') && hasDrive(local, 1));
    if (!local.starts_with(u'/')) {
        return std::nullopt;
    }
    switch (format) {
    case PathFormat::posix:
        return isWindows ? std::nullopt : std::optional(std::u16string(local));
    case PathFormat::windows:
        return isWindows ? std::optional(withSlashes(local.substr(isShare ? 0 : 1), u'/', u'\\'))
                         : std::nullopt;
    case PathFormat::urlPath:
        return std::u16string(isShare ? u"file:" : kFileUrl).append(percentEncoded(local));
    }
    return std::nullopt;
}

} // namespace host
