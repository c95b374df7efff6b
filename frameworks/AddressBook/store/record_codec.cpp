#include "frameworks/AddressBook/store/record_codec.h"

#include "frameworks/AddressBook/store/checksum.h"
#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/uid.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <variant>

namespace addressbook {
namespace {

// A value's first byte: its type.
enum class Tag : std::uint8_t {
    none = 0,
    string = 1,
    integer = 2,
    real = 3,
    date = 4,
    array = 5,
    dictionary = 6,
    data = 7,
    dateComponents = 8,
    multiValue = 9,
    floatingDate = 10
};

// The bits that say which parts date components have.
constexpr unsigned kAllDateParts = 0x3F;

static_assert(sizeof(double) == 8 && std::numeric_limits<double>::is_iec559, "reals are stored bit by bit");
static_assert(std::variant_size_v<Value::variant> == 11,
              "a new type of value needs a tag, and a schema version");

class Writer {
  public:
    void byte(std::uint8_t value) { out_.push_back(static_cast<char>(value)); }
    void count(std::uint64_t value) {
        while (value >= 0x80) {
            byte(static_cast<std::uint8_t>(value | 0x80));
            value >>= 7;
        }
        byte(static_cast<std::uint8_t>(value));
    }
    void integer(std::int64_t value) {
        count((static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63));
    }
    void eightBytes(std::uint64_t bits) {
        for (int i = 0; i < 8; ++i) {
            byte(static_cast<std::uint8_t>(bits >> (8 * i)));
        }
    }
    void real(double value) { eightBytes(std::bit_cast<std::uint64_t>(value)); }
    void bytes(std::string_view value) {
        count(value.size());
        out_.append(value);
    }
    void word(std::string_view value) {
        const int code = wordCode(value);
        count(static_cast<std::uint64_t>(code));
        if (code == 0) {
            bytes(value);
        }
    }
    // Writes an identifier; the lowest bit of its length is set when it is packed.
    void identifier(std::string_view value) {
        const auto packed = packUid(value);
        const std::string_view stored = packed ? *packed : value;
        count(stored.size() * 2 + (packed ? 1 : 0));
        out_.append(stored);
    }
    void value(const Value& value, int depth = 0);
    std::string take() { return std::move(out_); }
    std::string_view written() const { return out_; }
    void clear() { out_.clear(); }

  private:
    std::string out_;
};

void Writer::value(const Value& held, int depth) {
    if (depth > kMaxValueDepth) {
        throw std::length_error("a value is nested too deeply to be kept");
    }
    const auto tag = [this](Tag what) { byte(static_cast<std::uint8_t>(what)); };
    if (const auto* text = held.as<std::string>()) {
        tag(Tag::string);
        bytes(*text);
    } else if (const auto* whole = held.as<std::int64_t>()) {
        tag(Tag::integer);
        integer(*whole);
    } else if (const auto* number = held.as<double>()) {
        tag(Tag::real);
        real(*number);
    } else if (const auto* date = held.as<Date>()) {
        tag(Tag::date);
        real(date->seconds);
    } else if (const auto* day = held.as<FloatingDate>()) {
        tag(Tag::floatingDate);
        real(day->seconds);
    } else if (const auto* parts = held.as<DateComponents>()) {
        tag(Tag::dateComponents);
        const std::optional<int>* const all[] = {&parts->year, &parts->month,  &parts->day,
                                                 &parts->hour, &parts->minute, &parts->second};
        unsigned present = 0;
        for (unsigned i = 0; i < std::size(all); ++i) {
            present |= all[i]->has_value() ? 1U << i : 0U;
        }
        byte(static_cast<std::uint8_t>(present));
        for (const auto* part : all) {
            if (*part) {
                integer(**part);
            }
        }
    } else if (const auto* data = held.as<Bytes>()) {
        tag(Tag::data);
        bytes({reinterpret_cast<const char*>(data->data()), data->size()});
    } else if (const auto* items = held.as<Array>()) {
        tag(Tag::array);
        count(items->size());
        for (const Value& item : *items) {
            value(item, depth + 1);
        }
    } else if (const auto* fields = held.as<Dictionary>()) {
        tag(Tag::dictionary);
        count(fields->size());
        for (const auto& [key, field] : *fields) {
            word(key);
            value(field, depth + 1);
        }
    } else if (const auto* list = held.as<MultiValue>()) {
        tag(Tag::multiValue);
        identifier(list->primary);
        count(list->entries.size());
        for (const Entry& entry : list->entries) {
            identifier(entry.identifier);
            word(entry.label);
            value(entry.value, depth + 1);
        }
    } else {
        tag(Tag::none);
    }
}

class Reader {
  public:
    explicit Reader(std::string_view bytes) : rest_(bytes) {}

