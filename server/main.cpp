#include "server/CommandLine.h"

int main(int argc, char **argv)
{
    return clockwell::server::runCommandLine(argc, argv);
}
