#pragma once

// Makes an allocation of the whole program fail, of all its libraries, too. Not for builds with sanitizers, which have an
// allocator of their own.
namespace support {

// Makes the allocation after the next [allocations] of this thread return null, once.
void failAllocation(long allocations);

// Lets all succeed again. Returns whether that allocation was made.
bool allocationFailed();

} // namespace support