    bool atEnd() const { return rest_.empty(); }
    std::uint8_t byte() { return static_cast<std::uint8_t>(take(1).front()); }
    [[gnu::always_inline]] std::uint64_t count() {
        if (!rest_.empty() && static_cast<unsigned char>(rest_.front()) < 0x80) { // nearly always
            const auto value = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            return value;
        }
        const LongCount found = longCount(rest_);
        rest_.remove_prefix(found.size);
        return found.value;
    }
    std::int64_t integer() {
        const std::uint64_t value = count();
        return static_cast<std::int64_t>(value >> 1) ^ -static_cast<std::int64_t>(value & 1);
    }
    std::uint64_t eightBytes() {
        const std::string_view raw = take(8);
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < 8; ++i) {
            bits |= static_cast<std::uint64_t>(static_cast<unsigned char>(raw[i])) << (8 * i);
        }
        return bits;
    }
    double real() { return std::bit_cast<double>(eightBytes()); }
    std::string_view bytes() { return take(count()); }
    std::string_view word() {
        const std::uint64_t code = count();
        if (code == 0) {
            return bytes();
        }
        const std::string_view known = wordOf(code);
        if (known.empty()) {
            throw DamagedRecord("a word of an unknown number");
        }
        return known;
    }
    EncodedIdentifier identifier() {
        const std::uint64_t size = count();
        const EncodedIdentifier found{take(size / 2), size % 2 != 0};
        if (found.packed && !isPackedUid(found.bytes)) {
            throw DamagedRecord("an identifier of the wrong length");
        }
        return found;
    }
    Value value(int depth = 0);
    // Skips a value. Throws DamagedRecord wherever value() would.
    void skip(int depth = 0);
    // Skips the next value and returns its bytes.
    std::string_view encoded(int depth = 0) {
        const std::string_view before = rest_;
        skip(depth);
        return before.substr(0, before.size() - rest_.size());
    }
    std::string_view take(std::uint64_t size) {
        if (size > rest_.size()) {
            throw DamagedRecord("the bytes end early");
        }
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }
    void expectEnd() const {
        if (!rest_.empty()) {
            throw DamagedRecord("bytes are left over");
        }
    }
    // Reads a number of items; each takes at least one byte, so that there are no more than bytes left.
    std::size_t items() {
        const std::uint64_t number = count();
        if (number > rest_.size()) {
            throw DamagedRecord("more items than bytes");
        }
        return number;
    }

  private:
    // A count of several bytes, and how many. Not read by a Reader itself, which can then stay in registers.
    struct LongCount {
        std::uint64_t value = 0;
        std::size_t size = 0;
    };
    [[gnu::noinline]] static LongCount longCount(std::string_view bytes) {
        LongCount found;
        for (int shift = 0; shift < 64; shift += 7) {
            if (found.size == bytes.size()) {
                throw DamagedRecord("the bytes end early");
            }
            const auto part = static_cast<unsigned char>(bytes[found.size++]);
            found.value |= static_cast<std::uint64_t>(part & 0x7F) << shift;
            if (part < 0x80) {
                return found;
            }
        }
        throw DamagedRecord("a number never ends");
    }

