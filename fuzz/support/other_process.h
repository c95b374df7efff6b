#pragma once

#include <string_view>
#include <sys/types.h>

namespace fuzz {

// Another process, which carries out orders one after the other. Make it before this one has threads.
class OtherProcess {
  public:
    // Forks. There, [work] gets each order; it must not throw.
    explicit OtherProcess(void (*work)(std::string_view order));
    ~OtherProcess();
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    // Has an order of up to 64 KB carried out, and waits for that. Ends this process when the other one has ended.
    void carryOut(std::string_view order);

  private:
    pid_t process_ = 0;
    int orders_ = -1;
    int answers_ = -1;
};

} // namespace fuzz
