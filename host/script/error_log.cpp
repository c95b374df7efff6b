#include "host/script/error_log.h"

#include "host/values/text.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>

namespace host {

void ErrorLog::write(std::string_view file, std::u16string_view script, std::u16string_view step, size_t line,
                     int code) const {
    namespace fs = std::filesystem;
    const char* home = std::getenv("HOME");
    if (!isOn_ || home == nullptr) {
        return;
    }
    std::error_code error;
    const fs::path documents = fs::path(home) / "Documents";
    std::ofstream out((fs::is_directory(documents, error) ? documents : fs::path(home)) / "ScriptErrors.log",
                      std::ios::app);
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    out << std::put_time(&local, "%Y-%m-%d %H:%M:%S") << '\t' << file << '\t' << toUtf8(script) << '\t'
        << toUtf8(step) << '\t' << line << '\t' << code << '\t' << toUtf8(information_) << '\n';
}

} // namespace host