    std::string_view rest_;
};

Value Reader::value(int depth) {
    if (depth > kMaxValueDepth) {
        throw DamagedRecord("a value is nested too deeply");
    }
    switch (static_cast<Tag>(byte())) {
    case Tag::none:
        return {};
    case Tag::string:
        return std::string(bytes());
    case Tag::integer:
        return integer();
    case Tag::real:
        return real();
    case Tag::date:
        return Date{real()};
    case Tag::floatingDate:
        return FloatingDate{real()};
    case Tag::data: {
        const std::string_view raw = bytes();
        return Bytes(raw.begin(), raw.end());
    }
    case Tag::dateComponents: {
        DateComponents parts;
        std::optional<int>* const all[] = {&parts.year, &parts.month,  &parts.day,
                                           &parts.hour, &parts.minute, &parts.second};
        const unsigned present = byte();
        for (unsigned i = 0; i < std::size(all); ++i) {
            if ((present & (1U << i)) != 0) {
                *all[i] = static_cast<int>(integer());
            }
        }
        return parts;
    }
    case Tag::array: {
        Array array;
        const std::size_t number = items();
        array.reserve(number);
        for (std::size_t i = 0; i < number; ++i) {
            array.push_back(value(depth + 1));
        }
        return array;
    }
    case Tag::dictionary: {
        Dictionary fields;
        for (std::size_t left = items(); left > 0; --left) {
            std::string key(word());
            fields.insert_or_assign(std::move(key), value(depth + 1));
        }
        return fields;
    }
    case Tag::multiValue: {
        MultiValue list;
        list.primary = identifier().text();
        const std::size_t number = items();
        list.entries.reserve(number);
        for (std::size_t i = 0; i < number; ++i) {
            Entry& entry = list.entries.emplace_back();
            entry.identifier = identifier().text();
            entry.label = word();
            entry.value = value(depth + 1);
        }
        return list;
    }
    }
    throw DamagedRecord("a value of an unknown type");
}

void Reader::skip(int depth) {
    if (depth > kMaxValueDepth) {
        throw DamagedRecord("a value is nested too deeply");
    }
    switch (static_cast<Tag>(byte())) {
    case Tag::none:
        return;
    case Tag::string:
    case Tag::data:
        bytes();
        return;
    case Tag::integer:
        count();
        return;
    case Tag::real:
    case Tag::date:
    case Tag::floatingDate:
        take(8);
        return;
    case Tag::dateComponents:
        for (int left = std::popcount(byte() & kAllDateParts); left > 0; --left) {
            count();
        }
        return;
    case Tag::array:
        for (std::size_t left = items(); left > 0; --left) {
            skip(depth + 1);
        }
        return;
    case Tag::dictionary:
        for (std::size_t left = items(); left > 0; --left) {
            word();
            skip(depth + 1);
        }
        return;
    case Tag::multiValue:
        identifier();
        for (std::size_t left = items(); left > 0; --left) {
            identifier();
            word();
            skip(depth + 1);
        }
        return;
    }
    throw DamagedRecord("a value of an unknown type");
}

} // namespace

std::string encodeValue(const Value& value) {
    Writer writer;
    writer.value(value);
    return writer.take();
}

Value decodeValue(std::string_view bytes) {
    Reader reader(bytes);
    Value value = reader.value();
    reader.expectEnd();
    return value;
}

std::string EncodedIdentifier::text() const {
    return packed ? unpackUid(bytes).value_or("") : std::string(bytes);
}

std::optional<std::string_view> textIn(std::string_view value) {
    if (value.empty() || static_cast<Tag>(value.front()) != Tag::string) {
        return std::nullopt;
    }
    Reader reader(value.substr(1));
    const std::string_view text = reader.bytes();
    reader.expectEnd();
    return text;
}

bool holdsList(std::string_view value) {
    return !value.empty() && static_cast<Tag>(value.front()) == Tag::multiValue;
}

EncodedIdentifier visitEntries(std::string_view value, const EntryVisitor& visit) {
    Reader reader(value);
    if (static_cast<Tag>(reader.byte()) != Tag::multiValue) {
        throw DamagedRecord("a list of an unknown type");
    }
    const EncodedIdentifier primary = reader.identifier();
    for (std::size_t left = reader.items(); left > 0; --left) {
        EncodedEntry entry;
        entry.identifier = reader.identifier();
        entry.label = reader.word();
        entry.value = reader.encoded(1);
        visit(entry, left - 1);
    }
    reader.expectEnd();
    return primary;
}

EncodedList listIn(std::string_view value) {
    EncodedList list;
    list.primary = visitEntries(
        value, [&list](const EncodedEntry& entry, std::size_t) { list.entries.push_back(entry); });
    return list;
}

