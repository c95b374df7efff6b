// Get functions about the computer, the user and the program.
#include "host/calc/byte_text.h"
#include "host/calc/crypt.h"
#include "host/calc/functions/groups.h"
#include "host/calc/json_text.h"
#include "host/values/formats.h"
#include "host/values/text.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ifaddrs.h>
#include <netdb.h>
#include <pwd.h>
#include <random>
#include <set>
#include <sys/utsname.h>
#include <unicode/uloc.h>
#include <unistd.h>

namespace host {

namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kVersion = u"Pro 26.0.1"; // the version of FileMaker that has these functions

std::u16string environmentText(const char* name) {
    const char* text = std::getenv(name);
    return text == nullptr ? u"" : fromUtf8(text);
}

std::string firstLine(const fs::path& file) {
    std::ifstream in(file);
    std::string line;
    std::getline(in, line);
    return line;
}

// Returns a folder in FileMaker's form, with a slash at both ends.
Value folder(std::u16string path) {
    return Value::text(path.ends_with(u'/') ? std::move(path) : path + u"/");
}

// Returns a folder of the user: the one that the desktop's environment variable names, else [name] in the
// home folder.
std::u16string userFolder(const char* variable, std::u16string_view name) {
    const std::u16string known = environmentText(variable);
    return known.starts_with(u'/') ? known : environmentText("HOME") + u"/" + std::u16string(name);
}

Value desktopPath(Session& /*session*/) {
    return folder(userFolder("XDG_DESKTOP_DIR", u"Desktop"));
}
Value documentsPath(Session& /*session*/) {
    return folder(userFolder("XDG_DOCUMENTS_DIR", u"Documents"));
}
Value preferencesPath(Session& /*session*/) {
    return folder(userFolder("XDG_CONFIG_HOME", u".config"));
}
Value temporaryPath(Session& /*session*/) {
    std::error_code error;
    return folder(fromUtf8(fs::temp_directory_path(error).string()));
}
Value programPath(Session& /*session*/) {
    std::error_code error;
    return folder(fromUtf8(fs::read_symlink("/proc/self/exe", error).parent_path().string()));
}

// Returns all files below the documents folder.
Value documentsPathListing(Session& session) {
    std::set<std::string> paths;
    std::error_code error;
    const fs::path root = toUtf8(documentsPath(session).asText());
    for (fs::recursive_directory_iterator at(root, fs::directory_options::skip_permission_denied, error), end;
         !error && at != end; at.increment(error)) {
        paths.insert(at->path().string() + (at->is_directory(error) ? "/" : ""));
    }
    std::u16string result;
    for (const std::string& path : paths) {
        result += (result.empty() ? u"" : u"\r") + fromUtf8(path);
    }
    return Value::text(result);
}

Value architecture(Session& /*session*/) {
    utsname system{};
    uname(&system);
    const std::string machine = system.machine;
    return Value::text(fromUtf8(machine == "aarch64" ? "arm64" : machine));
}

std::u16string languageName() {
    UErrorCode status = U_ZERO_ERROR;
    std::u16string name(100, u'\0');
    const int32_t length = uloc_getDisplayLanguage(formats().locale.c_str(), "en", name.data(),
                                                   static_cast<int32_t>(name.size()), &status);
    name.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return name;
}

Value systemLanguage(Session& /*session*/) {
    return Value::text(languageName());
}

// Returns the addresses of all network interfaces, except loopback ones.
Value addresses(Session& /*session*/) {
    ifaddrs* list = nullptr;
    std::u16string result;
    if (getifaddrs(&list) != 0) {
        return {};
    }
    for (const ifaddrs* each = list; each != nullptr; each = each->ifa_next) {
        char host[NI_MAXHOST];
        const bool isAddress = each->ifa_addr != nullptr && each->ifa_addr->sa_family == AF_INET;
        if (isAddress && std::string_view(each->ifa_name) != "lo" &&
            getnameinfo(each->ifa_addr, sizeof(sockaddr_in), host, sizeof host, nullptr, 0, NI_NUMERICHOST) ==
                0) {
            result += (result.empty() ? u"" : u"\r") + fromUtf8(host);
        }
    }
    freeifaddrs(list);
    return Value::text(result);
}

Value hardwareAddresses(Session& /*session*/) {
    std::set<std::string> found;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator("/sys/class/net", error)) {
        if (entry.path().filename() != "lo") {
            found.insert(firstLine(entry.path() / "address"));
        }
    }
    std::u16string result;
    for (const std::string& address : found) {
        result += (result.empty() || address.empty() ? u"" : u"\r") + toUpper(fromUtf8(address));
    }
    return Value::text(result);
}

Value hostName(Session& /*session*/) {
    char name[256] = "";
    gethostname(name, sizeof name - 1);
    return Value::text(fromUtf8(name));
}

// Returns the system's identifier for this computer; without one, which containers lack, 32 digits made of the
// computer's name.
Value persistentId(Session& session) {
    std::string id = firstLine("/etc/machine-id");
    if (id.empty()) {
        const std::string name = toUtf8(hostName(session).asText());
        const auto made = digest({reinterpret_cast<const unsigned char*>(name.data()), name.size()}, u"MD5");
        return made ? Value::text(hexadecimal(*made)) : Value();
    }
    return Value::text(toUpper(fromUtf8(id)));
}

