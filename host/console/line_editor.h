#pragma once

// Reads what is typed at the prompt: several lines, history, keys, colours. Keys are libedit's (emacs, or as
// ~/.editrc says), and those of keyTable().

#include "host/console/input_painter.h"
#include "host/editor/assistance.h"

#include <csignal>
#include <filesystem>
#include <functional>
#include <histedit.h>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// What the editor asks of the prompt while a text is being typed. Texts are UTF-8, offsets UTF-16 units.
class LineAssistant {
  public:
    virtual ~LineAssistant() = default;

    // Whether Enter takes the text; if not, Enter begins another line of it.
    virtual bool isComplete(const std::string& text) = 0;

    // The names that may stand at the end of a text.
    virtual CompletionList complete(const std::u16string& text) = 0;

    // The attribute of each unit of the text, see Palette.
    virtual std::vector<std::string_view> attributes(const std::u16string& text) = 0;

    // A line about what stands at the cursor, at most so many columns wide; may be empty.
    virtual std::string hint(const std::u16string& text, size_t cursor, size_t columns) = 0;

    // Called while nothing is typed. To be told before anything is printed. Returns whether anything was.
    virtual bool idle(const std::function<void()>& beforeOutput) = 0;
};

// A key that the prompt has beside those of a line editor, or that its users should know.
struct Key {
    std::string_view name;
    std::string_view description;
};
std::span<const Key> keyTable();

class LineEditor {
  public:
    // [history] is the file of the history; with an empty path none is kept. [interrupted] is set by Ctrl-C.
    LineEditor(LineAssistant& assistant, std::filesystem::path history,
               const volatile std::sig_atomic_t& interrupted);
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    enum class Ending : uint8_t { entered, interrupted, closed };

    // Reads a text and leaves the cursor below it.
    Ending read(std::string& text);

    // Adds a text to the history and its file.
    void remember(const std::string& text);

  private:
    static LineEditor& of(EditLine* line);
    static char* prompt(EditLine* line);
    static int readCharacter(EditLine* line, wchar_t* result);
    static unsigned char enter(EditLine* line, wint_t key);
    static unsigned char breakLine(EditLine* line, wint_t key);
    static unsigned char complete(EditLine* line, wint_t key);
    static unsigned char up(EditLine* line, wint_t key);
    static unsigned char down(EditLine* line, wint_t key);
    static unsigned char paste(EditLine* line, wint_t key);

    void bindKeys();
    int waitForCharacter(wchar_t& result);
    void takeTerminal();
    void paint();
    void insert(const std::wstring& text);
    EditorView view();
    void list(const std::vector<Completion>& items);

    LineAssistant& assistant_;
    std::filesystem::path file_;
    const volatile std::sig_atomic_t& interrupted_;
    std::unique_ptr<History, decltype(&history_end)> history_;
    std::unique_ptr<EditLine, decltype(&el_end)> line_;
    InputPainter painter_;
    bool paints_;
    std::pair<unsigned short, unsigned short> size_; // of the terminal: columns, rows
};

} // namespace host