void leavesIn(std::string_view value, std::vector<EncodedLeaf>& leaves) {
    const auto tagOf = [](std::string_view held) {
        return held.empty() ? Tag::none : static_cast<Tag>(held.front());
    };
    const auto addOne = [&](std::string_view held, std::optional<std::string_view> label) {
        Reader fields(held.substr(std::min<std::size_t>(held.size(), 1)));
        std::size_t left = tagOf(held) == Tag::dictionary ? fields.items() : 0;
        if (left == 0) {
            leaves.push_back({held, label, std::nullopt});
        }
        for (; left > 0; --left) {
            const std::string_view key = fields.word();
            leaves.push_back({fields.encoded(2), label, key});
        }
        if (tagOf(held) == Tag::dictionary) {
            fields.expectEnd();
        }
    };
    if (tagOf(value) == Tag::none) {
        return;
    }
    if (tagOf(value) != Tag::multiValue) {
        return addOne(value, std::nullopt);
    }
    Reader list(value.substr(1));
    list.identifier();
    std::size_t left = list.items();
    if (left == 0) {
        leaves.push_back({value, std::nullopt, std::nullopt});
    }
    for (; left > 0; --left) {
        list.identifier();
        const std::string_view label = list.word();
        addOne(list.encoded(1), label);
    }
    list.expectEnd();
}

void verifyChecksum(std::string_view record) {
    Reader reader(record);
    const std::uint64_t sum = reader.eightBytes();
    if (checksum(record.substr(8)) != sum) {
        throw DamagedRecord("its checksum is wrong");
    }
}

void visitProperties(std::string_view record, const PropertyVisitor& visit) {
    verifyChecksum(record);
    Reader reader(record.substr(8));
    while (!reader.atEnd()) {
        const std::string_view name = reader.word();
        visit(name, reader.bytes());
    }
}

void visitReadableProperties(std::string_view record, const PropertyVisitor& visit) {
    try {
        Reader reader(record);
        reader.eightBytes();
        while (!reader.atEnd()) {
            const std::string_view name = reader.word();
            visit(name, reader.bytes());
        }
    } catch (const DamagedRecord&) { // nothing after this place can be read
        return;
    }
}

std::optional<std::string_view> findProperty(std::string_view record, std::string_view name) {
    const auto wanted = static_cast<std::uint64_t>(wordCode(name));
    Reader reader(record);
    reader.take(8); // the checksum
    while (!reader.atEnd()) {
        const std::uint64_t code = reader.count(); // see word()
        const bool found = code == 0 ? reader.bytes() == name : code == wanted;
        const std::string_view value = reader.bytes();
        if (found) {
            return value;
        }
    }
    return std::nullopt;
}

namespace {

// Returns a properties blob; [write] writes the properties.
template <typename Write>
std::string withChecksum(Write write) {
    Writer record;
    record.eightBytes(0);
    write(record);
    std::string bytes = record.take();
    Writer sum;
    sum.eightBytes(checksum(std::string_view(bytes).substr(8)));
    return bytes.replace(0, 8, sum.take());
}

} // namespace

std::string encodeRecord(const std::map<std::string, std::string>& values) {
    return withChecksum([&](Writer& record) {
        for (const auto& [name, value] : values) {
            record.word(name);
            record.bytes(value);
        }
    });
}

std::string encodeValues(const std::map<std::string, Value>& values) {
    return withChecksum([&](Writer& record) {
        Writer encoded;
        for (const auto& [name, value] : values) {
            if (!value.empty() && isInRecord(name)) {
                encoded.clear();
                encoded.value(value);
                record.word(name);
                record.bytes(encoded.written());
            }
        }
    });
}

bool isInRecord(std::string_view property) {
    return property != property::kUid && property != property::kCreation &&
           property != property::kModification && property != property::kImage;
}

std::string encodeUids(const std::vector<std::string>& uids) {
    Writer writer;
    writer.count(uids.size());
    for (const std::string& uid : uids) {
        writer.identifier(uid);
    }
    return writer.take();
}

std::vector<std::string> decodeUids(std::string_view bytes) {
    Reader reader(bytes);
    std::vector<std::string> uids(reader.items());
    for (std::string& uid : uids) {
        uid = reader.identifier().text();
    }
    reader.expectEnd();
    return uids;
}

} // namespace addressbook
