// The loop that serves all clients.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tools/directoryd/Service.h"

namespace directoryd {

// Catches SIGHUP, SIGTERM and SIGINT, which then only arrive while the server waits. Call it before
// a server runs.
void CatchSignals();

class Server {
  public:
    // `file`: where the directory is written to when it has changed, "" for nowhere.
    Server(Listener& listener, Directory& directory, Service& service, std::string file)
        : listener_(listener), directory_(directory), service_(service), file_(std::move(file)) {}

    // Serves until SIGTERM or SIGINT; these and SIGHUP write the file. False when it could not be
    // written at the end.
    bool Run();

  private:
    void Wait();
    void Accept();
    void Serve(Connection& client, short events);
    bool Save();

    Listener& listener_;
    Directory& directory_;
    Service& service_;
    std::string file_;
    std::vector<std::unique_ptr<Connection>> clients_;
};

}  // namespace directoryd
