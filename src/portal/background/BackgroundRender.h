// BackgroundRender.h: a process that renders a report while nobody's request waits for it, as seen
// from inside that process. BackgroundJob.h is the view of the requests that wait.
#pragma once

#include <signal.h>

#include <cstdint>

#include "common/UStringX.h"

class ManagerContext;
class PortalContext;
class WebPage;

// The live context, once there is one.
extern ManagerContext* current_context;

// Installs open_timeout for SIGALRM, which lets a blocking open fail, puts the former action into
// `old` and arms the alarm. 0, or 1 when the system refuses, which is logged.
int Timeout(int seconds, struct sigaction* old);
void open_timeout(int sig);

// Gives up this process's report: removes what others find it by and ends the database server's
// work on it, and with that the process. Without a database connection it returns. Not for a real
// signal handler: the watcher calls it, since a handler could interrupt memory management or the
// database client.
void abort_handler(int sig);

// Turns this process, which fork has just made, into the one that renders in the background: off
// the web server's descriptors, in a session of its own, with a watcher that ends it on SIGUSR1, or
// when nobody has touched its fifo for a while. `release` is a pipe's end from which one byte comes
// once fifo and semaphore exist; when none comes, the process ends. SIGUSR1 must be blocked.
void EnterBackground(PortalContext& ctx, int release);

// Tells how many rows of the result there are so far. Free of cost where nothing renders in the
// background.
void CountBackgroundRows(uint64_t rows);

// Tells who waits that the page is built, and makes the fifo standard output once it is opened for
// reading. Throws a text when nobody opens it within 30 seconds.
void BeginBackgroundOutput(ManagerContext& ctx);
// Did that succeed? Then what goes to standard output reaches the reader.
bool HasBackgroundOutput();
// Offers a page that says what failed, for 10 seconds, in place of the one that was to come.
void OfferErrorPage(ManagerContext& ctx, WebPage& page);
// Removes semaphore and fifo at the end of the process.
void EndBackground(ManagerContext& ctx);
