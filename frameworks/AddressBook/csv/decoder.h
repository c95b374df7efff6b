#pragma once

// Bytes of any character set into UTF-8, piece by piece.

#include <memory>
#include <string>
#include <string_view>

namespace addressbook::csv {

class Decoder {
  public:
    // [charset] by any name that ICU knows; empty: a mark at the beginning tells, else UTF-8 or UTF-16 when the
    // text is that, else what is most likely. Throws std::invalid_argument when there is no such character set.
    explicit Decoder(std::string charset);
    ~Decoder();
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    // Returns the text of the next bytes; [last]: there are no more. What is no text becomes U+FFFD.
    std::string decode(std::string_view bytes, bool last);

    // Returns the character set that was guessed; empty when nothing had to be guessed.
    const std::string& guessed() const { return guessed_; }

  private:
    struct Converter;
    void choose(std::string_view bytes);

    std::string charset_, guessed_;
    std::unique_ptr<Converter> converter_; // null as long as all is ASCII and the character set is not known
    bool begun_ = false;
};

} // namespace addressbook::csv
