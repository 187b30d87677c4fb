// BackgroundFiles.h: what a report that renders in the background has in the file system: its fifo,
// its semaphore and its progress.
#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <ctime>

#include "common/UStringX.h"

// Whose a run is and how far it is. It lies in a file that the run maps and others read.
struct BackgroundProgress {
    std::atomic<int64_t> started = 0;  // os_clock
    std::atomic<uint64_t> rows = 0;    // of the result, so far
    std::atomic<int> contactId = 0;    // the user
};

// The names of one run: they hold the session's id and the process id of the run.
class BackgroundFiles {
  public:
    BackgroundFiles(const char* sessionId, pid_t pid);

    const UString& fifo() const { return fifo_; }            // below "/Norvane"
    const UString& semaphore() const { return semaphore_; }  // as sem_open wants it

    // Makes all three, for this account of the system alone; the clock starts. False, and nothing
    // is left, when the system refuses.
    bool Create(int contactId) const;
    // Removes what is still there.
    void Remove() const;
    // Is there such a fifo, and does it belong to this account of the system?
    bool Exist() const;
    // Tells the run that somebody still waits for it.
    void Touch() const;
    // When that was told last; false when the fifo is gone.
    bool ReadTouch(timespec& when) const;
    // The progress for writing, for the rest of the process; null when it cannot be had.
    BackgroundProgress* MapProgress() const;
    // False when there is none.
    bool ReadProgress(BackgroundProgress& now) const;

  private:
    UString fifo_;
    UString semaphore_;
    UString progress_;
};

// Is this a living process of the program that runs here?
bool RunsThisProgram(pid_t pid);

// Makes the folder of the fifos when it is missing (a text is thrown when that fails), and removes
// from it what runs left behind that could not clean up: whose processes are gone.
void PrepareBackgroundFolder();
