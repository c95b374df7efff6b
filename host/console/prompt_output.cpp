#include "host/console/prompt_output.h"

#include "host/console/show.h"
#include "host/console/terminal_picture.h"

#include <algorithm>
#include <iostream>
#include <sys/ioctl.h>
#include <unistd.h>

namespace host {

namespace {

// The largest size of a picture, in characters. The terminal keeps half of its rows for text.
constexpr size_t kPictureColumns = 60;
constexpr size_t kPictureRows = 20;

std::string pictureOf(const Container& container) {
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
        return "";
    }
    return terminalPicture(container, std::min<size_t>(size.ws_col, kPictureColumns),
                           std::clamp<size_t>(size.ws_row / 2U, 1, kPictureRows));
}

} // namespace

void PromptOutput::line(const std::string& text) const {
    std::cout << text << std::endl;
}

void PromptOutput::result(const Value& value) const {
    if (value.type() == ValueType::container && palette_.isOn) {
        const std::string picture = pictureOf(value.asContainer());
        std::cout << picture << (picture.empty() || picture.ends_with('\n') ? "" : "\n");
    }
    line(palette_.paint(severalLines(value), attributeOf(value.type())));
}

void PromptOutput::error(const CalcError& error) const {
    const std::string report = error.report();
    const size_t end = std::min(report.find('\n'), report.size()); // the source line and its mark follow
    line(palette_.paint(report.substr(0, end), Palette::kError) + report.substr(end));
}

void PromptOutput::error(const std::string& message) const {
    line(palette_.paint(message, Palette::kError));
}

std::string PromptOutput::painted(const Value& value) const {
    return palette_.paint(oneLine(value), attributeOf(value.type()));
}

} // namespace host
