#pragma once

// The part of AppKit for pictures as data: reading picture files, accessing their pixels, and writing files.
// Nothing here draws, or needs a display, a font or a file. Objects may be used on any thread, by one thread
// at a time.

#import <AppKit/NSBitmapImageRep.h>
#import <AppKit/NSImage.h>
#import <AppKit/NSImageRep.h>
#import <Foundation/Foundation.h>
