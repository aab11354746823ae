#include "Rush.h"

#include <spdlog/spdlog.h>

#include <cstdio>
#include <iostream>

int main(int argc, char **argv)
{
    using namespace clockwell::rush;
    try {
        spdlog::set_level(spdlog::level::warn); // of the server's library
        Rush rush{parseRushOptions({argv + 1, argv + argc})};
        rush.play();
        rush.print(std::cout);
        return rush.good() ? 0 : 1;
    } catch (const UsageText &text) {
        std::fputs(text.what(), text.exitStatus() == 0 ? stdout : stderr);
        return text.exitStatus();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "rush: %s\n", error.what());
        return 1;
    }
}
