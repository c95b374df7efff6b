#pragma once

// Streams of containers that come in pieces: they are kept here until they are whole.

#include "host/values/container.h"

#include <cstdint>
#include <span>

namespace host {

// Begins a stream for a container; answers the number, never 0, by which the calls below name it.
uint32_t beginStream(const Container& owner, StreamType type);

// Adds bytes to a stream; false, and nothing added, when the container has begun none of that number, and
// when the stream would be larger than the interface can count.
bool appendToStream(const Container& owner, uint32_t number, std::span<const unsigned char> bytes);

// Puts a stream into its container. False when the container has begun none of that number.
bool finishStream(Container& owner, uint32_t number);

// Forgets what a container has begun; called when it goes.
void forgetStreams(const void* owner) noexcept;

} // namespace host
