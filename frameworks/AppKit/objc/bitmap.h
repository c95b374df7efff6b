#pragma once

#include "frameworks/AppKit/codec/codec.h"

#import <AppKit/NSBitmapImageRep.h>

@interface NSBitmapImageRep (Reading)

// -initWithData:, with a say in which side is up.
- (id)initWithData:(NSData*)data orientation:(appkit::Orientation)orientation;

@end
