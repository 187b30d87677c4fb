#include "cgiFramework/WebSession.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cgiFramework/WebContext.h"
#include "common/Parse.h"
#include "common/Path.h"
#include "common/ThrowText.h"
#include "kernel/OSConsole.h"

namespace {

constexpr char kSessions[] = "/Norvane/sessions";
constexpr size_t kLongestLine = 2048;  // name, "=", value and line end
constexpr int kMaxNewIdTries = 100;
// Marks a session whose id the browser brought along.
constexpr char kForeignId[] = "foreignSessionId";
constexpr char kForeignIdLine[] = "foreignSessionId=1\n";
// A folder with fewer files is swept at every request, a larger one once in this many seconds.
constexpr int kSmallFolder = 500;
constexpr time_t kSweepPause = 60;
constexpr char kSweepMark[] = "+swept";

UString SessionPath(const UString& prefix, const char* id) {
    UString path;
    path.Format("%s/%s_%s", kSessions, prefix.c_str(), id);
    return RootPath(path.c_str());
}

const char* Environment(const char* name) {
    const char* value = getenv(name);
    return value != nullptr ? value : "";
}

// A random non-negative long as decimal text.
UString RandomId() {
    uint64_t bits = 0;
    if (getrandom(&bits, sizeof bits, 0) != static_cast<ssize_t>(sizeof bits))
        ThrowText("The system has no random numbers.");
    UString id;
    id.Format("%ld", static_cast<long>(bits >> 1));
    return id;
}

// "name=value" in one line, or nothing for a variable that must not be written. The value ends at
// its first line break, and the line where reading it back would end it.
void AppendLine(std::string& out, const WebSessionVar& var) {
    const std::string_view name = var.name.c_str();
    if (name.empty() || name.find_first_of("=\r\n") != std::string_view::npos) return;
    std::string_view value = var.value.c_str();
    value = value.substr(0, value.find_first_of("\r\n"));
    if (name.size() + 2 > kLongestLine) return;
    value = value.substr(0, kLongestLine - 2 - name.size());
    out.append(name).append("=").append(value).append("\n");
}

// Holds SIGTERM back: a web server may send it as soon as it has the page, in mid write.
class HoldTermination {
  public:
    HoldTermination() {
        sigset_t term;
        sigemptyset(&term);
        sigaddset(&term, SIGTERM);
        sigprocmask(SIG_BLOCK, &term, &before_);
    }
    ~HoldTermination() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
    HoldTermination(const HoldTermination&) = delete;
    HoldTermination& operator=(const HoldTermination&) = delete;

