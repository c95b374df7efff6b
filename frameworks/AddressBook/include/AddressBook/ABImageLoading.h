#pragma once

#import <AddressBook/ABPerson.h>

// The receiver of pictures that are loaded in the background.
@protocol ABImageClient <NSObject>

// Called on the main thread, from its run loop, never from within the call that began loading. [data] is nil
// when the person has no picture; [tag] is the tag that that call returned.
- (void)consumeImageData:(NSData*)data forTag:(NSInteger)tag;

@end

@interface ABPerson (ABImageLoading)

// Set and return the picture, byte for byte as it was set; nil removes it.
- (BOOL)setImageData:(NSData*)data;
- (NSData*)imageData;

// Begins loading the picture as it is now, and returns the request's tag, never 0. The client is retained
// until it has been called, or the request is cancelled. Raises NSInvalidArgumentException for nil.
- (NSInteger)beginLoadingImageDataForClient:(id<ABImageClient>)client;

// Cancels a request, whose client is then not called. Does nothing for a tag that is done or unknown.
+ (void)cancelLoadingImageDataForTag:(NSInteger)tag;

@end
