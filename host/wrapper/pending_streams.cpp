#include "host/wrapper/pending_streams.h"

#include <limits>
#include <map>
#include <mutex>

namespace host {

namespace {

struct PendingStream {
    const void* owner;
    StreamType type;
    Bytes bytes;
};

struct PendingStreams {
    std::mutex mutex;
    std::map<uint32_t, PendingStream> streams;
    uint32_t lastNumber = 0;

    // Returns the stream with this number; end() when it does not belong to the container or there is none.
    std::map<uint32_t, PendingStream>::iterator find(const void* owner, uint32_t number) {
        const auto stream = streams.find(number);
        return stream != streams.end() && stream->second.owner == owner ? stream : streams.end();
    }
};

PendingStreams& pending() {
    static PendingStreams all;
    return all;
}

} // namespace

uint32_t beginStream(const Container& owner, StreamType type) {
    PendingStreams& all = pending();
    const std::lock_guard lock(all.mutex);
    do {
        ++all.lastNumber;
    } while (all.lastNumber == 0 || all.streams.contains(all.lastNumber));
    all.streams.emplace(all.lastNumber, PendingStream{&owner, type, {}});
    return all.lastNumber;
}

bool appendToStream(const Container& owner, uint32_t number, std::span<const unsigned char> bytes) {
    PendingStreams& all = pending();
    const std::lock_guard lock(all.mutex);
    const auto stream = all.find(&owner, number);
    if (stream == all.streams.end() ||
        bytes.size() > std::numeric_limits<uint32_t>::max() - stream->second.bytes.size()) {
        return false;
    }
    stream->second.bytes.insert(stream->second.bytes.end(), bytes.begin(), bytes.end());
    return true;
}

bool finishStream(Container& owner, uint32_t number) {
    PendingStreams& all = pending();
    const std::lock_guard lock(all.mutex);
    const auto stream = all.find(&owner, number);
    if (stream == all.streams.end()) {
        return false;
    }
    owner.set(stream->second.type, std::move(stream->second.bytes));
    all.streams.erase(stream);
    return true;
}

void forgetStreams(const void* owner) noexcept {
    PendingStreams& all = pending();
    const std::lock_guard lock(all.mutex);
    std::erase_if(all.streams, [&](const auto& stream) { return stream.second.owner == owner; });
}

} // namespace host
