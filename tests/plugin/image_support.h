#pragma once

#include "tests/plugin/support.h"
#include <string>
#include <vector>

// What the tests of pictures share: containers, the two functions, and a current person.

struct Stream {
    std::string code;
    std::string bytes;
};

// Puts a stream at the end of a container.
void add(fmx::BinaryData& container, const Stream& stream);

// The streams behind a first one that is no picture (it says 30 by 20), as the host makes its containers.
OwnedBinaryData containerOf(std::initializer_list<Stream> streams);

std::vector<Stream> streamsOf(const fmx::BinaryData& container);

// What setting the picture answers.
std::string setPicture(const fmx::BinaryData& container);

// The result of reading the picture.
OwnedData getPicture();

// A saved person is the current one.
class ImageTest : public PluginTest {
  protected:
    void SetUp() override;

    // How the person's picture begins; empty without one.
    std::string start(std::size_t length) const;
    bool hasPicture() const { return [person_ imageData] != nil; }

    ABPerson* person_ = nil;
};