  private:
    sigset_t before_;
};

class Folder {
  public:
    explicit Folder(const char* path) : dir_(opendir(path)) {}
    ~Folder() {
        if (dir_ != nullptr) closedir(dir_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    bool IsOpen() const { return dir_ != nullptr; }
    int fd() const { return dirfd(dir_); }
    const char* NextName() {
        const dirent* entry = readdir(dir_);
        return entry != nullptr ? entry->d_name : nullptr;
    }

  private:
    DIR* dir_;
};

// True when a large folder was swept a short while ago; else takes this sweep's time.
bool WasJustSwept(int folderFd) {
    struct stat mark {};
    const bool swept = fstatat(folderFd, kSweepMark, &mark, AT_SYMLINK_NOFOLLOW) == 0 &&
                       mark.st_mtime + kSweepPause > time(nullptr);
    if (swept) return true;
    const int fd = openat(folderFd, kSweepMark, O_WRONLY | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) return false;
    futimens(fd, nullptr);
    close(fd);
    return false;
}

void DeleteIfOld(int folderFd, const char* name, time_t newest) {
    struct stat info {};
    if (fstatat(folderFd, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return;
    if (S_ISDIR(info.st_mode) || info.st_mtime >= newest) return;
    unlinkat(folderFd, name, 0);
}

}  // namespace

const char* WebSessionVar::Text() const {
    return IsEmpty() ? def_.c_str() : value.c_str();
}

bool IsSessionId(const char* text) {
    return IsDigits(text, 1, 20);
}

void EnsureFolder(const char* path) {
    const UString real = RootPath(path);
    if (access(real.c_str(), W_OK | X_OK) == 0) return;
    if (errno == ENOENT && mkdir(real.c_str(), 0700) == 0) return;
    if (access(real.c_str(), W_OK | X_OK) == 0) return;  // another request made it meanwhile
    ThrowText("The folder %s cannot be used: %s", path, strerror(errno));
}

void CleanupDir(const char* dir, const char* needle, int maxAge) {
    Folder folder(RootPath(dir).c_str());
    if (!folder.IsOpen()) return;
    const time_t newest = time(nullptr) - maxAge;
    std::vector<std::string> candidates;
    int files = 0;
    while (const char* name = folder.NextName()) {
        if (name[0] == '.' && (name[1] == '\0' || strcmp(name, "..") == 0)) continue;
        ++files;
        if (name[0] != '+' && strstr(name, needle) != nullptr) candidates.emplace_back(name);
    }
    if (files >= kSmallFolder && WasJustSwept(folder.fd())) return;
    for (const std::string& name : candidates)
        DeleteIfOld(folder.fd(), name.c_str(), newest);
}

void WebContext::InitSession(const char* prefix, int maxAge, bool inUrl) {
    EnsureFolder(kSessions);
    session_prefix = prefix;
    if (inUrl) {
        WebArgument& id = (*this)["sessionId"];
        id.type_ = WebArgument::Context;
        // On a further round of the request the arguments were scanned anew.
        if (!session_id.IsEmpty()) id = session_id.c_str();
    }
    if (maxAge != 0) CleanupDir(kSessions, prefix, maxAge);
    ScanWebSessionVars(nullptr);
}

void WebContext::ScanWebSessionVars(const char* id) {
    const WebArgument* argument = FindWebArgument("sessionId");
    const char* const candidates[] = {
        id, argument != nullptr ? argument->value.c_str() : nullptr,
        HasWebCookie("sessionId") ? GetWebCookie("sessionId")->value.c_str() : nullptr};
    // The id becomes part of a file name: anything but digits counts as none.
    UString wanted;
    for (const char* candidate : candidates) {
        if (!wanted.IsEmpty() || candidate == nullptr || !IsSessionId(candidate)) continue;
        wanted = candidate;
    }
    if (wanted.IsEmpty()) {
        if (argument != nullptr) SetWebArgument("sessionId", session_id.c_str());
        return;
    }
    if (wanted == session_id) return;  // held by this process already, changes included

    session_id = wanted;
    session_vars.Clear();
    const UString path = SessionPath(session_prefix, session_id.c_str());
    LockedFile file(path.c_str(), "r");
    if (file == nullptr) {
        CreateSessionId();
        return;
    }
    LoadSession(file);
    const char* address = Environment("REMOTE_ADDR");
    const WebSessionVar* saved = FindWebSessionVar("REMOTE_ADDR");
    const char* savedAddress = saved != nullptr ? saved->value.c_str() : "";
    if (strcmp(address, savedAddress) == 0) {
        session_loaded_ = true;
        return;
    }
    // Another address: the owner's file stays as it is, and this request gets a session of its own.
    *GetWebArgument("invalidSessionId", WebArgument::Hidden) = session_id.c_str();
    ConsoleReport("WebContext::Invalid %s saved addr=%s \n", path.c_str(), savedAddress);
    session_vars.Clear();
    session_id = "";
    CreateSessionId();
}

// A line of the file that is too long to have been written here is no variable, nor is its rest.
void WebContext::LoadSession(FILE* file) {
    char* line = nullptr;
    size_t capacity = 0;
    ssize_t length = 0;
    while ((length = getline(&line, &capacity, file)) > 0) {
        char* equals = strchr(line, '=');
        if (static_cast<size_t>(length) > kLongestLine || equals == nullptr) continue;
        *equals = '\0';
        char* value = equals + 1;
        value[strcspn(value, "\r\n")] = '\0';
        auto var = std::make_unique<WebSessionVar>();
        var->name = line;
        var->value = value;
        session_vars.Append(var.release());
    }
    free(line);
}

void WebContext::CreateSessionId() {
    if (session_prefix.IsEmpty()) return;
    const char* address = Environment("REMOTE_ADDR");
    const char* port = Environment("REMOTE_PORT");
    // The address is written with the file: a second request of the same page may be here before
    // this one saves.
    const bool isForeign = !session_id.IsEmpty();  // the browser's own, whose file is missing
    UString first;
    first.Format("REMOTE_ADDR=%s\nREMOTE_PORT=%s\n%s", address, port,
                 isForeign ? kForeignIdLine : "");
    bool keepId = isForeign;
    for (int tries = 0;; ++tries) {
        if (!keepId) session_id = RandomId();
        keepId = false;
        const int fd = open(SessionPath(session_prefix, session_id.c_str()).c_str(),
                            O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd >= 0) {
            const ssize_t size = static_cast<ssize_t>(first.GetLength());
            const bool written = write(fd, first.c_str(), static_cast<size_t>(size)) == size;
            close(fd);
            if (!written) ThrowText("The folder %s cannot be used: %s", kSessions, strerror(errno));
            break;
        }
        if (errno != EEXIST || tries >= kMaxNewIdTries)
            ThrowText("The folder %s cannot be used: %s", kSessions, strerror(errno));
    }
    if (HasWebArgument("sessionId"))
        SetWebArgument("sessionId", session_id.c_str());
    else
        SetWebCookie("sessionId", session_id.c_str());
    SetWebSessionVar("REMOTE_ADDR", address);
    SetWebSessionVar("REMOTE_PORT", port);
    if (isForeign) SetWebSessionVar(kForeignId, "1");
}

bool WebContext::IsSessionIdForeign() const {
    return HasWebSessionVar(kForeignId);
}

void WebContext::RenewSessionId() {
    RemoveWebSessionVars(kForeignId);
    session_id = "";
    session_loaded_ = false;
    CreateSessionId();
}

const char* WebContext::GetWebSessionId() {
    return session_id.c_str();
}

void WebContext::DeleteSession() {
    if (session_prefix.IsEmpty() || session_id.IsEmpty()) return;
    unlink(SessionPath(session_prefix, session_id.c_str()).c_str());
    session_vars.Clear();
    session_id = "";
    session_loaded_ = false;
    if (HasWebCookie("sessionId")) GetWebCookie("sessionId")->SetExpired();
}

void WebContext::SaveWebSessionVars(const char* id) {
    const UString saveAs(id != nullptr ? id : session_id.c_str());
    if (session_prefix.IsEmpty() || saveAs.IsEmpty()) return;
    std::string text;
    for (const WebSessionVar& var : session_vars)
        AppendLine(text, var);
    const HoldTermination hold;
    LockedFile file(SessionPath(session_prefix, saveAs.c_str()).c_str(), "w");
    if (file != nullptr) fwrite(text.data(), 1, text.size(), file);
}

WebSessionVar* WebContext::FindWebSessionVar(const char* name) const {
    for (WebSessionVar& var : session_vars) {
        if (var.name == name) return &var;
    }
    return nullptr;
}

WebSessionVar* WebContext::GetWebSessionVar(const char* name) {
    if (session_id.IsEmpty()) CreateSessionId();
    if (WebSessionVar* found = FindWebSessionVar(name)) return found;
    auto created = std::make_unique<WebSessionVar>();
    created->name = name;
    session_vars.Append(created.get());
    return created.release();
}

bool WebContext::HasWebSessionVar(const char* name) const {
    return FindWebSessionVar(name) != nullptr;
}

void WebContext::SetWebSessionVar(const char* name, const char* value) {
    *GetWebSessionVar(name) = value;
}

void WebContext::SetWebSessionVar(const char* name, int value) {
    UString text;
    text.Format("%d", value);
    SetWebSessionVar(name, text.c_str());
}

void WebContext::RemoveWebSessionVars(const char* prefix) {
    const size_t length = strlen(prefix);
    for (WebSessionVar* var = session_vars.First(); var != nullptr;) {
        auto* next = static_cast<WebSessionVar*>(var->next());
        if (strncmp(var->name.c_str(), prefix, length) == 0) session_vars.Remove(var);
        var = next;
    }
}
