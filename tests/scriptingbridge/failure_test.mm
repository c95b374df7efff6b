// No bus, no application, and applications and buses that do not reply.

#include "tests/scriptingbridge/support.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace {

using testing::AllOf;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;

// How long it lives, in seconds.
class Stopwatch {
  public:
    double seconds() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }

  private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

TEST_F(ScriptingBridgeTest, WithoutABusNothingRuns) {
    for (const char* address : {"", "unix:path=/nonexistent/bus", "unix:path=", "nonsense", "autolaunch:"}) {
        if (*address == '\0') {
            ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
        } else {
            ::setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
        }
        const Stopwatch watch;
        EXPECT_FALSE([application() isRunning]) << address;
        EXPECT_THAT(select(application(), @"a"), HasSubstr("session bus cannot be reached")) << address;
        EXPECT_THAT(activate(application()), HasSubstr("session bus cannot be reached")) << address;
        EXPECT_LE(watch.seconds(), 4) << address;
    }
}

TEST_F(ScriptingBridgeTest, AnApplicationThatDoesNotRunIsNotStarted) {
    startBus();
    EXPECT_FALSE([application() isRunning]);
    EXPECT_EQ(select(application(), @"a"), "The application org.gnome.Contacts is not running");
    EXPECT_EQ(activate(application()), "The application org.gnome.Contacts is not running");
    EXPECT_FALSE([application() isRunning]);
    EXPECT_EQ(record(), "");
    // An ordinary message would have started it.
    EXPECT_TRUE(TestBus::ping(kDefaultName));
    EXPECT_EQ(record(), "started\n");
}

TEST_F(ScriptingBridgeTest, ANameThatIsNoneDoesNotRun) {
    startBus();
    for (const char* name : {"no name", "single", ".", "a..b", "org.freedesktop.\xFF"}) {
        ::setenv("ADDRESSBOOK_APPLICATION", name, 1);
        EXPECT_FALSE([application() isRunning]) << name;
        EXPECT_NE(select(application(), @"a"), "") << name;
        EXPECT_NE(activate(application()), "") << name;
    }
}

TEST_F(ScriptingBridgeTest, AnApplicationThatNeverAnswersIsWaitedForFiveSeconds) {
    startBus();
    startApplication("silent");
    SBApplication* book = application();
    EXPECT_TRUE([book isRunning]);
    const Stopwatch watch;
    EXPECT_EQ(select(book, @"a"), "The application org.gnome.Contacts does not answer");
    EXPECT_THAT(watch.seconds(), AllOf(Ge(4.9), Le(15)));
    EXPECT_TRUE([book isRunning]);
}

TEST_F(ScriptingBridgeTest, OrForAsLongAsTheTimeoutSays) {
    startBus();
    startApplication("silent");
    SBApplication* book = impatient();
    const Stopwatch watch;
    EXPECT_EQ(activate(book), "The application org.gnome.Contacts does not answer");
    EXPECT_THAT(watch.seconds(), AllOf(Ge(0.45), Le(4)));
    EXPECT_EQ(record(), "started\nactivate\n");
}

TEST_F(ScriptingBridgeTest, AnApplicationMayEndInsteadOfAnswering) {
    startBus();
    startApplication("ends");
    SBApplication* book = application();
    EXPECT_TRUE([book isRunning]);
    const Stopwatch watch;
    EXPECT_EQ(select(book, @"a"), "The application org.gnome.Contacts ended before it answered");
    EXPECT_LE(watch.seconds(), 4);
    EXPECT_EQ(activate(book), "The application org.gnome.Contacts is not running");
    EXPECT_FALSE([book isRunning]);
    EXPECT_EQ(record(), "started\nshow-contact a\n");
}

TEST_F(ScriptingBridgeTest, AnApplicationMayRefuse) {
    startBus();
    startApplication("refuses");
    SBApplication* book = application();
    EXPECT_EQ(select(book, @"a"),
              "The application org.gnome.Contacts cannot be spoken to: there is nobody to show");
    EXPECT_THAT(activate(book), HasSubstr("there is nobody to show"));
    EXPECT_TRUE([book isRunning]);
}

TEST_F(ScriptingBridgeTest, ABusThatStopsIsNotWaitedForWithoutEnd) {
    startBus();
    startApplication();
    SBApplication* book = impatient();
    EXPECT_TRUE([book isRunning]);
    const pid_t bus = TestBus::process();
    ASSERT_EQ(::kill(bus, SIGSTOP), 0);
    const Stopwatch watch;
    EXPECT_FALSE([book isRunning]);
    EXPECT_NE(select(book, @"a"), "");
    EXPECT_NE(activate(book), "");
    EXPECT_THAT(watch.seconds(), AllOf(Ge(1.35), Le(12)));
    ASSERT_EQ(::kill(bus, SIGCONT), 0);
    EXPECT_TRUE([book isRunning]);
}

// A socket where a bus should be, which says nothing, hangs up, or talks nonsense.
class OtherListener {
  public:
    OtherListener(const std::filesystem::path& path, const std::string& says) : says_(says) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        socket_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (::bind(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(socket_, 5) != 0) {
            ADD_FAILURE() << "no socket";
        }
        ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + path.string()).c_str(), 1);
        if (!says.empty()) {
            thread_ = std::thread([this] { hangUp(); });
        }
    }
    ~OtherListener() {
        ::shutdown(socket_, SHUT_RDWR);
        if (thread_.joinable()) {
            thread_.join();
        }
        ::close(socket_);
    }

  private:
    void hangUp() {
        for (int peer = 0; (peer = ::accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0; ::close(peer)) {
            (void)!::write(peer, says_.data(), says_.size());
        }
    }

    std::string says_;
    int socket_ = -1;
    std::thread thread_;
};

TEST_F(ScriptingBridgeTest, ABusThatNeverGreetsIsWaitedForAsLongAsTheTimeoutSays) {
    const OtherListener listener(folder_ / "bus", "");
    const Stopwatch watch;
    EXPECT_FALSE([impatient() isRunning]);
    EXPECT_THAT(select(impatient(), @"a"), HasSubstr("session bus cannot be reached"));
    EXPECT_THAT(watch.seconds(), AllOf(Ge(0.9), Le(8)));
}

TEST_F(ScriptingBridgeTest, ABusThatHangsUpIsNone) {
    for (const char* says :
         {"\n", "ERROR\r\n", "OK 0123\r\n", "OK 00112233445566778899aabbccddeeff\r\nnonsense"}) {
        const OtherListener listener(folder_ / (std::to_string(std::strlen(says)) + ".bus"), says);
        EXPECT_FALSE([impatient() isRunning]);
        EXPECT_NE(select(impatient(), @"a"), "");
    }
}

} // namespace
