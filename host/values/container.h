#pragma once

// Container values: an ordered list of streams of bytes, at most one of each type.

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
    // Return and set the characters as one number, with the first character in its highest byte.
    uint32_t code() const noexcept;
    void setCode(uint32_t code) noexcept;

    friend bool operator==(const StreamType&, const StreamType&) = default;
    // By the characters' codes, 0 to 255.
    friend auto operator<=>(const StreamType& left, const StreamType& right) noexcept {
        return left.code() <=> right.code();
    }
};

using Bytes = std::vector<unsigned char>;

// The contents of a container value. Copying is cheap: copies share the bytes of their streams.
class Container {
  public:
    // The types of the streams that hold the file names (UTF-16, little-endian) and the size of a picture
    // (two 16-bit numbers, big-endian).
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
    // Returns the number of bytes in all streams.
    size_t totalSize() const noexcept;
    // Returns the stream at [index]. Throws std::out_of_range.
    const Stream& at(size_t index) const { return streams_.at(index); }
    // Returns the index of the stream of a type; nothing when there is none.
    std::optional<size_t> find(StreamType type) const noexcept;

    // Adds a stream at the end, or replaces the one of that type in its place.
    void set(StreamType type, Bytes bytes);
    // Removes the stream of a type; returns whether there was one.
    bool remove(StreamType type);
    void clear() noexcept { streams_.clear(); }

    // Return and set what the streams kFileNames and kSize say; nothing when there is no such stream.
    std::optional<std::u16string> fileNames() const;
    void setFileNames(std::u16string_view names);
    std::optional<std::pair<int16_t, int16_t>> pictureSize() const; // width, height
    void setPictureSize(int16_t width, int16_t height);

    friend bool operator==(const Container&, const Container&) = default;
    // Compares stream by stream; the first difference decides.
    friend std::strong_ordering operator<=>(const Container&, const Container&) = default;

  private:
    std::vector<Stream> streams_;
};

} // namespace host
