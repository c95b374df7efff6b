// Mach ports by means of an eventfd, whose count is the number of pending messages: a send adds one, the run
// loop takes one at a time.
//
// GNUstep's run loops do not retain what they watch, and may only be used by their own thread. So the
// dictionary of each thread keeps the ports of its run loop, with their modes, for as long as the thread
// lives.

#import <Foundation/Foundation.h>
#import <objc/runtime.h>
#include <stdint.h>
#include <sys/eventfd.h>
#include <unistd.h>

NSString* const kCFRunLoopCommonModes = @"kCFRunLoopCommonModes";

static NSString* const kScheduledPorts = @"NSMachPort scheduled ports";

// Returns the modes that [mode] stands for: itself, or all common modes, two of which are AppKit's.
static NSArray* modesOf(NSString* mode) {
    if (mode == nil) {
        return [NSArray arrayWithObject:NSDefaultRunLoopMode];
    }
    if (![mode isEqual:kCFRunLoopCommonModes] && ![mode isEqual:NSRunLoopCommonModes]) {
        return [NSArray arrayWithObject:mode];
    }
    return [NSArray arrayWithObjects:NSDefaultRunLoopMode, @"NSModalPanelRunLoopMode",
                                     @"NSEventTrackingRunLoopMode", nil];
}

static void requireOwnThread(NSRunLoop* runLoop) {
    if (runLoop != [NSRunLoop currentRunLoop]) {
        [NSException raise:NSInvalidArgumentException
                    format:@"A Mach port is scheduled by the thread that runs the run loop"];
    }
}

@implementation NSMachPort

- (id)init {
    if ((self = [super init]) == nil) {
        return nil;
    }
    _event = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
    if (_event < 0) {
        [self release];
        return nil;
    }
    _is_valid = YES;
    return self;
}

- (void)dealloc {
    if (_event >= 0) {
        close(_event);
    }
    [super dealloc];
}

- (BOOL)isValid {
    return !__atomic_load_n(&_closed, __ATOMIC_ACQUIRE);
}

// Adds a message. The write fails only when 2^64 - 2 messages are pending, so that the delegate is called
// anyway.
- (void)signal {
    const uint64_t one = 1;
    (void)!write(_event, &one, sizeof one);
}

// Called by Foundation's -sendBeforeDate:components:from:reserved:.
- (BOOL)sendBeforeDate:(NSDate*)GS_UNUSED_ARG limit
                 msgid:(NSInteger)GS_UNUSED_ARG identifier
            components:(NSMutableArray*)components
                  from:(NSPort*)GS_UNUSED_ARG receivePort
              reserved:(NSUInteger)GS_UNUSED_ARG headerSpace {
    if (![self isValid] || [components count] > 0) {
        return NO;
    }
    [self signal];
    return YES;
}

- (NSUInteger)reservedSpaceLength {
    return 0;
}

- (void)scheduleInRunLoop:(NSRunLoop*)runLoop forMode:(NSString*)mode {
    requireOwnThread(runLoop);
    if (![self isValid]) {
        return;
    }
    NSMutableDictionary* thread = [[NSThread currentThread] threadDictionary];
    NSMutableDictionary* ports = [thread objectForKey:kScheduledPorts];
    if (ports == nil) {
        ports = [NSMutableDictionary dictionary];
        [thread setObject:ports forKey:kScheduledPorts];
    }
    NSMutableSet* modes = [ports objectForKey:self];
    if (modes == nil) {
        modes = [NSMutableSet set];
        [ports setObject:modes forKey:self]; // -copy of a port retains it
    }
    for (NSString* each in modesOf(mode)) {
        if ([modes containsObject:each]) {
            continue;
        }
        [modes addObject:each];
        [runLoop addEvent:(void*)(intptr_t)_event type:ET_RDESC watcher:(id<RunLoopEvents>)self forMode:each];
    }
}

// Removes this port from those of [modes] of the current thread's run loop in which it is.
- (void)removeFromModes:(NSArray*)modes {
    NSMutableDictionary* ports = [[[NSThread currentThread] threadDictionary] objectForKey:kScheduledPorts];
    NSMutableSet* scheduled = [ports objectForKey:self];
    for (NSString* each in modes) {
        if (![scheduled containsObject:each]) {
            continue;
        }
        [[NSRunLoop currentRunLoop] removeEvent:(void*)(intptr_t)_event type:ET_RDESC forMode:each all:YES];
        [scheduled removeObject:each];
    }
    if (scheduled != nil && [scheduled count] == 0) {
        [[self retain] autorelease]; // the dictionary may have held the last reference
        [ports removeObjectForKey:self];
    }
}

- (void)removeFromRunLoop:(NSRunLoop*)runLoop forMode:(NSString*)mode {
    requireOwnThread(runLoop);
    [self removeFromModes:modesOf(mode)];
}

- (void)removeFromCurrentRunLoop {
    NSDictionary* ports = [[[NSThread currentThread] threadDictionary] objectForKey:kScheduledPorts];
    [self removeFromModes:[[ports objectForKey:self] allObjects]];
}

- (void)invalidate {
    if (__atomic_exchange_n(&_closed, 1, __ATOMIC_ACQ_REL)) {
        return;
    }
    [self removeFromCurrentRunLoop];
    [self signal]; // wakes the run loop of another thread, which then removes the port
    [super invalidate];
}

// Sent by the run loop, on its thread, when there are messages.
- (void)receivedEvent:(void*)GS_UNUSED_ARG data
                 type:(RunLoopEventType)GS_UNUSED_ARG type
                extra:(void*)GS_UNUSED_ARG extra
              forMode:(NSString*)GS_UNUSED_ARG mode {
    if (![self isValid]) {
        [self removeFromCurrentRunLoop];
        return;
    }
    uint64_t count;
    if (read(_event, &count, sizeof count) != sizeof count) {
        return; // a nested run of the loop has already taken the message
    }
    [[self retain] autorelease];
    if ([_delegate respondsToSelector:@selector(handleMachMessage:)]) {
        [(id<NSMachPortDelegate>)_delegate handleMachMessage:NULL];
    }
}

@end

// Passes -addPort:forMode: and -removePort:forMode: to the port when it is a Mach port.
@interface NSRunLoop (MachPorts)
@end

@implementation NSRunLoop (MachPorts)

- (void)addMachOrOtherPort:(NSPort*)port forMode:(NSString*)mode {
    if ([port isKindOfClass:[NSMachPort class]]) {
        [(NSMachPort*)port scheduleInRunLoop:self forMode:mode];
    } else {
        [self addMachOrOtherPort:port forMode:mode]; // Foundation's implementation, exchanged
    }
}

- (void)removeMachOrOtherPort:(NSPort*)port forMode:(NSString*)mode {
    if ([port isKindOfClass:[NSMachPort class]]) {
        [(NSMachPort*)port removeFromRunLoop:self forMode:mode];
    } else {
        [self removeMachOrOtherPort:port forMode:mode];
    }
}

+ (void)load {
    method_exchangeImplementations(class_getInstanceMethod(self, @selector(addPort:forMode:)),
                                   class_getInstanceMethod(self, @selector(addMachOrOtherPort:forMode:)));
    method_exchangeImplementations(class_getInstanceMethod(self, @selector(removePort:forMode:)),
                                   class_getInstanceMethod(self, @selector(removeMachOrOtherPort:forMode:)));
}

@end
