#pragma once

// The log of failed steps that Set Error Logging turns on.

#include <string>
#include <string_view>

namespace host {

class ErrorLog {
  public:
    // Turns the log on. [information] is added to the end of each line.
    void turnOn(std::u16string information) {
        isOn_ = true;
        information_ = std::move(information);
    }
    void turnOff() { isOn_ = false; }

    // Appends a line to ScriptErrors.log in the user's folder Documents, or in the home folder when there is
    // none: time, file, script, step, line, error and information, separated by tabs. Does nothing while the
    // log is off, or when the file cannot be written.
    void write(std::string_view file, std::u16string_view script, std::u16string_view step, size_t line,
               int code) const;

  private:
    bool isOn_ = false;
    std::u16string information_;
};

} // namespace host
