#include "portal/management/PasswordFile.h"

#include <crypt.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>

#include "common/Path.h"
#include "common/ThrowText.h"
#include "kernel/OSConsole.h"

namespace {

constexpr char kBcrypt[] = "$2y$";
constexpr unsigned long kCost = 10;  // 2 to the power of it rounds
constexpr char kNotWritten[] = "The password file could not be written. Nothing was changed.";

std::string Crypt(const std::string& password, const char* setting) {
    // Large, and cleared afterwards: it holds the password.
    const auto data = std::make_unique<crypt_data>();
    memset(data.get(), 0, sizeof *data);
    const char* hash = crypt_r(password.c_str(), setting, data.get());
    const std::string result = hash != nullptr && *hash != '*' ? hash : "";
    explicit_bzero(data.get(), sizeof *data);
    return result;
}

bool EqualInTime(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    unsigned difference = 0;
    for (size_t i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(b[i]);
    return difference == 0;
}

[[noreturn]] void Fail(const char* step, const std::string& path) {
    ConsoleReport("PasswordFile: %s %s: %s\n", step, path.c_str(), strerror(errno));
    ThrowText("%s", kNotWritten);
}

bool WriteAll(int fd, const std::string& text) {
    for (size_t done = 0; done < text.size();) {
        const ssize_t wrote = write(fd, text.data() + done, text.size() - done);
        if (wrote < 0 && errno != EINTR) return false;
        if (wrote > 0) done += static_cast<size_t>(wrote);
    }
    return true;
}

}  // namespace

std::string HashPassword(const std::string& password) {
    char setting[CRYPT_GENSALT_OUTPUT_SIZE];
    // No bytes given: the library takes them from the system.
    if (crypt_gensalt_rn(kBcrypt, kCost, nullptr, 0, setting, sizeof setting) == nullptr)
        ThrowText("This machine cannot make password hashes.");
    std::string hash = Crypt(password, setting);
    if (hash.empty()) ThrowText("This machine cannot make password hashes.");
    return hash;
}

bool IsPassword(const std::string& password, const std::string& hash) {
    return !hash.empty() && EqualInTime(Crypt(password, hash.c_str()), hash);
}

std::string WithPassword(const std::string& text, const std::string& user,
                         const std::string& hash) {
    const std::string start = user + ":";
    const std::string line = start + hash + "\n";
    std::string result;
    bool replaced = false;
    for (size_t at = 0; at < text.size();) {
        const size_t end = text.find('\n', at);
        const size_t next = end == std::string::npos ? text.size() : end + 1;
        if (text.compare(at, start.size(), start) != 0) {
            result.append(text, at, next - at);
            if (end == std::string::npos) result += '\n';
        } else if (!replaced) {
            result += line;
            replaced = true;
        }
        at = next;
    }
    return replaced ? result : result + line;
}

void RewritePasswordFile(const char* setting, const std::string& user, const std::string& hash) {
    const std::string path = RootPath(setting).c_str();
    const std::string temporary = path + ".new";
    struct stat info {};
    if (stat(path.c_str(), &info) != 0) Fail("stat", path);
    std::ifstream file(path);
    const std::string text((std::istreambuf_iterator<char>(file)),
                           std::istreambuf_iterator<char>());
    if (!file.is_open() || file.bad()) Fail("read", path);

    unlink(temporary.c_str());  // what a killed request left
    const int fd =
        open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (fd < 0) Fail("create", temporary);
    // The owner stays what it was as far as this program may choose it.
    static_cast<void>(fchown(fd, info.st_uid, info.st_gid) == 0);
    const bool written = WriteAll(fd, WithPassword(text, user, hash)) &&
                         fchmod(fd, info.st_mode & 0777) == 0 && fsync(fd) == 0;
    close(fd);
    if (!written || rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(temporary.c_str());
        errno = error;
        Fail("write", temporary);
    }
}
