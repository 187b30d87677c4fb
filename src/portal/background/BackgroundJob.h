// BackgroundJob.h: a report that renders in the background, as seen from the requests that start
// it, wait for it, hand it over or cancel it.
#pragma once

#include <semaphore.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>

#include "portal/background/BackgroundFiles.h"

class PortalContext;
class WebRender;

class BackgroundJob {
  public:
    enum State { kRunning, kReady, kEnded };

    // Forks a process that goes on from here. In the request it answers the job, and the request's
    // database connection is the other process's from then on. In that process it answers null and
    // `ctx.background` is set: it builds and renders the page, and nothing else. Null and no
    // `ctx.background` mean that the system refused: the request can only do the work itself. The
    // session must have been saved for the last time; one without an id is refused.
    static std::unique_ptr<BackgroundJob> Start(PortalContext& ctx);
    // The job that the request's user started in the request's session, under this process id,
    // given as decimal text; null when there is none, and for any other process.
    static std::unique_ptr<BackgroundJob> Find(PortalContext& ctx, const char* queryId);
    ~BackgroundJob();
    BackgroundJob(const BackgroundJob&) = delete;
    BackgroundJob& operator=(const BackgroundJob&) = delete;

    pid_t pid() const { return pid_; }
    // How long it has been running, in seconds, and the rows of its result so far.
    void ReadProgress(int64_t& seconds, uint64_t& rows) const;

    // Waits until the page is ready, the process has ended without one, or the time is over. Whom
    // it answers kReady, and nobody else, may call HandOver, and has to, or GiveBack.
    State Wait(int milliseconds);
    static constexpr int kNoLimit = -1;
    void GiveBack();
    // Copies the whole answer, header lines included. False when none came.
    bool HandOver(WebRender& out);
    // Ends it and its work in the database. False when the process cannot be told. Returns when it
    // has ended, or after a few seconds.
    bool Cancel();

  private:
    BackgroundJob(const BackgroundFiles& files, pid_t pid, bool isChild);
    bool IsAlive();

    BackgroundFiles files_;
    pid_t pid_;
    bool isChild_;  // of this process
    sem_t* sem_;    // null: it is gone
};
