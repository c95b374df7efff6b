#pragma once

// What a container holds: streams of bytes in their order, at most one of each type.

#include <array>
#include <compare>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace host {

// The four characters that name the type of a stream.
struct StreamType {
    std::array<char, 4> characters{};

    static constexpr StreamType of(const char (&text)[5]) { return {{text[0], text[1], text[2], text[3]}}; }
    // The characters as one number, the first in its highest byte.
    uint32_t code() const noexcept;
    void setCode(uint32_t code) noexcept;

    friend bool operator==(const StreamType&, const StreamType&) = default;
    // By the characters' codes, 0 to 255.
    friend auto operator<=>(const StreamType& left, const StreamType& right) noexcept {
        return left.code() <=> right.code();
    }
};

using Bytes = std::vector<unsigned char>;

// Copying is cheap: the bytes of a stream are shared.
class Container {
  public:
    // The streams that hold the file names (UTF-16, low byte first) and the size of a picture (two numbers of
    // 16 bits, high byte first).
    static constexpr StreamType kFileNames = StreamType::of("FNAM");
    static constexpr StreamType kSize = StreamType::of("SIZE");

    class Stream {
      public:
        Stream(StreamType type, Bytes bytes)
            : type_(type), bytes_(std::make_shared<const Bytes>(std::move(bytes))) {}

        StreamType type() const noexcept { return type_; }
        const Bytes& bytes() const noexcept { return *bytes_; }

        friend bool operator==(const Stream& left, const Stream& right) noexcept {
            return (left <=> right) == 0;
        }
        // By type, then by bytes.
        friend std::strong_ordering operator<=>(const Stream& left, const Stream& right) noexcept;

      private:
        StreamType type_;
        std::shared_ptr<const Bytes> bytes_;
    };

    size_t count() const noexcept { return streams_.size(); }
    bool isEmpty() const noexcept { return streams_.empty(); }
    auto begin() const noexcept { return streams_.begin(); }
    auto end() const noexcept { return streams_.end(); }
    // Bytes of all streams together.
    size_t totalSize() const noexcept;
    // The stream at a place below the count.
    const Stream& at(size_t index) const { return streams_.at(index); }
    // The place of the stream of a type; nothing when there is none.
    std::optional<size_t> find(StreamType type) const noexcept;

    // Adds a stream at the end, or replaces the one of that type where it stands.
    void set(StreamType type, Bytes bytes);
    // Whether there was such a stream.
    bool remove(StreamType type);
    void clear() noexcept { streams_.clear(); }

    std::optional<std::u16string> fileNames() const;
    void setFileNames(std::u16string_view names);
    std::optional<std::pair<int16_t, int16_t>> pictureSize() const; // width, height
    void setPictureSize(int16_t width, int16_t height);

    friend bool operator==(const Container&, const Container&) = default;
    // By the streams, the first difference decides.
    friend std::strong_ordering operator<=>(const Container&, const Container&) = default;

  private:
    std::vector<Stream> streams_;
};

} // namespace host