Value storageAvailable(Session& /*session*/) {
    std::error_code error;
    const auto space = fs::space("/", error);
    return error ? Value() : integerValue(static_cast<int64_t>(space.available));
}

// Returns the version in /etc/os-release.
Value systemVersion(Session& /*session*/) {
    constexpr std::string_view kKey = "VERSION_ID=";
    std::ifstream in("/etc/os-release");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(kKey)) {
            std::string version = line.substr(kKey.size());
            std::erase(version, '"');
            return Value::text(fromUtf8(version));
        }
    }
    return {};
}

// Returns the full name in the account's GECOS field, up to the first comma; else the name of the account.
Value userName(Session& /*session*/) {
    const passwd* user = getpwuid(getuid());
    if (user == nullptr) {
        return Value::text(environmentText("USER"));
    }
    const std::string full = user->pw_gecos == nullptr ? "" : user->pw_gecos;
    const std::string name = full.substr(0, full.find(','));
    return Value::text(fromUtf8(name.empty() ? user->pw_name : name));
}

// Returns the formats of dates, times and numbers as JSON.
Value localeElements(Session& /*session*/) {
    const Formats& form = formats();
    using Order = DateOrder;
    const char* order = form.dateOrder == Order::monthDayYear   ? "MDY"
                        : form.dateOrder == Order::dayMonthYear ? "DMY"
                                                                : "YMD";
    const auto text = [](char16_t c) { return toUtf8(std::u16string(1, c)); };
    return Value::text(jsonText(Json{{"Locale", form.locale},
                                     {"Date", {{"Order", order}, {"Separator", text(form.dateSeparator)}}},
                                     {"Time",
                                      {{"Separator", text(form.timeSeparator)},
                                       {"TwelveHours", form.twelveHours},
                                       {"AM", toUtf8(form.morning)},
                                       {"PM", toUtf8(form.afternoon)}}},
                                     {"Number", {{"DecimalSeparator", text(form.decimalPoint)}}}}));
}

std::mt19937_64& generator() {
    thread_local std::mt19937_64 instance{std::random_device{}()};
    return instance;
}

// Returns a UUID of version 4, in which all bits but six are random.
Value uuid(Session& /*session*/) {
    constexpr std::u16string_view kForm = u"xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";
    constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
    std::uniform_int_distribution<size_t> digit(0, 15);
    std::u16string text(kForm);
    for (char16_t& c : text) {
        c = c == u'x' ? kDigits[digit(generator())] : c == u'y' ? kDigits[8 + digit(generator()) % 4] : c;
    }
    return Value::text(text);
}

Value uuidNumber(Session& /*session*/) {
    Number number;
    for (int word = 0; word < 6; ++word) {
        number = number * (int64_t{1} << 32) + Number(static_cast<int64_t>(generator()() >> 32));
    }
    return Value::number(number);
}

constexpr GetRow kGets[] = {
    {u"ApplicationArchitecture", architecture, "The kind of processor."},
    {u"ApplicationLanguage", Fixed{u"English"}, "The language of the program."},
    {u"ApplicationVersion", Fixed{kVersion}, "The kind and the version of the program."},
    {u"DesktopPath", desktopPath, "The path of the desktop folder."},
    {u"Device", Fixed{u"6"}, "The kind of computer: 6 is Linux."},
    {u"DocumentsPath", documentsPath, "The path of the documents folder."},
    {u"DocumentsPathListing", documentsPathListing, "All files and folders in the documents folder."},
    {u"FileLocaleElements", localeElements, "The formats of the file as JSON."},
    {u"FileMakerPath", programPath, "The path of the program's folder."},
    {u"HostName", hostName, "The name of the computer."},
    {u"PersistentID", persistentId, "An identifier of the computer that stays."},
    {u"PreferencesPath", preferencesPath, "The path of the folder of preferences."},
    {u"SystemDrive", Fixed{u"/"}, "The name of the system's drive."},
    {u"SystemIPAddress", addresses, "The network addresses of the computer."},
    {u"SystemLanguage", systemLanguage, "The language of the system."},
    {u"SystemLocaleElements", localeElements, "The formats of the system as JSON."},
    {u"SystemNICAddress", hardwareAddresses, "The hardware addresses of the network interfaces."},
    {u"SystemPlatform", Fixed{u"8"}, "The platform: 8 is Linux, as Ubuntu's."},
    {u"SystemStorageAvailable", storageAvailable, "The free bytes of the system's drive."},
    {u"SystemVersion", systemVersion, "The version of the system."},
    {u"TemporaryPath", temporaryPath, "The path of the folder for temporary files."},
    {u"UserName", userName, "The name of the user."},
    {u"UUID", uuid, "A new identifier of 36 characters."},
    {u"UUIDNumber", uuidNumber, "A new identifier as a number of 192 bits."},
};

} // namespace

std::span<const GetRow> systemGets() {
    return kGets;
}

} // namespace host
