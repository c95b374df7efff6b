#pragma once

#import <Foundation/Foundation.h>
#include <string>

// Returns a picture file of one colour: BMP with 24 bits a pixel.
std::string bmp(int width, int height);

NSData* dataOf(const std::string& bytes);
