#pragma once

// Support for the tests of pictures: pictures that another program (Pillow) makes, and what it reads in ours.

#include "tests/support/temporary_folder.h"
#import <AppKit/AppKit.h>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// The pixels of a picture: rows from top to bottom, the samples of a pixel next to each other.
struct Shown {
    std::string format; // as Pillow names it
    unsigned width = 0;
    unsigned height = 0;
    unsigned samplesPerPixel = 0; // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    unsigned bits = 8;
    std::vector<std::uint16_t> samples;

    bool hasAlpha() const { return samplesPerPixel % 2 == 0; }
    // Returns the pixels as RGBA with 8 bits a sample.
    std::vector<std::uint8_t> rgba() const;
};

Shown shownBy(NSBitmapImageRep* bitmap);

// Returns the largest difference of a sample in two pictures of the same size, as RGBA. With [visible],
// ignores the colours of transparent pixels.
int difference(const Shown& one, const Shown& other, bool visible = false);

NSData* dataOf(const std::string& bytes);
std::string bytesOf(NSData* data);

// Returns the peak memory of the process in MiB; 0 with a sanitizer, under which it has no meaning.
long mostMemory();

// A test of pictures, with a temporary folder.
class PictureTest : public testing::Test {
  protected:
    struct Made {
        std::string file;
        Shown shown;
    };
    // Makes a picture by pictures.py.
    Made make(const std::string& name);
    std::vector<Made> make(const std::vector<std::string>& names);
    // Returns what Pillow reads in picture files.
    std::vector<Shown> readBack(const std::vector<NSData*>& files);
    // Returns the only bitmap of an image; nil when it cannot be read.
    static NSBitmapImageRep* bitmapOf(const std::string& file);

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();
};
