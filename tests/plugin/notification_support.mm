#include "tests/plugin/notification_support.h"

#include "tests/plugin/host_double.h"

std::vector<Start> starts;
std::function<void()> duringStart;
fmx::errcode startAnswer = 0;

namespace {

fmx::errcode startScript(const fmx::Text* file, const fmx::Text* script, fmx::uchar control,
                         const fmx::Data* parameter) {
    const auto utf8Of = [](const fmx::Text& text) {
        NSString* string = stringFromText(text);
        return string == nil ? std::string() : utf8(string);
    };
    EXPECT_EQ(parameter->GetNativeType(), fmx::Data::kDTText);
    starts.push_back({utf8Of(*file), utf8Of(*script), control, utf8Of(parameter->GetAsText()),
                      std::this_thread::get_id()});
    if (duringStart) {
        duringStart();
    }
    return startAnswer;
}

} // namespace

std::vector<std::string> parameters() {
    std::vector<std::string> all;
    for (const Start& start : starts) {
        all.push_back(start.parameter);
    }
    return all;
}

NSDictionary* changes(NSArray* inserted, NSArray* updated, NSArray* deleted) {
    NSMutableDictionary* info = [NSMutableDictionary dictionary];
    if (inserted != nil) {
        [info setObject:inserted forKey:kABInsertedRecords];
    }
    if (updated != nil) {
        [info setObject:updated forKey:kABUpdatedRecords];
    }
    if (deleted != nil) {
        [info setObject:deleted forKey:kABDeletedRecords];
    }
    return info;
}

NSArray* ids(NSString* first, NSString* second) {
    return [NSArray arrayWithObjects:first, second, nil];
}

NSNotification* notificationOf(NSDictionary* changes) {
    return [NSNotification notificationWithName:kABDatabaseChangedExternallyNotification
                                         object:nil
                                       userInfo:changes];
}

void post(NSDictionary* changes) {
    [[NSNotificationCenter defaultCenter] postNotification:notificationOf(changes)];
}

void postElsewhere(int first, int count) {
    std::thread([=] {
        const Pool pool;
        for (int i = first; i < first + count; ++i) {
            post(changes(ids([NSString stringWithFormat:@"%d", i]), nil, nil));
        }
    }).join();
}

void turnLoop() {
    const Pool pool;
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0]];
}

std::string registerScript(const std::string& file, const std::string& script) {
    const Pool pool;
    const OwnedExprEnv environment;
    const OwnedDataVect arguments = vectorOf({file, script});
    const OwnedData result;
    EXPECT_EQ(Do_KORU_RegisterUpdateScript(44, *environment, *arguments, *result), 0);
    return utf8(stringFromText(result->GetAsText()));
}

void NotificationTest::SetUp() {
    PluginTest::SetUp();
    message_.cStartScript = startScript;
    gFMX_ExternCallPtr = &message_;
    starts.clear();
    duringStart = nullptr;
    startAnswer = 0;
}

NotificationTest::~NotificationTest() {
    [[NSNotificationCenter defaultCenter] removeObserver:listner.get()];
    if (listner) {
        [listner.get()->notificationPort invalidate];
    }
    listner.reset();
    gFMX_ExternCallPtr = nullptr;
    host_double::reset();
}
