#pragma once

// Streams of containers that plug-ins write in pieces; they are kept here until they are complete.

#include "host/values/container.h"

#include <cstdint>
#include <span>

namespace host {

// Begins a stream for a container; returns the number, never 0, by which the calls below refer to it.
uint32_t beginStream(const Container& owner, StreamType type);

// Adds bytes to a stream. Returns false, and adds nothing, when the container has no such pending stream, or
// when the stream would become larger than 32 bits can count.
bool appendToStream(const Container& owner, uint32_t number, std::span<const unsigned char> bytes);

// Puts a stream into its container. Returns false when the container has no such pending stream.
bool finishStream(Container& owner, uint32_t number);

// Discards the pending streams of a container; called when it is deleted.
void forgetStreams(const void* owner) noexcept;

} // namespace host
