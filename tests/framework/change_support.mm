#include "tests/framework/change_support.h"

#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

OtherProcess::OtherProcess() {
    int in[2];
    int out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    std::string program = OTHER_PROCESS;
    char* arguments[] = {program.data(), nullptr};
    if (::posix_spawn(&process_, program.c_str(), &actions, nullptr, arguments, environ) != 0) {
        throw std::runtime_error("no process");
    }
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    orders_ = ::fdopen(in[1], "w");
    answers_ = ::fdopen(out[0], "r");
}

OtherProcess::~OtherProcess() {
    if (orders_ != nullptr) {
        EXPECT_EQ(end(), 0);
    }
    std::fclose(answers_);
}

int OtherProcess::end() {
    std::fclose(std::exchange(orders_, nullptr));
    int status = 0;
    ::waitpid(process_, &status, 0);
    return status;
}

void OtherProcess::begin(const std::string& order) {
    std::fputs((order + "\n").c_str(), orders_);
    std::fflush(orders_);
}

std::string OtherProcess::answer() {
    char* line = nullptr;
    std::size_t size = 0;
    const ssize_t length = ::getline(&line, &size, answers_);
    std::string answer(line, length > 0 ? static_cast<std::size_t>(length) - 1 : 0);
    std::free(line);
    return answer;
}

std::string OtherProcess::operator()(const std::string& order) {
    begin(order);
    return answer();
}

@implementation ExternalListener

- (id)init {
    if ((self = [super init]) != nil) {
        _lock = new std::mutex;
        _told = new std::vector<std::string>;
        _home = [NSThread currentThread];
        [[NSNotificationCenter defaultCenter] addObserver:self
                                                 selector:@selector(changed:)
                                                     name:kABDatabaseChangedExternallyNotification
                                                   object:nil];
    }
    return self;
}

- (void)dealloc {
    [[NSNotificationCenter defaultCenter] removeObserver:self];
    delete _told;
    delete _lock;
    [super dealloc];
}

- (void)changed:(NSNotification*)notification {
    std::string told;
    const auto tell = [&](const char* mark, NSString* key) {
        NSArray* uids = [[notification userInfo] objectForKey:key];
        if (uids != nil && [uids count] == 0) {
            told += " an empty list";
        }
        for (NSUInteger i = 0; i < [uids count]; ++i) {
            told += mark + text([uids objectAtIndex:i]);
        }
    };
    tell("+", kABInsertedRecords);
    tell("~", kABUpdatedRecords);
    tell("-", kABDeletedRecords);
    bool raises = false;
    {
        const std::lock_guard<std::mutex> guard(*_lock);
        raises = _raises;
        _told->push_back(told.empty() ? "?" : told);
        _sender = [notification object];
        _onThisThread = _onThisThread || [NSThread currentThread] == _home;
    }
    if (raises) {
        [NSException raise:NSGenericException format:@"An observer's mistake"];
    }
}

- (void)raise {
    const std::lock_guard<std::mutex> guard(*_lock);
    _raises = true;
}

- (id)sender {
    const std::lock_guard<std::mutex> guard(*_lock);
    return _sender;
}

- (bool)wasToldOnThisThread {
    const std::lock_guard<std::mutex> guard(*_lock);
    return _onThisThread;
}

- (bool)comes:(std::size_t)count {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (std::chrono::steady_clock::now() < end) {
        {
            const std::lock_guard<std::mutex> guard(*_lock);
            if (_told->size() >= count) {
                return true;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return false;
}

- (std::vector<std::string>)wait:(std::size_t)count {
    [self comes:count];
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::lock_guard<std::mutex> guard(*_lock);
    return std::exchange(*_told, {});
}

@end
