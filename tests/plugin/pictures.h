#pragma once

#import <Foundation/Foundation.h>
#include <string>

// A picture file of one colour: BMP, 24 bits.
std::string bmp(int width, int height);

NSData* dataOf(const std::string& bytes);
