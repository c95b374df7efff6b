#pragma once

#import <AddressBook/ABPerson.h>

// Who is handed a picture that was asked for.
@protocol ABImageClient <NSObject>

// On the main thread, from its run loop, never from within the call that asked. [data] is nil when the person
// has no picture; [tag] is what that call answered.
- (void)consumeImageData:(NSData*)data forTag:(NSInteger)tag;

@end

@interface ABPerson (ABImageLoading)

// The picture, byte for byte as it was set; nil removes it.
- (BOOL)setImageData:(NSData*)data;
- (NSData*)imageData;

// Asks for the picture as it is now, and answers the request's tag, never 0. The client is retained until it
// has been called, or the request is cancelled. Raises NSInvalidArgumentException for nil.
- (NSInteger)beginLoadingImageDataForClient:(id<ABImageClient>)client;

// From here on the client is not called for this request. Nothing happens for a tag that is done or unknown.
+ (void)cancelLoadingImageDataForTag:(NSInteger)tag;

@end
