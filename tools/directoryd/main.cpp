// directoryd: a small directory server in memory, for the demo and the tests.
#include <arpa/inet.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>
#include <string>

#include "kernel/OSConsole.h"
#include "kernel/OSStartup.h"
#include "tools/directoryd/Ldif.h"
#include "tools/directoryd/Server.h"

namespace {

constexpr char kUsage[] =
    "usage: directoryd --user DN (--password PW | --password-file PWFILE) [--ldif FILE]\n"
    "                  [--listen ADDR]\n"
    "Serves a directory on port 4000 of ADDR (127.0.0.1) to who signs in as DN with PW, or with the\n"
    "first line of PWFILE, which no list of processes shows. It begins with the entries of FILE.\n"
    "SIGHUP and SIGTERM write a directory that has changed back to FILE; without FILE it is lost at\n"
    "the end.\n";

struct Options {
    directoryd::Credentials allowed;
    std::string file;
    in_addr address = {htonl(INADDR_LOOPBACK)};
};

std::string FirstLine(const std::string& path) {
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line)) throw std::runtime_error(path + " holds no password");
    return line;
}

Options Parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; i += 2) {
        const std::string option = argv[i];
        if (i + 1 == argc) throw std::invalid_argument(option + " needs a value");
        const char* const value = argv[i + 1];
        if (option == "--user")
            options.allowed.user = value;
        else if (option == "--password")
            options.allowed.password = value;
        else if (option == "--password-file")
            options.allowed.password = FirstLine(value);
        else if (option == "--ldif")
            options.file = value;
        else if (option != "--listen")
            throw std::invalid_argument("unknown option " + option);
        else if (inet_pton(AF_INET, value, &options.address) != 1)
            throw std::invalid_argument("--listen takes an address such as 127.0.0.1");
    }
    // A bind without name or password is an anonymous one elsewhere; nobody is let in by that here.
    if (options.allowed.user.empty() || options.allowed.password.empty())
        throw std::invalid_argument("--user or --password is missing");
    return options;
}

bool Serve(const Options& options) {
    directoryd::Directory directory;
    if (!options.file.empty()) directoryd::ReadLdif(options.file, directory);
    directoryd::CatchSignals();
    directoryd::Listener listener(options.address.s_addr);
    char address[INET_ADDRSTRLEN];
    inet_ntop(AF_INET, &options.address, address, sizeof address);
    if (listener.state != Socket::READY)
        throw std::runtime_error(std::string("cannot listen on ") + address + " port 4000");
    directoryd::Service service(directory, options.allowed);
    directoryd::Server server(listener, directory, service, options.file);
    ConsoleReport("directoryd: %zu entries, listening on %s:4000", directory.size(), address);
    return server.Run();
}

}  // namespace

int main(int argc, char** argv) {
    os_startup();
    Console->SetStream(stderr);
    try {
        return Serve(Parse(argc, argv)) ? 0 : 1;
    } catch (const std::invalid_argument& error) {
        std::fprintf(stderr, "directoryd: %s\n%s", error.what(), kUsage);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "directoryd: %s\n", error.what());
        return 1;
    }
}
