#pragma once

// Set Error Logging: a file of the steps that failed.

#include <string>
#include <string_view>

namespace host {

class ErrorLog {
  public:
    // [information] stands at the end of each line.
    void turnOn(std::u16string information) {
        isOn_ = true;
        information_ = std::move(information);
    }
    void turnOff() { isOn_ = false; }

    // Adds a line to ScriptErrors.log in the folder Documents of the user, or in their home folder without
    // one: time, file, script, step, line, error, information, with tabs between them. Nothing while it is
    // off; a file that cannot be written is passed over.
    void write(std::string_view file, std::u16string_view script, std::u16string_view step, size_t line,
               int code) const;

  private:
    bool isOn_ = false;
    std::u16string information_;
};

} // namespace host
