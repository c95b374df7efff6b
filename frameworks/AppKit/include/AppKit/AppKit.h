#pragma once

// The part of AppKit that deals with pictures as data: reading picture files, looking at their pixels,
// writing them again. Nothing here draws or needs a display, a font or a file. An object may be used by one
// thread at a time, on any thread.

#import <AppKit/NSBitmapImageRep.h>
#import <AppKit/NSImage.h>
#import <AppKit/NSImageRep.h>
#import <Foundation/Foundation.h>
