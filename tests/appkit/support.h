#pragma once

// What the tests of pictures share: pictures made by another program, and what that program sees in ours.

#include "tests/support/temporary_folder.h"
#import <AppKit/AppKit.h>
#include <cstdint>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// What a picture shows: rows from the top, the samples of a pixel next to each other.
struct Shown {
    std::string format; // as Pillow names it
    unsigned width = 0;
    unsigned height = 0;
    unsigned samplesPerPixel = 0; // 1 grey, 2 grey and alpha, 3 RGB, 4 RGBA
    unsigned bits = 8;
    std::vector<std::uint16_t> samples;

    bool hasAlpha() const { return samplesPerPixel % 2 == 0; }
    // As RGBA of 8 bits a sample.
    std::vector<std::uint8_t> rgba() const;
};

Shown shownBy(NSBitmapImageRep* bitmap);

// How far two pictures of the same size are apart at most, as RGBA; what cannot be seen may differ if
// [visible].
int difference(const Shown& one, const Shown& other, bool visible = false);

NSData* dataOf(const std::string& bytes);
std::string bytesOf(NSData* data);

// The most memory that the process ever had, in MiB; 0 where a sanitizer leaves no meaning in it.
long mostMemory();

// Each test has a folder of its own.
class PictureTest : public testing::Test {
  protected:
    struct Made {
        std::string file;
        Shown shown;
    };
    // A picture of pictures.py.
    Made make(const std::string& name);
    std::vector<Made> make(const std::vector<std::string>& names);
    // What Pillow sees in the files.
    std::vector<Shown> readBack(const std::vector<NSData*>& files);
    // The one bitmap of the image; nil when the image cannot be read.
    static NSBitmapImageRep* bitmapOf(const std::string& file);

    support::TemporaryHome home_;
    std::filesystem::path folder_ = home_.path();
};
