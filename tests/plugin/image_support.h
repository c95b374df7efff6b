#pragma once

#include "tests/plugin/support.h"
#include <string>
#include <vector>

// Support for the tests of pictures: containers, the two functions, and a current person.

struct Stream {
    std::string code;
    std::string bytes;
};

// Adds a stream to the end of a container.
void add(fmx::BinaryData& container, const Stream& stream);

// Returns a container with these streams after a first one for the size (30 by 20), as the host makes them.
OwnedBinaryData containerOf(std::initializer_list<Stream> streams);

std::vector<Stream> streamsOf(const fmx::BinaryData& container);

// Sets the picture and returns the function's result.
std::string setPicture(const fmx::BinaryData& container);

// Reads the picture and returns the function's result.
OwnedData getPicture();

// A test in which a saved person is current.
class ImageTest : public PluginTest {
  protected:
    void SetUp() override;

    // Returns the first bytes of the person's picture; empty when there is none.
    std::string start(std::size_t length) const;
    bool hasPicture() const { return [person_ imageData] != nil; }

    ABPerson* person_ = nil;
};
