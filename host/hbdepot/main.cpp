// hbdepot: the command-line tool over the embedded depot.
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "commandline.h"
#include "configfile.h"
#include "commands.h"

int main(int argc, char** argv)
{
    try {
        hbrc::hbdepot::CommandLine line(argc, argv);
        if (line.versionWanted()) {
            std::cout << "hbdepot " << HBRC_VERSION << "\n";
            return 0;
        }
        if (const auto config = hbrc::hbdepot::findConfigFile(std::filesystem::current_path()))
            line.useConfigFile(*config);
        if (line.helpWanted()) {
            hbrc::hbdepot::printUsage(std::cout);
            return 0;
        }
        return hbrc::hbdepot::runCommand(line, std::cout, std::cerr);
    } catch (const std::invalid_argument& error) {
        std::cerr << "hbdepot: " << error.what() << "; see hbdepot help\n";
        return 2;
    }
}
