// Stands in for the system's programs: does what its one argument says.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

int main(int argc, char **argv)
{
    const auto asked = [&](const char *word) {
        return argc == 2 && std::strcmp(argv[1], word) == 0;
    };
    if (asked("succeed with noise"))
        std::fputs("noise\n", stderr);
    if (asked("complain"))
        std::fputs("没有权限\n", stderr);
    if (asked("crash"))
        std::raise(SIGABRT);
    if (asked("hang stubbornly"))
        std::signal(SIGTERM, SIG_IGN);
    if (asked("hang") || asked("hang stubbornly"))
        std::this_thread::sleep_for(std::chrono::minutes(10));
    if (asked("complain"))
        return 3;
    return asked("succeed") || asked("succeed with noise") ? 0 : 1;
}
